/// Variables of the environment for the time of a test.
#pragma once

#include "testSystem.h"

#include <cstdlib>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace qel
{

/// Sets variables of the process. When the object goes they are as they were before it.
class Environment
{
public:
    Environment(std::initializer_list<std::pair<const char*, std::string>> mySettings = {})
    {
        for (const auto& [myName, myValue] : mySettings)
        {
            Set(myName, myValue);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment()
    {
        for (const auto& [myName, myValue] : myOldValues)
        {
            SetVariable(myName.c_str(), myValue ? myValue->c_str() : nullptr);
        }
    }

    void Set(const char* myName, const std::string& myValue)
    {
        Remember(myName);
        SetVariable(myName, myValue.c_str());
    }

    void Unset(const char* myName)
    {
        Remember(myName);
        SetVariable(myName, nullptr);
    }

private:
    void Remember(const char* myName)
    {
        const char* const myValue = std::getenv(myName);
        myOldValues.try_emplace(myName, myValue == nullptr ? std::optional<std::string>() : myValue);
    }

    std::map<std::string, std::optional<std::string>> myOldValues;
};

} // namespace qel

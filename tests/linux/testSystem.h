/// What tests need of the system beyond the standard library. Each system has a header of this name.
#pragma once

#include <cstdlib>
#include <filesystem>

namespace qel
{

/// Sets a variable of the environment, or removes it: null.
inline void SetVariable(const char* myName, const char* myValue)
{
    myValue == nullptr ? unsetenv(myName) : setenv(myName, myValue, 1);
}

/// Makes a link to a folder. It needs no special right.
inline void LinkFolder(const std::filesystem::path& myFolder, const std::filesystem::path& myLink)
{
    std::filesystem::create_directory_symlink(myFolder, myLink);
}

} // namespace qel

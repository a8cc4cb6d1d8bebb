/// Access to the part of the registry in which classes are registered.
#pragma once

#include "platform/windows/windowsHeaders.h"

#include <optional>
#include <string>

namespace qel
{

/// Thrown: the registry could not be changed, for the reason of the system.
struct RegistryFailure
{
    LSTATUS Reason;
};

/// The classes of all users (HKEY_LOCAL_MACHINE) or of this user (HKEY_CURRENT_USER). Keys are paths below
/// Software\Classes.
class ClassesKey
{
public:
    explicit ClassesKey(HKEY myPredefinedKey) : myRoot(myPredefinedKey) {}

    /// Writes a text, and makes its key if need be. A null name is the default value. Returns the result of the system.
    LSTATUS Write(const std::wstring& myKey, const wchar_t* myName, const std::wstring& myText) const;

    /// The text of a value, by default of the default one; nothing if there is no such key or text.
    std::optional<std::wstring> Read(const std::wstring& myKey, const wchar_t* myName = nullptr) const;

    /// Deletes a value, if it exists and may be deleted.
    void DeleteValue(const std::wstring& myKey, const wchar_t* myName) const;

    bool Contains(const std::wstring& myKey) const;

    /// True when programs of the other word length see a key. Both see the same program names and type libraries, but
    /// each its own classes and interfaces.
    bool ContainsForOtherWordLength(const std::wstring& myKey) const;

    /// Deletes a key with all that it contains. RegistryFailure.
    void Delete(const std::wstring& myKey) const;

    /// Deletes a key that contains no other keys. True: it is gone. RegistryFailure.
    bool DeleteIfEmpty(const std::wstring& myKey) const;

private:
    bool Contains(const std::wstring& myKey, REGSAM myView) const;

    HKEY myRoot;
};

} // namespace qel

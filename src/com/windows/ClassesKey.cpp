#include "com/windows/ClassesKey.h"

#include <cwchar>

namespace qel
{
namespace
{

constexpr REGSAM OtherView = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

std::wstring Path(const std::wstring& myKey)
{
    return L"Software\\Classes\\" + myKey;
}

} // namespace

LSTATUS ClassesKey::Write(const std::wstring& myKey, const wchar_t* myName, const std::wstring& myText) const
{
    return RegSetKeyValueW(myRoot, Path(myKey).c_str(), myName, REG_SZ, myText.c_str(),
                           static_cast<DWORD>((myText.size() + 1) * sizeof(wchar_t)));
}

std::optional<std::wstring> ClassesKey::Read(const std::wstring& myKey, const wchar_t* myName) const
{
    const std::wstring myPath = Path(myKey);
    DWORD mySize = 0;
    if (RegGetValueW(myRoot, myPath.c_str(), myName, RRF_RT_REG_SZ, nullptr, nullptr, &mySize) != ERROR_SUCCESS)
    {
        return std::nullopt;
    }
    std::wstring theText(mySize / sizeof(wchar_t), L'\0');
    const LSTATUS myResult =
        RegGetValueW(myRoot, myPath.c_str(), myName, RRF_RT_REG_SZ, nullptr, theText.data(), &mySize);
    theText.resize(std::wcslen(theText.c_str()));
    return myResult == ERROR_SUCCESS ? std::optional(theText) : std::nullopt;
}

void ClassesKey::DeleteValue(const std::wstring& myKey, const wchar_t* myName) const
{
    RegDeleteKeyValueW(myRoot, Path(myKey).c_str(), myName);
}

bool ClassesKey::Contains(const std::wstring& myKey) const
{
    return Contains(myKey, 0);
}

bool ClassesKey::ContainsForOtherWordLength(const std::wstring& myKey) const
{
    return Contains(myKey, OtherView);
}

bool ClassesKey::Contains(const std::wstring& myKey, REGSAM myView) const
{
    HKEY myOpenKey = nullptr;
    if (RegOpenKeyExW(myRoot, Path(myKey).c_str(), 0, KEY_READ | myView, &myOpenKey) != ERROR_SUCCESS)
    {
        return false;
    }
    RegCloseKey(myOpenKey);
    return true;
}

void ClassesKey::Delete(const std::wstring& myKey) const
{
    if (const LSTATUS myResult = RegDeleteTreeW(myRoot, Path(myKey).c_str()); myResult != ERROR_SUCCESS)
    {
        throw RegistryFailure{myResult};
    }
}

bool ClassesKey::DeleteIfEmpty(const std::wstring& myKey) const
{
    HKEY myOpenKey = nullptr;
    if (RegOpenKeyExW(myRoot, Path(myKey).c_str(), 0, KEY_READ, &myOpenKey) != ERROR_SUCCESS)
    {
        return false;
    }
    DWORD myCount = 1;
    RegQueryInfoKeyW(myOpenKey, nullptr, nullptr, nullptr, &myCount, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr);
    RegCloseKey(myOpenKey);
    if (myCount == 0)
    {
        Delete(myKey);
    }
    return myCount == 0;
}

} // namespace qel

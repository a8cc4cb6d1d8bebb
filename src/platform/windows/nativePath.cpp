#include "platform/windows/nativePath.h"

#include "platform/windows/systemErrors.h"
#include "platform/windows/wideText.h"
#include "platform/windows/windowsHeaders.h"
#include "text/errors.h"

#include <algorithm>
#include <vector>

namespace qel
{
namespace
{

constexpr std::wstring_view PlainPrefix = L"\\\\?\\";
constexpr std::wstring_view ServerPrefix = L"\\\\?\\UNC\\";
constexpr std::wstring_view VolumePrefix = L"Volume{"; // after the plain prefix
constexpr std::wstring_view DevicePrefix = L"\\\\.\\";
constexpr size_t LongestName = 255;
constexpr size_t LongestPath = 32766;

bool HasDrive(std::wstring_view myPath)
{
    const wchar_t myLetter = myPath.size() >= 2 && myPath[1] == L':' ? myPath[0] : L' ';
    return (myLetter >= L'a' && myLetter <= L'z') || (myLetter >= L'A' && myLetter <= L'Z');
}

/// True when a path begins with a text, whatever the case of both.
bool BeginsWith(std::wstring_view myPath, std::wstring_view myPrefix)
{
    const std::wstring_view myStart = myPath.substr(0, myPrefix.size());
    return CompareStringOrdinal(myStart.data(), static_cast<int>(myStart.size()), myPrefix.data(),
                                static_cast<int>(myPrefix.size()), TRUE) == CSTR_EQUAL;
}

/// Where the system's own rules lead from the current folder: to itself ("."), to its root ("\") or to the current
/// folder of a drive ("C:").
std::wstring CompleteFolder(const std::wstring& myFolder)
{
    std::wstring theFolder(MAX_PATH, L'\0');
    for (;;)
    {
        const DWORD myLength =
            GetFullPathNameW(myFolder.c_str(), static_cast<DWORD>(theFolder.size()), theFolder.data(), nullptr);
        if (myLength == 0)
        {
            RaiseSystemError(GetLastError());
        }
        const bool myIsWhole = myLength < theFolder.size();
        theFolder.resize(myLength);
        if (myIsWhole)
        {
            return theFolder;
        }
    }
}

/// Completes a path that does not begin at a root.
std::wstring CompletePath(std::wstring myPath)
{
    const bool myHasDrive = HasDrive(myPath);
    if (myPath.starts_with(L"\\\\") || (myHasDrive && std::wstring_view(myPath).substr(2).starts_with(L'\\')))
    {
        return myPath;
    }
    const bool myHasRoot = myPath.starts_with(L'\\');
    const std::wstring myFolder = myHasDrive ? myPath.substr(0, 2) : myHasRoot ? L"\\" : L".";
    return CompleteFolder(myFolder) + L"\\" + myPath.substr(myHasDrive ? 2 : 0);
}

/// Removes the next part and the separators around it from a path; the part is empty after the last one.
std::wstring_view TakePart(std::wstring_view& thePath)
{
    thePath.remove_prefix(std::min(thePath.find_first_not_of(L'\\'), thePath.size()));
    const std::wstring_view thePart = thePath.substr(0, thePath.find(L'\\'));
    thePath.remove_prefix(thePart.size());
    return thePart;
}

void DemandName(std::wstring_view myName)
{
    static constexpr std::wstring_view Forbidden = L":*?\"<>|";
    const auto IsForbidden = [](wchar_t myUnit)
    {
        return myUnit < L' ' || Forbidden.find(myUnit) != std::wstring_view::npos;
    };
    if (myName.empty() || myName.size() > LongestName || HasUnpairedSurrogate(myName) ||
        std::any_of(myName.begin(), myName.end(), IsForbidden))
    {
        Raise(ErrorNumber::BadFileName);
    }
}

/// For a server, a share or a volume, which cannot be "." or "..".
void DemandRootName(std::wstring_view myName)
{
    DemandName(myName);
    if (myName == L"." || myName == L"..")
    {
        Raise(ErrorNumber::BadFileName);
    }
}

/// Removes the root from a complete path and returns it in the system's form, with its closing "\".
std::wstring TakeRoot(std::wstring_view& thePath)
{
    if (thePath.starts_with(DevicePrefix))
    {
        Raise(ErrorNumber::BadFileName);
    }
    const bool myHasPrefix = thePath.starts_with(PlainPrefix);
    const bool myIsOnServer = myHasPrefix ? BeginsWith(thePath, ServerPrefix) : thePath.starts_with(L"\\\\");
    if (myHasPrefix)
    {
        thePath.remove_prefix(myIsOnServer ? ServerPrefix.size() : PlainPrefix.size());
    }
    std::wstring theRoot(myIsOnServer ? ServerPrefix : PlainPrefix);
    const std::wstring_view myFirst = TakePart(thePath); // the drive, a volume, or the server
    const bool myIsDrive = myFirst.size() == 2 && HasDrive(myFirst);
    if (!myIsOnServer && !myIsDrive && !BeginsWith(myFirst, VolumePrefix)) // a device
    {
        Raise(ErrorNumber::BadFileName);
    }
    if (!myIsDrive || myIsOnServer)
    {
        DemandRootName(myFirst);
    }
    theRoot.append(myFirst).append(L"\\");
    if (myIsOnServer)
    {
        const std::wstring_view myShare = TakePart(thePath);
        DemandRootName(myShare);
        theRoot.append(myShare).append(L"\\");
    }
    return theRoot;
}

} // namespace

std::wstring NativePath(TextView myPath)
{
    if (myPath.empty())
    {
        Raise(ErrorNumber::FileNotFound);
    }
    std::wstring myGiven = WideText(myPath);
    std::replace(myGiven.begin(), myGiven.end(), L'/', L'\\');
    const std::wstring myComplete = CompletePath(std::move(myGiven));
    std::wstring_view myRest = myComplete;
    const std::wstring myRoot = TakeRoot(myRest);
    std::vector<std::wstring_view> myNames;
    for (std::wstring_view myName = TakePart(myRest); !myName.empty(); myName = TakePart(myRest))
    {
        if (myName == L"..")
        {
            myNames.resize(myNames.size() - (myNames.empty() ? 0 : 1));
        }
        else if (myName != L".")
        {
            DemandName(myName);
            myNames.push_back(myName);
        }
    }
    std::wstring thePath = myRoot;
    for (const std::wstring_view myName : myNames)
    {
        thePath = PathInFolder(thePath, myName);
    }
    if (thePath.size() > LongestPath)
    {
        Raise(ErrorNumber::BadFileName);
    }
    return thePath;
}

std::wstring PlainPath(std::wstring_view myNativePath)
{
    if (BeginsWith(myNativePath, ServerPrefix))
    {
        return std::wstring(L"\\\\").append(myNativePath.substr(ServerPrefix.size()));
    }
    const bool myHasPrefix = myNativePath.starts_with(PlainPrefix) && HasDrive(myNativePath.substr(PlainPrefix.size()));
    return std::wstring(myNativePath.substr(myHasPrefix ? PlainPrefix.size() : 0));
}

bool IsRoot(std::wstring_view myNativePath)
{
    return myNativePath.ends_with(L'\\');
}

std::wstring PathInFolder(std::wstring_view myNativeFolder, std::wstring_view myName)
{
    return std::wstring(myNativeFolder).append(IsRoot(myNativeFolder) ? L"" : L"\\").append(myName);
}

bool HasUnpairedSurrogate(std::wstring_view myName)
{
    for (size_t i = 0; i < myName.size(); ++i)
    {
        const bool myIsHigh = IS_HIGH_SURROGATE(myName[i]);
        if (myIsHigh && i + 1 < myName.size() && IS_LOW_SURROGATE(myName[i + 1]))
        {
            ++i;
        }
        else if (myIsHigh || IS_LOW_SURROGATE(myName[i]))
        {
            return true;
        }
    }
    return false;
}

} // namespace qel

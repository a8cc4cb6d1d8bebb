// The class registry of this system, and what else differs between components of the two systems.
#include "check/system.h"

#include "check/Check.h"
#include "com/ComPtr.h"
#include "platform/windows/wideText.h"

#include <array>

namespace qel::host
{

namespace
{

/// The default value of a key of the classes, the user's before those of all users; empty without one.
std::wstring ClassValue(const std::wstring& myKey)
{
    for (HKEY const myPart : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
    {
        std::array<wchar_t, 1024> theText{};
        DWORD mySize = sizeof theText;
        if (RegGetValueW(myPart, (L"Software\\Classes\\" + myKey).c_str(), nullptr, RRF_RT_REG_SZ, nullptr,
                         theText.data(), &mySize) == ERROR_SUCCESS)
        {
            return theText.data();
        }
    }
    return {};
}

} // namespace

const uint32_t TypeDescriptionCount = 1;

HRESULT CreateByName(const char16_t* myProgramName, REFIID myInterface, void** theObject)
{
    // Not by the system's own function, which does not see a private registry.
    *theObject = nullptr;
    CLSID myClass{};
    const std::wstring myId = ClassValue(WideText(myProgramName) + L"\\CLSID");
    if (myId.empty() || FAILED(CLSIDFromString(myId.c_str(), &myClass)))
    {
        return CO_E_CLASSSTRING;
    }
    HMODULE const myLibrary = LoadLibraryW(ClassValue(L"CLSID\\" + myId + L"\\InprocServer32").c_str());
    const FARPROC myAddress = myLibrary == nullptr ? nullptr : GetProcAddress(myLibrary, "DllGetClassObject");
    if (myAddress == nullptr)
    {
        return CO_E_DLLNOTFOUND;
    }
    const auto myGetClass = reinterpret_cast<DllGetClassObjectFunction>(reinterpret_cast<void*>(myAddress));
    ComPtr<IClassFactory> myFactory;
    const HRESULT theResult = myGetClass(myClass, IID_IClassFactory, reinterpret_cast<void**>(myFactory.Receive()));
    return FAILED(theResult) ? theResult : myFactory->CreateInstance(nullptr, myInterface, theObject);
}

bool CodePageIsWestern()
{
    return GetACP() == 1252;
}

void MakeLink(const std::filesystem::path& myTarget, const std::filesystem::path& myLink)
{
    const DWORD myKind = std::filesystem::is_directory(myTarget) ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0;
    const bool isMade = CreateSymbolicLinkW(myLink.c_str(), myTarget.c_str(),
                                            myKind | SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE) != 0;
    const DWORD myAttributes = GetFileAttributesW(myLink.c_str());
    // Some systems report success without making a link.
    if (!isMade || myAttributes == INVALID_FILE_ATTRIBUTES || (myAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
    {
        throw Outcome{CheckResult::Skipped, "a user who may make links", "the system makes none"};
    }
}

} // namespace qel::host

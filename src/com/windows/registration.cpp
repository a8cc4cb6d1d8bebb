// The system's registry: for all users where this process may write that part, else for the user. A file in the user's
// own folder, which others cannot read, is registered for the user alone.
//
// The library is registered value by value. The system's own function would make every interface of the library refer
// to it, also those of the host, which may have a library of their own.
#include "com/registration.h"

#include "com/Bstr.h"
#include "com/failure.h"
#include "com/windows/ClassesKey.h"
#include "com/windows/typeLibrary.h"
#include "platform/windows/wideText.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>
#include <vector>

#include <shlobj.h>

namespace qel
{
namespace
{

constexpr wchar_t DualProxy[] = L"{00020424-0000-0000-C000-000000000046}"; // carries calls of dual interfaces
constexpr wchar_t LateProxy[] = L"{00020420-0000-0000-C000-000000000046}"; // carries late-bound calls only
constexpr const wchar_t* PlatformKey = sizeof(void*) == 8 ? L"win64" : L"win32";

struct RegistryValue
{
    std::wstring Key;
    const wchar_t* Name; ///< null: the default value
    std::wstring Text;
};
using RegistryValues = std::vector<RegistryValue>;

struct DescribedInterface
{
    std::wstring Id;
    std::wstring Name;
    const wchar_t* Proxy;
};

/// What the registry has to know about the type library.
struct DescribedLibrary
{
    std::wstring Id;
    std::wstring Version;
    std::wstring Title;
    std::vector<DescribedInterface> Interfaces;

    std::wstring Key() const { return L"TypeLib\\" + Id; }
    std::wstring VersionKey() const { return Key() + L"\\" + Version; }
    std::wstring FileKey() const { return VersionKey() + L"\\0\\" + PlatformKey; }
};

std::wstring TextOfId(const GUID& myId)
{
    std::array<wchar_t, 39> theText{};
    StringFromGUID2(myId, theText.data(), static_cast<int>(theText.size()));
    return theText.data();
}

/// The reason of the system, in the user's language.
Text ReasonText(LSTATUS myReason)
{
    std::array<wchar_t, 512> theText{};
    constexpr DWORD Flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    FormatMessageW(Flags, nullptr, static_cast<DWORD>(myReason), 0, theText.data(), static_cast<DWORD>(theText.size()),
                   nullptr);
    return Text(TrimBlanks(TextOfWide(theText.data())));
}

/// Leaves the failure in the thread's error information, and returns the result.
HRESULT ReportRegistry(HRESULT myResult, LSTATUS myReason)
{
    return ReportFailure(myResult, (u"No se puede escribir en el registro de clases: " + ReasonText(myReason)).c_str());
}

HRESULT ReportLibrary(HRESULT myReason)
{
    return ReportFailure(SELFREG_E_TYPELIB,
                         (u"No se puede leer la biblioteca de tipos: " + ReasonText(myReason)).c_str());
}

HRESULT DescribeInterfaces(ITypeLib& myLibrary, DescribedLibrary& theDescription)
{
    for (UINT i = 0; i < myLibrary.GetTypeInfoCount(); ++i)
    {
        TYPEKIND myKind{};
        ComPtr<ITypeInfo> myInfo;
        TYPEATTR* myAttributes = nullptr;
        Bstr myName;
        HRESULT theResult = myLibrary.GetTypeInfoType(i, &myKind);
        if (SUCCEEDED(theResult) && myKind != TKIND_DISPATCH)
        {
            continue;
        }
        if (FAILED(theResult) || FAILED(theResult = myLibrary.GetTypeInfo(i, myInfo.Receive())) ||
            FAILED(theResult = myInfo->GetDocumentation(MEMBERID_NIL, myName.Pointer(), nullptr, nullptr, nullptr)) ||
            FAILED(theResult = myInfo->GetTypeAttr(&myAttributes)))
        {
            return theResult;
        }
        const bool isDual = (myAttributes->wTypeFlags & TYPEFLAG_FDUAL) != 0;
        theDescription.Interfaces.push_back(
            {TextOfId(myAttributes->guid), WideText(myName.Value()), isDual ? DualProxy : LateProxy});
        myInfo->ReleaseTypeAttr(myAttributes);
    }
    return S_OK;
}

HRESULT DescribeLibrary(const std::wstring& myFile, DescribedLibrary& theDescription)
{
    ComPtr<ITypeLib> myLibrary;
    TLIBATTR* myAttributes = nullptr;
    Bstr myTitle;
    HRESULT theResult = LoadTypeLibrary(myFile, myLibrary);
    if (FAILED(theResult) || FAILED(theResult = myLibrary->GetLibAttr(&myAttributes)))
    {
        return theResult;
    }
    theDescription.Id = TextOfId(myAttributes->guid);
    theDescription.Version =
        std::to_wstring(myAttributes->wMajorVerNum) + L"." + std::to_wstring(myAttributes->wMinorVerNum);
    myLibrary->ReleaseTLibAttr(myAttributes);
    theResult = myLibrary->GetDocumentation(MEMBERID_NIL, nullptr, myTitle.Pointer(), nullptr, nullptr);
    theDescription.Title = WideText(myTitle.Value());
    return FAILED(theResult) ? theResult : DescribeInterfaces(*myLibrary.Get(), theDescription);
}

RegistryValues ValuesOfClass(const RegisteredClass& myClass, const DescribedLibrary& myLibrary,
                             const std::wstring& myFile)
{
    const std::wstring myId = TextOfId(*myClass.Identifier);
    const std::wstring myName = WideText(myClass.ProgramName);
    const std::wstring myKey = L"CLSID\\" + myId;
    return {{myKey, nullptr, myName},
            {myKey + L"\\InprocServer32", nullptr, myFile},
            {myKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
            {myKey + L"\\ProgID", nullptr, myName},
            {myKey + L"\\TypeLib", nullptr, myLibrary.Id},
            {myKey + L"\\Version", nullptr, myLibrary.Version},
            {myName, nullptr, myName},
            {myName + L"\\CLSID", nullptr, myId}};
}

RegistryValues ValuesOfLibrary(const DescribedLibrary& myLibrary, const std::filesystem::path& myFile)
{
    return {{myLibrary.VersionKey(), nullptr, myLibrary.Title},
            {myLibrary.FileKey(), nullptr, myFile.wstring()},
            {myLibrary.VersionKey() + L"\\FLAGS", nullptr, L"0"},
            {myLibrary.VersionKey() + L"\\HELPDIR", nullptr, myFile.parent_path().wstring()}};
}

RegistryValues ValuesOfInterface(const DescribedInterface& myInterface, const DescribedLibrary& myLibrary)
{
    const std::wstring myKey = L"Interface\\" + myInterface.Id;
    return {{myKey, nullptr, myInterface.Name},
            {myKey + L"\\ProxyStubClsid32", nullptr, myInterface.Proxy},
            {myKey + L"\\TypeLib", nullptr, myLibrary.Id},
            {myKey + L"\\TypeLib", L"Version", myLibrary.Version}};
}

/// Writes values into one part of the registry, and can undo it.
class RegistryChanges
{
public:
    explicit RegistryChanges(const ClassesKey& myPart) : myClasses(myPart) {}

    /// Writes the values, up to the first failure. Returns the result of the system.
    LSTATUS Write(const RegistryValues& myValues)
    {
        LSTATUS theResult = ERROR_SUCCESS;
        for (auto myValue = myValues.begin(); theResult == ERROR_SUCCESS && myValue != myValues.end(); ++myValue)
        {
            myChanges.push_back({*myValue, myClasses.Read(myValue->Key, myValue->Name), FirstNewKey(myValue->Key)});
            theResult = myClasses.Write(myValue->Key, myValue->Name, myValue->Text);
        }
        return theResult;
    }

    /// Restores what was there before, as far as the system permits it.
    void Undo()
    {
        for (; !myChanges.empty(); myChanges.pop_back())
        {
            try
            {
                Undo(myChanges.back());
            }
            catch (const RegistryFailure&) // for example, the key could not be created
            {
            }
        }
    }

private:
    struct Change
    {
        RegistryValue Value;
        std::optional<std::wstring> OldText;
        std::wstring NewKey; ///< the first key of the path that was not there; empty if the value's key was there
    };

    void Undo(const Change& myChange) const
    {
        if (!myChange.NewKey.empty())
        {
            myClasses.Delete(myChange.NewKey);
        }
        else if (myChange.OldText)
        {
            myClasses.Write(myChange.Value.Key, myChange.Value.Name, *myChange.OldText);
        }
        else
        {
            myClasses.DeleteValue(myChange.Value.Key, myChange.Value.Name);
        }
    }

    std::wstring FirstNewKey(const std::wstring& myKey) const
    {
        size_t myEnd = 0;
        do
        {
            myEnd = std::min(myKey.find(L'\\', myEnd + 1), myKey.size());
            if (!myClasses.Contains(myKey.substr(0, myEnd)))
            {
                return myKey.substr(0, myEnd);
            }
        } while (myEnd < myKey.size());
        return {};
    }

    const ClassesKey& myClasses;
    std::vector<Change> myChanges;
};

/// True when an interface is described for all users, or for this user by another library. Our own description for this
/// user does not serve the other users.
bool IsDescribed(const DescribedInterface& myInterface, const DescribedLibrary& myLibrary)
{
    const std::wstring myKey = L"Interface\\" + myInterface.Id;
    const ClassesKey myUsers(HKEY_CURRENT_USER);
    return ClassesKey(HKEY_LOCAL_MACHINE).Contains(myKey) ||
           (myUsers.Contains(myKey) && myUsers.Read(myKey + L"\\TypeLib") != myLibrary.Id);
}

/// Writes everything into one part of the registry, or nothing.
HRESULT Register(const ClassesKey& myClassesKey, std::span<const RegisteredClass> myClasses,
                 const DescribedLibrary& myLibrary, const std::filesystem::path& myFile, LSTATUS& theReason)
{
    RegistryChanges theChanges(myClassesKey);
    theReason = ERROR_SUCCESS;
    const auto Write = [&](const RegistryValues& myValues)
    {
        theReason = theReason == ERROR_SUCCESS ? theChanges.Write(myValues) : theReason;
    };
    for (const RegisteredClass& myClass : myClasses)
    {
        Write(ValuesOfClass(myClass, myLibrary, myFile.wstring()));
    }
    const HRESULT theFailure = theReason == ERROR_SUCCESS ? SELFREG_E_TYPELIB : SELFREG_E_CLASS;
    Write(ValuesOfLibrary(myLibrary, myFile));
    for (const DescribedInterface& myInterface : myLibrary.Interfaces)
    {
        if (!IsDescribed(myInterface, myLibrary))
        {
            Write(ValuesOfInterface(myInterface, myLibrary));
        }
    }
    if (theReason == ERROR_SUCCESS)
    {
        return S_OK;
    }
    theChanges.Undo();
    return theFailure;
}

/// True when the key names this file, by any of its names.
bool NamesFile(const ClassesKey& myClasses, const std::wstring& myKey, const std::filesystem::path& myFile)
{
    const auto myPath = myClasses.Read(myKey);
    std::error_code myIgnored;
    return myPath && (CompareStringOrdinal(myPath->c_str(), -1, myFile.c_str(), -1, TRUE) == CSTR_EQUAL ||
                      std::filesystem::equivalent(*myPath, myFile, myIgnored));
}

bool IsInTheUsersFolder(const std::filesystem::path& myFile)
{
    PWSTR myText = nullptr;
    const HRESULT myResult = SHGetKnownFolderPath(FOLDERID_Profile, 0, nullptr, &myText);
    const std::filesystem::path myFolder = SUCCEEDED(myResult) ? myText : L"";
    CoTaskMemFree(myText);
    std::error_code myIgnored;
    std::filesystem::path myParent = myFile.parent_path();
    while (myParent.has_relative_path() && !std::filesystem::equivalent(myParent, myFolder, myIgnored))
    {
        myParent = myParent.parent_path();
    }
    return myParent.has_relative_path();
}

void RemoveClass(const ClassesKey& theClasses, const RegisteredClass& myClass, const std::filesystem::path& myFile)
{
    const std::wstring myId = TextOfId(*myClass.Identifier);
    const std::wstring myName = WideText(myClass.ProgramName);
    const std::wstring myKey = L"CLSID\\" + myId;
    const std::wstring myFileKey = myKey + L"\\InprocServer32";
    if (!NamesFile(theClasses, myFileKey, myFile))
    {
        return;
    }
    theClasses.Delete(myKey);
    // Only after the class: a system with only one word length has one key for both.
    if (theClasses.Read(myName + L"\\CLSID") == myId && !theClasses.ContainsForOtherWordLength(myFileKey))
    {
        theClasses.Delete(myName);
    }
}

void RemoveLibrary(const ClassesKey& theClasses, const DescribedLibrary& myLibrary, const std::filesystem::path& myFile)
{
    if (!NamesFile(theClasses, myLibrary.FileKey(), myFile))
    {
        return;
    }
    for (const DescribedInterface& myInterface : myLibrary.Interfaces)
    {
        const std::wstring myKey = L"Interface\\" + myInterface.Id;
        if (theClasses.Read(myKey + L"\\TypeLib") == myLibrary.Id)
        {
            theClasses.Delete(myKey);
        }
    }
    theClasses.Delete(myLibrary.FileKey());
    if (theClasses.DeleteIfEmpty(myLibrary.VersionKey() + L"\\0")) // or it is registered for the other word length
    {
        theClasses.Delete(myLibrary.VersionKey());
        theClasses.DeleteIfEmpty(myLibrary.Key());
    }
}

} // namespace

HRESULT RegisterClasses(std::span<const RegisteredClass> myClasses, const std::filesystem::path& myFile)
{
    DescribedLibrary myLibrary;
    if (const HRESULT myReason = DescribeLibrary(myFile.wstring(), myLibrary); FAILED(myReason))
    {
        return ReportLibrary(myReason);
    }
    LSTATUS myReason = ERROR_ACCESS_DENIED;
    HRESULT theResult = S_OK;
    if (!IsInTheUsersFolder(myFile))
    {
        theResult = Register(ClassesKey(HKEY_LOCAL_MACHINE), myClasses, myLibrary, myFile, myReason);
    }
    if (myReason == ERROR_ACCESS_DENIED)
    {
        theResult = Register(ClassesKey(HKEY_CURRENT_USER), myClasses, myLibrary, myFile, myReason);
    }
    return FAILED(theResult) ? ReportRegistry(theResult, myReason) : theResult;
}

HRESULT UnregisterClasses(std::span<const RegisteredClass> myClasses, const std::filesystem::path& myFile)
{
    DescribedLibrary myLibrary;
    const HRESULT myReason = DescribeLibrary(myFile.wstring(), myLibrary);
    HRESULT theResult = FAILED(myReason) ? ReportLibrary(myReason) : S_OK;
    const auto Try = [&](HRESULT myFailure, const auto& myRemoval)
    {
        try
        {
            myRemoval();
        }
        catch (const RegistryFailure& myRefusal)
        {
            theResult = ReportRegistry(myFailure, myRefusal.Reason);
        }
    };
    for (HKEY myRoot : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
    {
        const ClassesKey theClasses(myRoot);
        for (const RegisteredClass& myClass : myClasses)
        {
            Try(SELFREG_E_CLASS, [&] { RemoveClass(theClasses, myClass, myFile); });
        }
        if (SUCCEEDED(myReason))
        {
            Try(SELFREG_E_TYPELIB, [&] { RemoveLibrary(theClasses, myLibrary, myFile); });
        }
    }
    return theResult;
}

} // namespace qel

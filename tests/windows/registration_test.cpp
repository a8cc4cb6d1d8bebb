// Registration of the built component in a registry of its own: whose entries are removed, and what happens without the
// right to write. registered_test.py compares the real registry.
#include "com/Bstr.h"
#include "com/ComPtr.h"
#include "com/QelHelperInterfaces.h"
#include "common/SharedLibrary.h"
#include "TemporaryFolder.h"
#include "testSystem.h"
#include "text/encodings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <sddl.h>

namespace qel
{
namespace
{

using namespace std::string_literals;

const std::wstring MainKey = L"CLSID\\{4FCC59CA-C869-4963-A843-14D7C29AFA23}";
const std::wstring SortKey = L"CLSID\\{AC34163F-A9F3-4932-A75F-284E50AD181B}";
const std::wstring LibraryKey = L"TypeLib\\{764DCF71-DA3B-4767-BEE9-D2215307BFF6}";
const std::wstring PluginKey = L"Interface\\{392E1C06-13AC-45E5-BBD4-264EDC8D5D7D}";
const std::wstring DatabaseKey = L"Interface\\{0F23B278-9F82-47DF-A09A-5CDAE3DC5B4A}";
const std::wstring OtherLibrary = L"{A6107D97-C7EB-493F-9E38-0BE856D49647}"; // that of the host

constexpr wchar_t TestKey[] = L"Software\\qeltest";

/// A part of the registry that takes the place of a real one for this process.
class ReplacedPart
{
public:
    ReplacedPart(HKEY myPredefinedKey, const std::wstring& myName) : myPart(myPredefinedKey)
    {
        RegCreateKeyExW(HKEY_CURRENT_USER, (TestKey + (L"\\" + myName)).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &myKey, nullptr);
        RegCreateKeyExW(myKey, L"Software\\Classes", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &myClasses, nullptr);
    }
    ReplacedPart(const ReplacedPart&) = delete;
    ReplacedPart& operator=(const ReplacedPart&) = delete;
    ~ReplacedPart()
    {
        Protect(false);
        RegCloseKey(myClasses);
        RegCloseKey(myKey);
    }

    void Replace(bool myChoice) const { RegOverridePredefKey(myPart, myChoice ? myKey : nullptr); }

    /// Removes everybody's right to write below a key, or restores it.
    void Protect(bool myChoice, const std::wstring& myPath = {}) const
    {
        HKEY myProtected = nullptr;
        RegOpenKeyExW(myClasses, myPath.c_str(), 0, READ_CONTROL | WRITE_DAC, &myProtected);
        PSECURITY_DESCRIPTOR myRights = nullptr;
        ConvertStringSecurityDescriptorToSecurityDescriptorW(myChoice ? L"D:P(A;OICI;KR;;;WD)" : L"D:P(A;OICI;KA;;;WD)",
                                                             SDDL_REVISION_1, &myRights, nullptr);
        RegSetKeySecurity(myProtected, DACL_SECURITY_INFORMATION, myRights);
        LocalFree(myRights);
        RegCloseKey(myProtected);
    }

    bool Has(const std::wstring& myPath) const
    {
        HKEY myFound = nullptr;
        return RegOpenKeyExW(myClasses, myPath.c_str(), 0, KEY_READ, &myFound) == ERROR_SUCCESS &&
               RegCloseKey(myFound) == ERROR_SUCCESS;
    }

    void Write(const std::wstring& myPath, const std::wstring& myText) const
    {
        RegSetValueW(myClasses, myPath.c_str(), REG_SZ, myText.c_str(), 0);
    }

    std::wstring Read(const std::wstring& myPath) const
    {
        wchar_t theText[300] = {};
        LONG mySize = sizeof theText;
        RegQueryValueW(myClasses, myPath.c_str(), theText, &mySize);
        return theText;
    }

private:
    HKEY myPart;
    HKEY myKey = nullptr;
    HKEY myClasses = nullptr;
};

class Registration : public testing::Test
{
protected:
    ~Registration() override { RegDeleteTreeW(HKEY_CURRENT_USER, TestKey); }

    /// Calls an entry point with both parts replaced.
    HRESULT Call(const char* myEntryPoint) const { return Call(myComponent, myEntryPoint); }
    HRESULT Call(const host::SharedLibrary& myLibrary, const char* myEntryPoint) const
    {
        myAllUsers.Replace(true);
        myUser.Replace(true);
        const HRESULT theResult = myLibrary.Find<DllRegisterServerFunction>(myEntryPoint)();
        myUser.Replace(false);
        myAllUsers.Replace(false);
        return theResult;
    }

    const host::SharedLibrary myComponent{QEL_STAGE "/QelPluginAnimation.dll"};
    const ReplacedPart myAllUsers{HKEY_LOCAL_MACHINE, L"machine"};
    const ReplacedPart myUser{HKEY_CURRENT_USER, L"user"};
};

TEST_F(Registration, Register_WritesForAllUsersOrForTheUser_UnregisterLeavesNothing)
{
    for (const bool myHasTheRight : {false, true})
    {
        myAllUsers.Protect(!myHasTheRight);
        for (const bool myRegisters : {true, false})
        {
            EXPECT_EQ(Call(myRegisters ? "DllRegisterServer" : "DllUnregisterServer"), S_OK);
            for (const std::wstring& myKey : {MainKey, SortKey, LibraryKey, PluginKey, DatabaseKey})
            {
                SCOPED_TRACE(std::string(myKey.begin(), myKey.end()));
                EXPECT_EQ(myAllUsers.Has(myKey), myRegisters && myHasTheRight);
                EXPECT_EQ(myUser.Has(myKey), myRegisters && !myHasTheRight);
            }
        }
    }
    EXPECT_EQ(Call("DllUnregisterServer"), S_OK) << "what is not there is no failure";
}

TEST_F(Registration, Register_FileInTheUsersFolder_WritesForTheUserAlone)
{
    const TemporaryFolder myFolder(std::getenv("USERPROFILE"));
    std::filesystem::copy_file(QEL_STAGE "/QelPluginAnimation.dll", myFolder / "copy.dll");
    const host::SharedLibrary myCopy(myFolder.Native("copy.dll"));
    EXPECT_EQ(Call(myCopy, "DllRegisterServer"), S_OK);
    EXPECT_TRUE(myUser.Has(MainKey));
    EXPECT_FALSE(myAllUsers.Has(MainKey));
}

TEST_F(Registration, Unregister_LeavesWhatNamesAnotherFile)
{
    wchar_t myShortName[MAX_PATH] = {};
    GetShortPathNameW(PathOfUtf8(QEL_STAGE "/QelPluginAnimation.dll").make_preferred().c_str(), myShortName, MAX_PATH);
    ASSERT_TRUE(std::wstring(myShortName).ends_with(L".DLL")) << "the short name is the same as the long one";
    for (const auto& [myFile, myIsAnother] :
         {std::pair{L"C:\\other\\QelPluginAnimation.dll", true}, {myShortName, false}})
    {
        EXPECT_EQ(Call("DllRegisterServer"), S_OK);
        myAllUsers.Write(MainKey + L"\\InprocServer32", myFile);
        EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
        EXPECT_EQ(myAllUsers.Has(MainKey), myIsAnother);
        EXPECT_EQ(myAllUsers.Has(L"QelPluginAnimation.Main"), myIsAnother);
        EXPECT_FALSE(myAllUsers.Has(SortKey));
        EXPECT_FALSE(myAllUsers.Has(L"QelPluginAnimation.classStringSort"));
    }
}

TEST_F(Registration, Register_ThatFailsHalfwayForAllUsers_LeavesNothingThere)
{
    myAllUsers.Write(SortKey + L"\\InprocServer32", L"C:\\other.dll");
    myAllUsers.Write(LibraryKey, L"");
    myAllUsers.Protect(true, LibraryKey);
    EXPECT_EQ(Call("DllRegisterServer"), S_OK);
    myAllUsers.Protect(false, LibraryKey);
    EXPECT_TRUE(myUser.Has(MainKey));
    for (const std::wstring& myKey :
         {MainKey, L"QelPluginAnimation.Main"s, SortKey + L"\\ProgID", LibraryKey + L"\\1.0"})
    {
        EXPECT_FALSE(myAllUsers.Has(myKey)) << std::string(myKey.begin(), myKey.end());
    }
    EXPECT_EQ(myAllUsers.Read(SortKey), L"");
    EXPECT_EQ(myAllUsers.Read(SortKey + L"\\InprocServer32"), L"C:\\other.dll");
}

TEST_F(Registration, Register_LeavesTheInterfacesOfTheHost)
{
    myUser.Write(DatabaseKey + L"\\TypeLib", OtherLibrary);
    EXPECT_EQ(Call("DllRegisterServer"), S_OK);
    EXPECT_FALSE(myAllUsers.Has(DatabaseKey)) << "it is described already";
    myAllUsers.Write(PluginKey + L"\\TypeLib", OtherLibrary);
    EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(myUser.Read(DatabaseKey + L"\\TypeLib"), OtherLibrary);
    EXPECT_EQ(myAllUsers.Read(PluginKey + L"\\TypeLib"), OtherLibrary);
}

TEST_F(Registration, Register_ForAllUsersAfterTheUser_DescribesTheInterfacesForAll)
{
    for (const bool myHasTheRight : {false, true})
    {
        myAllUsers.Protect(!myHasTheRight);
        EXPECT_EQ(Call("DllRegisterServer"), S_OK);
        EXPECT_EQ(myAllUsers.Has(PluginKey), myHasTheRight);
    }
    EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
    EXPECT_FALSE(myAllUsers.Has(PluginKey) || myUser.Has(PluginKey));
}

TEST_F(Registration, Register_WithoutAnyRight_Fails)
{
    myAllUsers.Protect(true);
    myUser.Protect(true);
    EXPECT_EQ(Call("DllRegisterServer"), SELFREG_E_CLASS);
    ComPtr<IErrorInfo> myInfo;
    ASSERT_EQ(GetErrorInfo(0, myInfo.Receive()), S_OK);
    Bstr myDescription;
    EXPECT_EQ(myInfo->GetDescription(myDescription.Pointer()), S_OK);
    EXPECT_TRUE(myDescription.Value().starts_with(u"No se puede escribir en el registro de clases: "))
        << ToUtf8(myDescription.Value());
}

} // namespace
} // namespace qel

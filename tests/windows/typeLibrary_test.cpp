// What the built component carries as resources. The type library describes what the component does: it agrees with the
// tables of late binding, whose slots are those of the C++ declarations.
#include "com/DispatchImplementation.h"
#include "componentTest.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

namespace qel
{

const char16_t* const ErrorSource = u"typeLibrary_test";

namespace
{

constexpr size_t DispatchSlots = 7;

TYPEATTR AttributesOf(ITypeInfo& myInfo)
{
    TYPEATTR* myAttributes = nullptr;
    EXPECT_EQ(myInfo.GetTypeAttr(&myAttributes), S_OK);
    const TYPEATTR theCopy = *myAttributes;
    myInfo.ReleaseTypeAttr(myAttributes);
    return theCopy;
}

std::string NameOf(ITypeInfo& myInfo, MEMBERID myMember = MEMBERID_NIL)
{
    Bstr theName;
    EXPECT_EQ(myInfo.GetDocumentation(myMember, theName.Pointer(), nullptr, nullptr, nullptr), S_OK);
    return ToUtf8(theName.Value());
}

/// The number of a type, or the name of an interface, after a sign for each pointer to it.
std::string TypeText(ITypeInfo& myInfo, const TYPEDESC& myType)
{
    if (myType.vt == VT_PTR)
    {
        return "*" + TypeText(myInfo, *myType.lptdesc);
    }
    if (myType.vt != VT_USERDEFINED)
    {
        return std::to_string(myType.vt);
    }
    ComPtr<ITypeInfo> myReferred;
    EXPECT_EQ(myInfo.GetRefTypeInfo(myType.hreftype, myReferred.Receive()), S_OK);
    return NameOf(*myReferred.Get());
}

/// Expects of a member what its row of the table says. A member without a slot is bound late only, and returns its
/// result as a function does.
void ExpectMember(ITypeInfo& myInfo, const FUNCDESC& myFunction, const DispatchMember& myRow, size_t mySlot)
{
    constexpr INVOKEKIND Kinds[] = {INVOKE_FUNC, INVOKE_FUNC, INVOKE_PROPERTYGET, INVOKE_PROPERTYPUT,
                                    INVOKE_PROPERTYPUTREF};
    EXPECT_EQ(NameOf(myInfo, myFunction.memid), ToUtf8(myRow.Name));
    EXPECT_EQ(myFunction.invkind, Kinds[static_cast<size_t>(myRow.Kind)]);
    EXPECT_EQ(static_cast<size_t>(myFunction.oVft), mySlot * sizeof(void*));
    const size_t myParameterCount = mySlot == 0 ? myRow.ArgumentCount : myRow.Types.size();
    ASSERT_EQ(static_cast<size_t>(myFunction.cParams), myParameterCount);
    for (size_t i = 0; i < myParameterCount; ++i)
    {
        const ELEMDESC& myParameter = myFunction.lprgelemdescParam[i];
        const VARTYPE myType = myRow.Types[i];
        // A member that takes an object is named as its interface is.
        EXPECT_EQ(TypeText(myInfo, myParameter.tdesc),
                  myType == VT_DISPATCH ? "**" + ToUtf8(myRow.Name) : "*" + std::to_string(myType));
        EXPECT_EQ(myParameter.paramdesc.wParamFlags,
                  PARAMFLAG_FOUT | (i == myRow.ArgumentCount ? PARAMFLAG_FRETVAL : PARAMFLAG_FIN));
    }
    const VARTYPE myLateResult = HasResult(myRow.Kind) ? myRow.Types.back() : VARTYPE{VT_VOID};
    EXPECT_EQ(myFunction.elemdescFunc.tdesc.vt, mySlot == 0 ? myLateResult : VARTYPE{VT_HRESULT});
}

void ExpectMembers(ITypeInfo& myInfo, const IID& myInterface, bool myHasSlots)
{
    const auto myRows = MembersOf(myInterface);
    ASSERT_EQ(AttributesOf(myInfo).cFuncs, myRows.size());
    for (UINT i = 0; i < myRows.size(); ++i)
    {
        SCOPED_TRACE(ToUtf8(myRows[i].Name));
        FUNCDESC* myFunction = nullptr;
        ASSERT_EQ(myInfo.GetFuncDesc(i, &myFunction), S_OK);
        // A property has one number in the library, that of its first slot; the table answers both.
        EXPECT_EQ(myFunction->memid, std::ranges::find(myRows, myRows[i].Name, &DispatchMember::Name)->Number);
        ExpectMember(myInfo, *myFunction, myRows[i], myHasSlots ? DispatchSlots + i : 0);
        myInfo.ReleaseFuncDesc(myFunction);
    }
}

/// The type library of the built component.
class TypeLibrary : public testing::Test
{
protected:
    TypeLibrary()
    {
        const auto myPath = PathOfUtf8(QEL_COMPONENT);
        EXPECT_EQ(LoadTypeLibEx(myPath.c_str(), REGKIND_NONE, myLibrary.Receive()), S_OK);
    }

    ComPtr<ITypeInfo> Info(const GUID& myId) const
    {
        ComPtr<ITypeInfo> theInfo;
        EXPECT_EQ(myLibrary->GetTypeInfoOfGuid(myId, theInfo.Receive()), S_OK);
        return theInfo;
    }

    /// What an interface or a class refers to: the default interface of a class, at -1 the slots of a dual interface.
    static ComPtr<ITypeInfo> Referred(ITypeInfo& myInfo, UINT myIndex)
    {
        HREFTYPE myReference = 0;
        ComPtr<ITypeInfo> theInfo;
        EXPECT_EQ(myInfo.GetRefTypeOfImplType(myIndex, &myReference), S_OK);
        EXPECT_EQ(myInfo.GetRefTypeInfo(myReference, theInfo.Receive()), S_OK);
        return theInfo;
    }

    ComPtr<ITypeLib> myLibrary;
};

TEST_F(TypeLibrary, Members_AreThoseOfTheTables)
{
    const IID* const Interfaces[] = {&IID_QelPlugin, &IID_QelInfo,       &IID_QelBuildHelper, &IID_QelDatabase,
                                     &IID_QelTopic,  &IID_QelThumbnails, &IID_QelStringSort};
    for (const IID* myId : Interfaces)
    {
        const auto myInfo = Referred(*Info(*myId).Get(), static_cast<UINT>(-1));
        constexpr WORD Flags = TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION;
        EXPECT_EQ(AttributesOf(*myInfo.Get()).wTypeFlags & Flags, Flags);
        ExpectMembers(*myInfo.Get(), *myId, true);
    }
    ExpectMembers(*Info(IID_QelPluginAnimationMain).Get(), IID_QelPluginAnimationMain, false);
}

TEST_F(TypeLibrary, Classes_HaveTheirDefaultInterfaces)
{
    const std::tuple<CLSID, std::string, IID> myCases[] = {
        {CLSID_Main, "Main", IID_QelPluginAnimationMain},
        {CLSID_classStringSort, "classStringSort", IID_QelStringSort},
    };
    for (const auto& [myId, myName, myDefault] : myCases)
    {
        const auto myClass = Info(myId);
        EXPECT_EQ(NameOf(*myClass.Get()), myName);
        INT myFlags = 0;
        EXPECT_EQ(myClass->GetImplTypeFlags(0, &myFlags), S_OK);
        EXPECT_EQ(myFlags, IMPLTYPEFLAG_FDEFAULT);
        EXPECT_TRUE(SameId(AttributesOf(*Referred(*myClass.Get(), 0).Get()).guid, myDefault));
    }
}

TEST_F(TypeLibrary, GetTypeInfo_DescribesTheInterfaceThatIsAsked)
{
    const LoadedComponent myComponent(QEL_COMPONENT);
    for (const IID* const myId : {&IID_QelPluginAnimationMain, &IID_QelPlugin, &IID_QelInfo})
    {
        void* myPointer = nullptr;
        ASSERT_EQ(myComponent.Factory()->CreateInstance(nullptr, *myId, &myPointer), S_OK);
        const auto myObject = ComPtr<IDispatch>::Adopt(static_cast<IDispatch*>(myPointer));
        UINT myCount = 0;
        ComPtr<ITypeInfo> myInfo;
        EXPECT_EQ(myObject->GetTypeInfoCount(&myCount), S_OK);
        EXPECT_EQ(myCount, 1U);
        ASSERT_EQ(myObject->GetTypeInfo(0, 0, myInfo.Receive()), S_OK);
        EXPECT_TRUE(SameId(AttributesOf(*myInfo.Get()).guid, *myId));
        EXPECT_EQ(myObject->GetTypeInfo(1, 0, myInfo.Receive()), DISP_E_BADINDEX);
    }
}

TEST(Resources, VersionRecord_HasTheTextsAndNumbersOfTheComponent)
{
    const auto myPath = PathOfUtf8(QEL_COMPONENT);
    std::vector<std::byte> myRecord(GetFileVersionInfoSizeW(myPath.c_str(), nullptr));
    ASSERT_TRUE(GetFileVersionInfoW(myPath.c_str(), 0, static_cast<DWORD>(myRecord.size()), myRecord.data()));
    void* myValue = nullptr;
    UINT myLength = 0;
    ASSERT_TRUE(VerQueryValueW(myRecord.data(), L"\\", &myValue, &myLength));
    const auto& myNumbers = *static_cast<const VS_FIXEDFILEINFO*>(myValue);
    EXPECT_EQ(myNumbers.dwFileVersionMS, 0x10000U);
    EXPECT_EQ(myNumbers.dwFileVersionLS, 19U);
    const std::pair<std::wstring, std::wstring> myTexts[] = {
        {L"FileDescription", L"Läßt Grafiken über Ihre Homepage schweben"},
        {L"FileVersion", L"1.00.0019"},
        {L"InternalName", L"QelPluginAnimation"},
        {L"LegalCopyright", L"Copyright (c) 2026 The Tesselwind authors"},
        {L"ProductName", L"Tesselwind"},
    };
    for (const auto& [myName, myText] : myTexts)
    {
        ASSERT_TRUE(
            VerQueryValueW(myRecord.data(), (L"\\StringFileInfo\\000004B0\\" + myName).c_str(), &myValue, &myLength));
        EXPECT_EQ(std::wstring_view(static_cast<const wchar_t*>(myValue)), myText);
    }
}

TEST(Resources, IconsAndManifests)
{
    const LoadedComponent myComponent(QEL_COMPONENT);
    const HMODULE myModule = GetModuleHandleW(L"QelPluginAnimation.dll");
    for (const int myIcon : {100, 110})
    {
        const HICON myLoaded = LoadIconW(myModule, MAKEINTRESOURCEW(myIcon));
        EXPECT_NE(myLoaded, nullptr) << myIcon;
        DestroyIcon(myLoaded);
    }
    const HMODULE myProgram =
        LoadLibraryExW(PathOfUtf8(QEL_STAGE "/qelhost.exe").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    for (const auto& [myFile, myNumber, myPart] :
         {std::tuple(myModule, 2, "name=\"Microsoft.Windows.Common-Controls\" version=\"6.0.0.0\""),
          std::tuple(myProgram, 1, ">PerMonitorV2, PerMonitor<")})
    {
        const HRSRC myManifest = FindResourceW(myFile, MAKEINTRESOURCEW(myNumber), RT_MANIFEST);
        ASSERT_NE(myManifest, nullptr) << myNumber;
        const std::string_view myText(static_cast<const char*>(LockResource(LoadResource(myFile, myManifest))),
                                      SizeofResource(myFile, myManifest));
        EXPECT_NE(myText.find(myPart), std::string_view::npos) << myPart;
    }
    FreeLibrary(myProgram);
}

} // namespace
} // namespace qel

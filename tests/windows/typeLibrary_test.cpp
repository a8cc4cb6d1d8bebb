// What the built component carries as resources. The type library describes what the component does: it agrees with the
// tables of late binding, whose slots are those of the C++ declarations.
#include "com/DispatchImplementation.h"
#include "componentTest.h"
#include "platform/windows/wideText.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace qel
{

const char16_t* const ErrorSource = u"typeLibrary_test";

namespace
{

constexpr size_t DispatchSlots = 7;

/// One member in words: slot, number, kind, name, and its parameters, each with its type and its direction.
using Members = std::vector<std::string>;

std::string Words(const std::string& mySlot, DISPID myNumber, INVOKEKIND myKind, const std::string& myName,
                  const std::vector<std::string>& myParameters)
{
    std::string theWords =
        mySlot + " id " + std::to_string(myNumber) + " kind " + std::to_string(myKind) + " " + myName;
    for (const std::string& myParameter : myParameters)
    {
        theWords += " " + myParameter;
    }
    return theWords;
}

std::string IdWords(const GUID& myId)
{
    wchar_t theText[40] = {};
    StringFromGUID2(myId, theText, 40);
    return ToUtf8(TextOfWide(theText));
}

/// The members that take an object, each of which is named as its interface is.
const std::map<TextView, IID> ObjectTypes = {{u"QelThumbnails", IID_QelThumbnails},
                                             {u"QelDatabase", IID_QelDatabase},
                                             {u"QelTopic", IID_QelTopic},
                                             {u"QelBuildHelper", IID_QelBuildHelper}};

Members MembersOfTable(const IID& myInterface, bool mySlots)
{
    Members theMembers;
    const auto myRows = MembersOf(myInterface);
    for (size_t mySlot = DispatchSlots; const DispatchMember& myRow : myRows)
    {
        // A property has one number in the library, that of its first slot; the table answers both.
        const DISPID myNumber = std::ranges::find(myRows, myRow.Name, &DispatchMember::Name)->Number;
        constexpr INVOKEKIND Kinds[] = {INVOKE_FUNC, INVOKE_FUNC, INVOKE_PROPERTYGET, INVOKE_PROPERTYPUT,
                                        INVOKE_PROPERTYPUTREF};
        std::vector<std::string> myParameters;
        for (const VARTYPE myType : myRow.Types)
        {
            const bool myIsResult = myParameters.size() == myRow.ArgumentCount;
            const USHORT myFlags = myIsResult ? PARAMFLAG_FOUT | PARAMFLAG_FRETVAL : PARAMFLAG_FIN | PARAMFLAG_FOUT;
            const std::string myTypeWords =
                myType == VT_DISPATCH ? "*" + IdWords(ObjectTypes.at(myRow.Name)) : std::to_string(myType);
            // What is bound late only has its result as the result of the function.
            myParameters.push_back(myIsResult && !mySlots ? myTypeWords
                                                          : "*" + myTypeWords + "/" + std::to_string(myFlags));
        }
        theMembers.push_back(Words(mySlots ? "slot " + std::to_string(mySlot++) : "late", myNumber,
                                   Kinds[static_cast<size_t>(myRow.Kind)], ToUtf8(myRow.Name), myParameters));
    }
    return theMembers;
}

TYPEATTR AttributesOf(ITypeInfo& myInfo)
{
    TYPEATTR* myAttributes = nullptr;
    EXPECT_EQ(myInfo.GetTypeAttr(&myAttributes), S_OK);
    const TYPEATTR theCopy = *myAttributes;
    myInfo.ReleaseTypeAttr(myAttributes);
    return theCopy;
}

/// A type, with a sign for each pointer to it.
std::string TypeWords(ITypeInfo& myInfo, const TYPEDESC& myType)
{
    if (myType.vt == VT_PTR)
    {
        return "*" + TypeWords(myInfo, *myType.lptdesc);
    }
    if (myType.vt != VT_USERDEFINED)
    {
        return std::to_string(myType.vt);
    }
    ComPtr<ITypeInfo> myReferred;
    EXPECT_EQ(myInfo.GetRefTypeInfo(myType.hreftype, myReferred.Receive()), S_OK);
    return IdWords(AttributesOf(*myReferred.Get()).guid);
}

Members MembersOfInfo(ITypeInfo& myInfo, UINT myCount, bool mySlots)
{
    Members theMembers;
    for (UINT i = 0; i < myCount; ++i)
    {
        FUNCDESC* myFunction = nullptr;
        EXPECT_EQ(myInfo.GetFuncDesc(i, &myFunction), S_OK);
        Bstr myName;
        UINT myNameCount = 0;
        EXPECT_EQ(myInfo.GetNames(myFunction->memid, myName.Pointer(), 1, &myNameCount), S_OK);
        std::vector<std::string> myParameters;
        for (SHORT j = 0; j < myFunction->cParams; ++j)
        {
            const ELEMDESC& myParameter = myFunction->lprgelemdescParam[j];
            myParameters.push_back(TypeWords(myInfo, myParameter.tdesc) + "/" +
                                   std::to_string(myParameter.paramdesc.wParamFlags));
        }
        const VARTYPE myResult = myFunction->elemdescFunc.tdesc.vt;
        if (!mySlots && myResult != VT_VOID)
        {
            myParameters.push_back(std::to_string(myResult));
        }
        EXPECT_EQ(mySlots, myResult == VT_HRESULT) << i;
        const size_t mySlot = static_cast<size_t>(myFunction->oVft) / sizeof(void*);
        theMembers.push_back(Words(mySlots ? "slot " + std::to_string(mySlot) : "late", myFunction->memid,
                                   myFunction->invkind, ToUtf8(myName.Value()), myParameters));
        myInfo.ReleaseFuncDesc(myFunction);
    }
    return theMembers;
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

TEST_F(TypeLibrary, HasItsIdentifierAndVersion)
{
    TLIBATTR* myAttributes = nullptr;
    ASSERT_EQ(myLibrary->GetLibAttr(&myAttributes), S_OK);
    EXPECT_TRUE(SameId(myAttributes->guid, LIBID_QelPluginAnimation));
    EXPECT_EQ(myAttributes->wMajorVerNum, 1);
    EXPECT_EQ(myAttributes->wMinorVerNum, 0);
    myLibrary->ReleaseTLibAttr(myAttributes);
}

TEST_F(TypeLibrary, DualInterfaces_HaveTheSlotsOfTheTables)
{
    const IID* const Interfaces[] = {&IID_QelPlugin, &IID_QelInfo,       &IID_QelBuildHelper, &IID_QelDatabase,
                                     &IID_QelTopic,  &IID_QelThumbnails, &IID_QelStringSort};
    for (const IID* myId : Interfaces)
    {
        const auto myInfo = Referred(*Info(*myId).Get(), static_cast<UINT>(-1));
        const TYPEATTR myAttributes = AttributesOf(*myInfo.Get());
        constexpr WORD Flags = TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION;
        EXPECT_EQ(myAttributes.wTypeFlags & Flags, Flags);
        EXPECT_EQ(MembersOfInfo(*myInfo.Get(), myAttributes.cFuncs, true), MembersOfTable(*myId, true));
    }
}

TEST_F(TypeLibrary, DefaultInterfaceOfMain_HasTheNamesOfBothInterfaces)
{
    const auto myInfo = Info(IID_QelPluginAnimationMain);
    EXPECT_EQ(MembersOfInfo(*myInfo.Get(), AttributesOf(*myInfo.Get()).cFuncs, false),
              MembersOfTable(IID_QelPluginAnimationMain, false));
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
        Bstr theName;
        EXPECT_EQ(myClass->GetDocumentation(MEMBERID_NIL, theName.Pointer(), nullptr, nullptr, nullptr), S_OK);
        EXPECT_EQ(ToUtf8(theName.Value()), myName);
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

TEST(Resources, IconsAndTheManifestOfALibrary)
{
    const LoadedComponent myComponent(QEL_COMPONENT);
    const HMODULE myModule = GetModuleHandleW(L"QelPluginAnimation.dll");
    for (const int myIcon : {100, 110})
    {
        const HICON myLoaded = LoadIconW(myModule, MAKEINTRESOURCEW(myIcon));
        EXPECT_NE(myLoaded, nullptr) << myIcon;
        DestroyIcon(myLoaded);
    }
    const HRSRC myManifest = FindResourceW(myModule, MAKEINTRESOURCEW(2), RT_MANIFEST);
    ASSERT_NE(myManifest, nullptr);
    const std::string_view myText(static_cast<const char*>(LockResource(LoadResource(myModule, myManifest))),
                                  SizeofResource(myModule, myManifest));
    EXPECT_NE(myText.find("name=\"Microsoft.Windows.Common-Controls\" version=\"6.0.0.0\""), std::string_view::npos);
}

} // namespace
} // namespace qel

// Checks of the members of the plug-in object, through the tables of its interfaces.
#include "check/moduleTexts.h"
#include "check/OpenedComponent.h"
#include "com/Bstr.h"
#include "common/paths.h"
#include "text/encodings.h"

#include <array>
#include <cstdio>
#include <tuple>
#include <utility>

// What OpenedComponent gives is never null; a check ends where it would be.
// NOLINTBEGIN(clang-analyzer-core.CallAndMessage, clang-analyzer-core.NonNullParamChecker)

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

void ReadsFixedTexts(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    for (const auto& myText : FixedTexts)
    {
        ExpectText(ToUtf8(myText.Name), myText.Value, Read(*myPlugin.Get(), myText.Read));
    }
}

/// Reads a Boolean value; the member may write its 16 bits and nothing else.
void ExpectAnswer(const std::string& myWhat, VARIANT_BOOL myExpected, const std::function<HRESULT(VARIANT_BOOL*)>& Ask)
{
    std::array<VARIANT_BOOL, 2> myAnswer{7, 7};
    ExpectResult(myWhat, S_OK, Ask(myAnswer.data()));
    ExpectNumber(myWhat, myExpected, myAnswer[0]);
    ExpectNumber("what comes after the answer of " + myWhat, 7, myAnswer[1]);
}

void Answers(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    ExpectAnswer("IsConfigurable", VARIANT_TRUE,
                 [&](VARIANT_BOOL* theAnswer) { return myPlugin->get_IsConfigurable(theAnswer); });
    ExpectAnswer("RequiresPHP", VARIANT_FALSE,
                 [&](VARIANT_BOOL* theAnswer) { return myPlugin->get_RequiresPHP(theAnswer); });
    for (int32_t myLink : {1, -1, INT32_MAX, INT32_MIN})
    {
        ExpectAnswer("CallBack of " + std::to_string(myLink), VARIANT_FALSE,
                     [&](VARIANT_BOOL* theAnswer) { return myPlugin->CallBack(&myLink, theAnswer); });
    }
    int32_t myTopic = INT32_MAX;
    ExpectResult("ShowHelp of a topic that is not there", S_OK, myPlugin->ShowHelp(&myTopic));
    ExpectNumber("the topic after ShowHelp", INT32_MAX, myTopic);
}

void Version(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    Bstr theText;
    ExpectResult("Version", S_OK, myComponent.Create<QelInfo>(CLSID_Main)->get_Version(theText.Pointer()));
    const std::string myVersion = ToUtf8(theText.Value());
    std::array<unsigned, 3> myParts{};
    const int myCount = std::sscanf(myVersion.c_str(), "%u.%u.%u", myParts.data(), &myParts[1], &myParts[2]);
    const std::string myForm =
        std::to_string(myParts[0]) + "." + std::to_string(myParts[1]) + "." + std::to_string(myParts[2]);
    if (myCount != 3 || myVersion != myForm)
    {
        FailCheck("three numbers without leading zeros, such as 1.0.19", myVersion);
    }
}

/// Calls a member with a null pointer for one of its arguments, each in turn; numbers among the others are 1.
template <class Interface, class... Values>
void RefuseNull(Interface& myObject, HRESULT (STDMETHODCALLTYPE Interface::*myMember)(Values*...),
                const std::string& myName)
{
    for (size_t i = 0; i < sizeof...(Values); ++i)
    {
        std::tuple<Values...> myValues{static_cast<Values>(std::is_same_v<Values, int32_t> ? Values(1) : Values())...};
        const auto Call = [&]<size_t... Index>(std::index_sequence<Index...> /*unused*/)
        {
            return (myObject.*myMember)((Index == i ? nullptr : &std::get<Index>(myValues))...);
        };
        ExpectResult(myName + " with a null pointer for argument " + std::to_string(i + 1), E_POINTER,
                     Call(std::index_sequence_for<Values...>()));
    }
}

void NullPointersToMembers(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myHeld = myComponent.Plugin();
    QelPlugin& myPlugin = *myHeld.Get();
    for (const auto& myText : TextMembers)
    {
        RefuseNull(myPlugin, myText.Read, ToUtf8(myText.Name));
    }
    RefuseNull(myPlugin, &QelPlugin::get_IsConfigurable, "IsConfigurable");
    RefuseNull(myPlugin, &QelPlugin::get_RequiresPHP, "RequiresPHP");
    RefuseNull(myPlugin, &QelPlugin::CallBack, "CallBack");
    RefuseNull(myPlugin, &QelPlugin::ShowHelp, "ShowHelp");
    RefuseNull(myPlugin, &QelPlugin::put_Script, "writing Script");
    RefuseNull(myPlugin, &QelPlugin::putref_QelThumbnails, "QelThumbnails");
    RefuseNull(myPlugin, &QelPlugin::putref_QelDatabase, "QelDatabase");
    RefuseNull(myPlugin, &QelPlugin::putref_QelTopic, "QelTopic");
    RefuseNull(myPlugin, &QelPlugin::putref_QelBuildHelper, "QelBuildHelper");
    RefuseNull(*myHeld.Query<QelInfo>().Get(), &QelInfo::get_Version, "Version");
    const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    RefuseNull(*mySort.Get(), &QelStringSort::AddValue, "AddValue");
    RefuseNull(*mySort.Get(), &QelStringSort::get_Value, "Value");
    RefuseNull(*mySort.Get(), &QelStringSort::get_ValueCount, "ValueCount");
}

void Bitmaps(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    for (const TextMember myMember : {&QelPlugin::get_PreviewImageFilename, &QelPlugin::get_LogoFilename})
    {
        const Text myName = Read(*myPlugin.Get(), myMember);
        Expect("a bitmap's name has no folder: " + Shown(myName),
               !myName.empty() && myName.find_first_of(u"/\\") == Text::npos);
        const fs::path myFile = myContext.File.parent_path() / ToUtf8(myName);
        if (!fs::is_regular_file(myFile))
        {
            throw Outcome{CheckResult::Warned, "a file " + TextOf(myFile), "there is none"};
        }
    }
}

constexpr Check MemberCheckList[] = {
    {"members.fixed-texts", "The fixed texts are those of the plug-in, each in its slot", ReadsFixedTexts},
    {"members.answers", "Boolean values are -1 and 0 in 16 bits, and CallBack returns false for every number but 0",
     Answers},
    {"members.version", "The version is three numbers without leading zeros", Version},
    {"members.null-pointers", "Every member refuses null pointers", NullPointersToMembers},
    {"members.bitmaps", "The two bitmaps are named without a folder and lie beside the component", Bitmaps},
};

} // namespace

std::span<const Check> MemberChecks()
{
    return MemberCheckList;
}

} // namespace qel::host

// NOLINTEND(clang-analyzer-core.CallAndMessage, clang-analyzer-core.NonNullParamChecker)

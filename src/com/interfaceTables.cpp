#include "com/interfaceTables.h"

#include "com/DispatchImplementation.h"

#include <algorithm>
#include <array>

namespace qel
{
namespace
{

using enum MemberKind;

constexpr auto PluginMembers = std::to_array<DispatchMember>({
    Member<&QelPlugin::putref_QelThumbnails>(u"QelThumbnails", 1, PutRef),
    Member<&QelPlugin::putref_QelDatabase>(u"QelDatabase", 2, PutRef),
    Member<&QelPlugin::putref_QelTopic>(u"QelTopic", 3, PutRef),
    Member<&QelPlugin::putref_QelBuildHelper>(u"QelBuildHelper", 4, PutRef),
    Member<&QelPlugin::get_InitialScript>(u"InitialScript", 5, Get),
    Member<&QelPlugin::get_Output>(u"Output", 6, Get),
    Member<&QelPlugin::get_TextFunction>(u"TextFunction", 7, Get),
    Member<&QelPlugin::get_TextRequirementsServer>(u"TextRequirementsServer", 8, Get),
    Member<&QelPlugin::get_TextRequirementsClient>(u"TextRequirementsClient", 9, Get),
    Member<&QelPlugin::get_TextSettings>(u"TextSettings", 10, Get),
    Member<&QelPlugin::get_TextConfig>(u"TextConfig", 11, Get),
    Member<&QelPlugin::get_IsConfigurable>(u"IsConfigurable", 12, Get),
    Member<&QelPlugin::get_Description>(u"Description", 13, Get),
    Member<&QelPlugin::get_PreviewImageFilename>(u"PreviewImageFilename", 14, Get),
    Member<&QelPlugin::get_LogoFilename>(u"LogoFilename", 15, Get),
    Member<&QelPlugin::CallBack>(u"CallBack", 16, Function),
    Member<&QelPlugin::put_Script>(u"Script", 17, Put),
    Member<&QelPlugin::get_Script>(u"Script", 18, Get),
    Member<&QelPlugin::get_ErrorText>(u"ErrorText", 19, Get),
    Member<&QelPlugin::ShowHelp>(u"ShowHelp", 20, Procedure),
    Member<&QelPlugin::get_RequiresPHP>(u"RequiresPHP", 21, Get),
});

constexpr auto InfoMembers = std::to_array<DispatchMember>({
    Member<&QelInfo::About>(u"About", 1, Procedure),
    Member<&QelInfo::get_Version>(u"Version", 2, Get),
});

constexpr auto BuildHelperMembers = std::to_array<DispatchMember>({
    Member<&QelBuildHelper::get_UniqueName>(u"UniqueName", 1, Get),
    Member<&QelBuildHelper::get_InstanceNumber>(u"InstanceNumber", 2, Get),
    Member<&QelBuildHelper::get_MediaFolder>(u"MediaFolder", 3, Get),
    Member<&QelBuildHelper::get_MediaURL>(u"MediaURL", 4, Get),
    Member<&QelBuildHelper::get_ImageFolder>(u"ImageFolder", 5, Get),
    Member<&QelBuildHelper::get_ImageURL>(u"ImageURL", 6, Get),
    Member<&QelBuildHelper::get_FileFolder>(u"FileFolder", 7, Get),
    Member<&QelBuildHelper::get_FileURL>(u"FileURL", 8, Get),
    Member<&QelBuildHelper::get_ArchiveName>(u"ArchiveName", 9, Get),
});

constexpr auto DatabaseMembers = std::to_array<DispatchMember>({
    Member<&QelDatabase::get_RecordType>(u"RecordType", 1, Get),
    Member<&QelDatabase::get_EOF>(u"EOF", 2, Get),
    Member<&QelDatabase::get_RecordFilename>(u"RecordFilename", 3, Get),
    Member<&QelDatabase::SeekUID>(u"SeekUID", 4, Procedure),
    Member<&QelDatabase::get_RecordURL>(u"RecordURL", 5, Get),
    Member<&QelDatabase::get_DataFolder>(u"DataFolder", 6, Get),
    Member<&QelDatabase::ChooseLink>(u"ChooseLink", 7, Function),
});

constexpr auto StringSortMembers = std::to_array<DispatchMember>({
    Member<&QelStringSort::Clear>(u"Clear", 1, Procedure),
    Member<&QelStringSort::AddValue>(u"AddValue", 2, Procedure),
    Member<&QelStringSort::get_Value>(u"Value", 3, Get),
    Member<&QelStringSort::get_ValueCount>(u"ValueCount", 4, Get),
    Member<&QelStringSort::Sort>(u"Sort", 5, Procedure),
});

// The default interface of Main: the members of QelPlugin under their numbers, those of QelInfo after them.
constexpr auto MainMembers = []
{
    std::array<DispatchMember, PluginMembers.size() + InfoMembers.size()> theMembers{};
    auto* const myRest = std::ranges::copy(PluginMembers, theMembers.begin()).out;
    std::ranges::transform(InfoMembers, myRest,
                           [](DispatchMember theMember)
                           {
                               theMember.Number += PluginMembers.back().Number;
                               return theMember;
                           });
    return theMembers;
}();

struct InterfaceTable
{
    const IID* Interface;
    std::span<const DispatchMember> Members;
};

// An interface that is not listed has no members of its own.
constexpr InterfaceTable Tables[] = {
    {&IID_QelPlugin, PluginMembers},
    {&IID_QelInfo, InfoMembers},
    {&IID_QelPluginAnimationMain, MainMembers},
    {&IID_QelBuildHelper, BuildHelperMembers},
    {&IID_QelDatabase, DatabaseMembers},
    {&IID_QelStringSort, StringSortMembers},
};

} // namespace

std::span<const DispatchMember> MembersOf(const IID& myInterface) noexcept
{
    for (const InterfaceTable& myTable : Tables)
    {
        if (SameId(*myTable.Interface, myInterface))
        {
            return myTable.Members;
        }
    }
    return {};
}

} // namespace qel

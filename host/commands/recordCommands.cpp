#include "commands/commands.h"
#include "common/Failure.h"
#include "site/scriptTags.h"
#include "site/Site.h"

#include <iostream>

namespace qel::host
{

namespace
{

constexpr const char* KindsHelp =
    "The kinds and what they take:\n"
    "  0 none      nothing; a link to it does not work\n"
    "  1 page      --page PAGE, or --address of a page elsewhere\n"
    "  2 section   --page PAGE, --address \"#id\", or both\n"
    "  3 address   --address, such as https://example.org/\n"
    "  4 picture   --file, a picture of any kind\n"
    "  5 file      --file, any other file\n"
    "  6 mail      --address, such as name@example.org\n"
    "A file is copied into the site at once. A build copies it into the pictures or files\n"
    "of the pages when it builds a module whose picture links to the record.\n"
    "The link text of a record is UID: and its uid, as record add prints it.";

RecordChange ChangeOf(const Arguments& myArguments)
{
    return {myArguments.Title, myArguments.OtherPage, myArguments.Address, myArguments.OptionalFile};
}

/// The uid in the link text that record add prints, so that it can be passed on; any other text as it is.
std::string WithoutLinkPrefix(const std::string& myText)
{
    const auto myUid = LinkedRecord(myText);
    return myUid ? std::to_string(*myUid) : myText;
}

void ListRecords(const Arguments& myArguments)
{
    std::vector<std::vector<std::string>> myRows{{"UID", "KIND", "LEADS TO", "TITLE"}};
    std::vector<JsonMembers> myObjects;
    for (const Record& myRecord : Site(myArguments.Site).Records())
    {
        const std::string myKind(KindName(myRecord.Kind));
        const std::string myTarget = RecordTarget(myRecord);
        myRows.push_back({std::to_string(myRecord.Uid), myKind, myTarget, myRecord.Title});
        myObjects.push_back(
            {{"uid", myRecord.Uid}, {"kind", myKind}, {"leadsTo", myTarget}, {"title", myRecord.Title}});
    }
    PrintList(myRows, myObjects, myArguments);
}

} // namespace

void AddRecordCommands(CLI::App& theApplication, Arguments& theArguments)
{
    CLI::App* const myGroup = AddGroup(theApplication, "record", "What links of a site can lead to");
    const auto AddUid = [&](CLI::App* theCommand)
    {
        AddNumber(*theCommand, "UID", theArguments.Id, "The record's uid, such as 2 or UID:2")
            ->transform(WithoutLinkPrefix); // before the check
    };
    const auto AddContent = [&](CLI::App* theCommand)
    {
        theCommand->add_option("--title", theArguments.Title, "Its title in the list of records");
        theCommand->add_option("--page", theArguments.OtherPage, "A page of the site")->type_name("PAGE");
        theCommand->add_option("--address", theArguments.Address, "An address, or what follows the page's");
        AddPath(*theCommand, "--file", theArguments.OptionalFile, "A file of yours")->type_name("FILE");
        theCommand->footer(KindsHelp);
    };

    CLI::App* const myAdd = AddSiteCommand(*myGroup, "add", "Adds a record and prints its link text", theArguments);
    myAdd->add_option("--kind", theArguments.Kind, "Its kind, by number or name")->required();
    AddContent(myAdd);
    myAdd->callback(
        [&theArguments]
        {
            const RecordKind myKind = ParseKind(theArguments.Kind);
            Site mySite(theArguments.Site);
            const int64_t myUid = mySite.AddRecord(myKind, ChangeOf(theArguments));
            WarnOfName(mySite.FindRecord(myUid)->Filename);
            std::cout << "UID:" << myUid << std::endl;
        });

    CLI::App* const mySet = AddSiteCommand(*myGroup, "set", "Changes a record; what is not given stays", theArguments);
    AddUid(mySet);
    AddContent(mySet);
    mySet->callback(
        [&theArguments]
        {
            Site mySite(theArguments.Site);
            mySite.SetRecord(theArguments.Id, ChangeOf(theArguments));
            WarnOfName(mySite.FindRecord(theArguments.Id)->Filename);
        });

    CLI::App* const myRemove = AddSiteCommand(*myGroup, "remove", "Removes a record and its file", theArguments);
    AddUid(myRemove);
    myRemove->add_flag("--force", theArguments.Force, "Removes it even if modules link to it");
    myRemove->callback([&theArguments] { Site(theArguments.Site).RemoveRecord(theArguments.Id, theArguments.Force); });

    AddListCommand(*myGroup, "Lists the records", theArguments)
        ->callback([&theArguments] { ListRecords(theArguments); });
}

} // namespace qel::host

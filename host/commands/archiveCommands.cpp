#include "archive/classArchive.h"
#include "commands/commands.h"
#include "commands/logicalPaths.h"
#include "commands/terminal.h"
#include "common/Failure.h"
#include "common/paths.h"
#include "common/printable.h"
#include "common/ProgressLine.h"
#include "common/systemReasons.h"
#include "platform/codePage.h"
#include "platform/ListView.h"
#include "platform/shared/SystemFiles.h"
#include "site/siteFiles.h"
#include "text/encodings.h"
#include "text/errors.h"
#include "text/ScopeGuard.h"
#include "text/succeeds.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

/// Stores the items as rows of a table, and their full names.
class ListedFiles final : public ListView
{
public:
    void Clear() override { Rows = {{"SIZE", "FOLDER", "FILE"}}; }
    void Add(const ListItem& myItem) override
    {
        Rows.push_back({ToUtf8(myItem.SubItems[0]), ToUtf8(myItem.SubItems[1]), ToUtf8(myItem.Caption)});
        Names.push_back(myItem.Tag);
    }

    std::vector<std::vector<std::string>> Rows;
    std::vector<Text> Names;
};

/// Why an operation on an archive failed, by the number of its error, in words for the user.
constexpr std::pair<int32_t, const char*> Reasons[] = {
    {ErrorNumber::Overflow, "it has 2 GiB or more, which an archive cannot hold"},
    {ErrorNumber::OutOfMemory, "there is not enough memory"},
    {ErrorNumber::BadFileName, "its name is too long, or has characters that the disk cannot hold"},
    {ErrorNumber::FileNotFound, "it does not exist any more"},
    {ErrorNumber::FileAlreadyExists, "its folder has another name that differs only in case"},
    {ErrorNumber::DiskFull, DiskIsFull},
    {ErrorNumber::InputPastEnd, "it has become shorter meanwhile"},
    {ErrorNumber::PermissionDenied, "there is no permission, or someone else has it open"},
    {ErrorNumber::PathAccess, "a folder, a link or something else is in the way, or a folder cannot be read"},
    {ErrorNumber::PathNotFound, "its folder does not exist, or cannot be created"},
};

/// Why an operation failed on a name below the folder, or on the archive itself, whose name is empty.
const char* ReasonOf(int32_t myNumber, const Text& myName)
{
    if (classArchive::LeavesFolder(myName))
    {
        return "its name leads out of the folder";
    }
    if (!ToAnsi(myName))
    {
        return "its name has characters that an archive cannot hold";
    }
    const auto* const theReason = std::ranges::find(Reasons, myNumber, &std::pair<int32_t, const char*>::first);
    return theReason != std::end(Reasons) ? theReason->second : "the disk has failed";
}

/// Why an existing file cannot be read as an archive.
std::string ReadingReason(const fs::path& myFile, int32_t myNumber)
{
    switch (myNumber)
    {
    case ErrorNumber::InvalidArgument:
        return "it is another kind of file";
    case ErrorNumber::InputPastEnd:
    case ErrorNumber::BadFileName:
        return "it is damaged";
    case ErrorNumber::PermissionDenied: // also if someone else has locked it, which does not prevent opening it
        return std::ifstream(myFile) ? "it is in use by another program; try again later"
                                     : "there is no permission to read it";
    default:
        return ReasonOf(myNumber, {});
    }
}

/// Where and why packing or unpacking failed.
std::string FailureOf(const classArchive& myArchive)
{
    const Text& myName = myArchive.LastName();
    return (myName.empty() ? "at the archive itself" : "at " + Printable(ToUtf8(myName))) + ": " +
           ReasonOf(myArchive.FailureNumber(), myName);
}

/// The absolute path without links, also of what does not exist yet.
fs::path RealName(const fs::path& myPath)
{
    if (myPath.empty())
    {
        throw UsageFailure("an empty name is not a file or a folder");
    }
    return fs::weakly_canonical(fs::absolute(myPath));
}

Text DemandedName(const fs::path& myPath)
{
    const std::optional<Text> theName = LogicalName(RealName(myPath));
    if (!theName)
    {
        throw UsageFailure(Printable(TextOf(myPath)) +
                           " cannot be named to the component: use a path without \"\\\", in UTF-8");
    }
    return *theName;
}

/// An archive with the port that it uses.
class OpenArchive
{
public:
    explicit OpenArchive(const fs::path& theFile) : myFile(theFile) { Archive.ArchiveFilename(DemandedName(myFile)); }

    ListedFiles Listed()
    {
        if (!fs::is_regular_file(myFile))
        {
            throw Failure(fs::exists(myFile) ? TextOf(myFile) + " is not a file"
                                             : "there is no file " + TextOf(myFile));
        }
        if (!Archive.ReadArchive())
        {
            throw Failure(TextOf(myFile) +
                          " cannot be read as an archive: " + ReadingReason(myFile, Archive.FailureNumber()));
        }
        ListedFiles theFiles;
        Archive.FillList(theFiles);
        return theFiles;
    }

    /// True when an existing file is the archive itself.
    bool IsAt(const Text& myFilename) const
    {
        std::error_code myIgnored; // a file that cannot be compared is another one
        return fs::equivalent(NativeName(myFilename), NativeName(Archive.ArchiveFilename()), myIgnored);
    }

    SystemFiles Disk;
    classArchive Archive{Disk};

private:
    fs::path myFile;
};

/// What exists under exactly this name, where a file is to be written; nothing if the name is free. Fails if that is
/// unknown.
std::optional<EntryKind> KindInTheWay(const Text& myFilename, Files& theFiles)
{
    try
    {
        return theFiles.LookExactly(myFilename).Kind;
    }
    catch (const Error& e)
    {
        if (e.Number == ErrorNumber::FileNotFound || e.Number == ErrorNumber::PathNotFound)
        {
            return std::nullopt;
        }
        throw Failure(Printable(TextOf(NativeName(myFilename))) + " cannot be written: " + ReasonOf(e.Number, {}));
    }
}

/// Makes sure that a file may be written: its name is free, or a plain file there may be replaced. True: a file will be
/// replaced.
bool DemandPlace(const Text& myFilename, Files& theFiles, bool myMayReplace)
{
    const std::optional<EntryKind> myKind = KindInTheWay(myFilename, theFiles);
    if (!myKind || (*myKind == EntryKind::File && myMayReplace))
    {
        return myKind.has_value();
    }
    const std::string myName = Printable(TextOf(NativeName(myFilename)));
    switch (*myKind)
    {
    case EntryKind::File:
        throw Failure(myName + " exists already; --force replaces it");
    case EntryKind::Folder:
        throw Failure(myName + " exists already, as a folder; move it away");
    default:
        throw Failure(myName + " exists already, and is no plain file; move it away");
    }
}

std::string Counted(uint64_t myCount, const char* myNoun)
{
    return std::to_string(myCount) + " " + myNoun + (myCount == 1 ? "" : "s");
}

void ListFiles(const Arguments& myArguments)
{
    OpenArchive myArchive(myArguments.File);
    const ListedFiles myFiles = myArchive.Listed();
    PrintTable(myFiles.Rows);
    std::cout << Counted(myFiles.Names.size(), "file") << ", "
              << Counted(static_cast<uint64_t>(myArchive.Archive.TotalSize()), "byte") << "\n";
}

void Pack(const Arguments& myArguments)
{
    if (!fs::is_directory(RealName(myArguments.Folder)))
    {
        throw Failure("there is no folder " + TextOf(myArguments.Folder) + " to pack");
    }
    const auto myWay = RealName(myArguments.File).lexically_relative(fs::canonical(myArguments.Folder));
    if (!myWay.empty() && *myWay.begin() != "..")
    {
        throw UsageFailure("an archive cannot be in the folder that it packs; choose another place for it");
    }
    if (TypeOfEntry(myArguments.File) == fs::file_type::symlink)
    {
        throw Failure(TextOf(myArguments.File) + " is a link, which an archive does not replace; give the file itself");
    }
    const fs::path myTarget = RealName(myArguments.File);
    const fs::path myNewFile = UnfinishedName(myTarget); // so that a failure leaves an older archive as it was
    OpenArchive myArchive(myNewFile);
    DemandPlace(DemandedName(myTarget), myArchive.Disk, myArguments.Force);
    const ScopeGuard myRemoval([&] { Succeeds([&] { RemoveFile(myNewFile); }); });
    const ProgressLine myLine(std::cerr, IsTerminal(Output::Errors));
    myArchive.Archive.BaseFolder(DemandedName(myArguments.Folder));
    myArchive.Archive.ProgessCreate = [&](const Text& myName, int32_t& myPercent, bool& /*myCancel*/)
    {
        myLine.Show(std::to_string(myPercent) + " % " + Printable(ToUtf8(myName)));
    };
    if (!myArchive.Archive.PackArchive())
    {
        throw Failure("packing failed " + FailureOf(myArchive.Archive));
    }
    RenameFile(myNewFile, myTarget);
}

/// Makes sure, before anything is written, that every file of an archive may be unpacked to its place.
void DemandPlaces(OpenArchive& theArchive, const std::vector<Text>& myNames, const Text& myFolder, bool myMayReplace)
{
    std::unordered_map<Text, bool> myFolderIsThere;
    std::unordered_set<Text> myLowerNames;
    for (const Text& myName : myNames)
    {
        if (classArchive::LeavesFolder(myName))
        {
            throw Failure("the archive contains " + Printable(ToUtf8(myName)) + ", which leads out of the folder");
        }
        const Text myTarget = classArchive::Concat(myFolder, myName);
        const auto [myParent, myIsNew] = myFolderIsThere.try_emplace(myTarget.substr(0, myTarget.rfind(u'\\')));
        if (myIsNew)
        {
            myParent->second = theArchive.Disk.IsFolder(myParent->first);
        }
        if (myParent->second && DemandPlace(myTarget, theArchive.Disk, myMayReplace) && theArchive.IsAt(myTarget))
        {
            throw Failure(Printable(TextOf(NativeName(myTarget))) +
                          " is the archive itself, which cannot replace itself; unpack it into another folder");
        }
        if (!myLowerNames.insert(LowerCase(myName)).second && !myMayReplace)
        {
            throw Failure("the archive contains " + Printable(ToUtf8(myName)) +
                          " more than once, without regard to case; --force unpacks them all, and of those with one "
                          "name the last one stays");
        }
    }
}

void Unpack(const Arguments& myArguments)
{
    OpenArchive myArchive(myArguments.File);
    const Text myFolder = DemandedName(myArguments.Folder);
    const std::vector<Text> myNames = myArchive.Listed().Names;
    if (fs::exists(myArguments.Folder) && !fs::is_directory(myArguments.Folder))
    {
        throw Failure(Printable(TextOf(myArguments.Folder)) + " is a file; give a folder to unpack into");
    }
    DemandPlaces(myArchive, myNames, myFolder, myArguments.Force);
    const ProgressLine myLine(std::cerr, IsTerminal(Output::Errors));
    size_t myCount = 0;
    myArchive.Archive.BaseFolder(myFolder);
    myArchive.Archive.ProgessUnpack = [&](const Text& myName, bool& /*myCancel*/)
    {
        myLine.Show(std::to_string(++myCount) + "/" + std::to_string(myNames.size()) + " " + Printable(ToUtf8(myName)));
    };
    if (!myArchive.Archive.UnPackArchive())
    {
        throw Failure("unpacking failed " + FailureOf(myArchive.Archive) + ". The files before it stay");
    }
}

CLI::App* AddArchiveCommand(CLI::App& theGroup, const char* myName, const char* myHelp, Arguments& theArguments,
                            void (*myAction)(const Arguments&))
{
    CLI::App* const theCommand = theGroup.add_subcommand(myName, myHelp);
    AddPath(*theCommand, "FILE", theArguments.File, "The archive")->required()->type_name("");
    theCommand->callback([&theArguments, myAction] { myAction(theArguments); });
    return theCommand;
}

} // namespace

void DemandArchive(const fs::path& myFile)
{
    OpenArchive(myFile).Listed();
}

void AddArchiveCommands(CLI::App& theApplication, Arguments& theArguments)
{
    CLI::App* const myGroup = AddGroup(theApplication, "archive", "Design archives, the files with imported designs");
    AddArchiveCommand(*myGroup, "list", "Lists the files in an archive", theArguments, ListFiles);
    CLI::App* const myPack = AddArchiveCommand(*myGroup, "pack", "Packs the files of a folder", theArguments, Pack);
    myPack->footer(
        "Left out are links, hidden files, names that contain \"\\\" or are not UTF-8, and whatever is no plain file.");
    CLI::App* const myUnpack =
        AddArchiveCommand(*myGroup, "unpack", "Unpacks an archive into a folder", theArguments, Unpack);
    for (CLI::App* const myCommand : {myPack, myUnpack})
    {
        AddPath(*myCommand, "FOLDER", theArguments.Folder, "The folder")->required()->type_name("");
        myCommand->add_flag("--force", theArguments.Force, "Replaces existing files");
    }
}

} // namespace qel::host

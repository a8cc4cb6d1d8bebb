#include "archive/classArchive.h"
#include "Commands.h"
#include "Failure.h"
#include "Markup.h"
#include "platform/linux/NativePath.h"
#include "platform/ListView.h"
#include "platform/Platform.h"
#include "text/encodings.h"
#include "text/errors.h"

#include <iostream>

#include <unistd.h>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

/// Takes the items as rows of a table, and their full names.
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

Text LogicalName(const fs::path& myPath)
{
    const std::optional<Text> theName = LogicalPath(fs::weakly_canonical(fs::absolute(myPath)).string());
    if (!theName)
    {
        throw UsageFailure(myPath.string() + " cannot be named to the component: use a path without \"\\\", in UTF-8");
    }
    return *theName;
}

/// An archive with the ports that it works on.
class OpenArchive
{
public:
    explicit OpenArchive(const fs::path& theFile) : myFile(theFile) { Archive.ArchiveFilename(LogicalName(myFile)); }

    ListedFiles Listed()
    {
        if (!Archive.ReadArchive())
        {
            throw Failure(myFile.string() +
                          " cannot be read as an archive: it is missing, damaged, in use, or something else");
        }
        ListedFiles theFiles;
        Archive.FillList(theFiles);
        return theFiles;
    }

    std::unique_ptr<SystemPlatform> System = MakeSystemPlatform();
    classArchive Archive{System->Ports().files};

private:
    fs::path myFile;
};

/// Writes one line over and over while a terminal looks on, and clears it when it goes.
class ProgressLine
{
public:
    ProgressLine() = default;
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine() { Show(""); }

    void Show(const std::string& myText) const
    {
        if (myIsTerminal)
        {
            std::cerr << "\r\033[K" << myText << std::flush;
        }
    }

private:
    bool myIsTerminal = isatty(STDERR_FILENO) != 0;
};

/// True when writing a file would replace something, which is found without regard to case as the writing does.
bool IsInTheWay(const Text& myFilename, Files& theFiles)
{
    try
    {
        theFiles.Length(myFilename);
        return true;
    }
    catch (const Error& e)
    {
        return e.Number != ErrorNumber::FileNotFound && e.Number != ErrorNumber::PathNotFound;
    }
}

void List(const Arguments& myArguments)
{
    OpenArchive myArchive(myArguments.File);
    PrintTable(myArchive.Listed().Rows);
    std::cout << ToUtf8(myArchive.Archive.FileCount()) << " files, "
              << static_cast<int64_t>(myArchive.Archive.TotalSize()) << " bytes\n";
}

void Pack(const Arguments& myArguments)
{
    if (!fs::is_directory(myArguments.Folder))
    {
        throw Failure("there is no folder " + myArguments.Folder.string() + " to pack");
    }
    const auto myWay = fs::weakly_canonical(myArguments.File).lexically_relative(fs::canonical(myArguments.Folder));
    if (!myWay.empty() && *myWay.begin() != "..")
    {
        throw UsageFailure("an archive cannot lie in the folder that it packs; name another place for it");
    }
    OpenArchive myArchive(myArguments.File);
    if (IsInTheWay(LogicalName(myArguments.File), myArchive.System->Ports().files) && !myArguments.Force)
    {
        throw Failure(myArguments.File.string() + " is there already; --force replaces it");
    }
    const ProgressLine myLine;
    myArchive.Archive.BaseFolder(LogicalName(myArguments.Folder));
    myArchive.Archive.ProgessCreate = [&](const Text& myName, int32_t& myPercent, bool& /*myCancel*/)
    {
        myLine.Show(std::to_string(myPercent) + " % " + Tamed(ToUtf8(myName)));
    };
    if (!myArchive.Archive.PackArchive())
    {
        throw Failure(myArguments.Folder.string() +
                      " cannot be packed: " + ToUtf8(ErrorDescription(myArchive.Archive.FailureNumber())));
    }
}

/// The first file below a folder that unpacking would replace; empty if there is none.
fs::path FirstInTheWay(const std::vector<Text>& myNames, const Text& myFolder, Files& theFiles)
{
    for (const Text& myName : myNames)
    {
        const Text myTarget = classArchive::Concat(myFolder, myName);
        if (IsInTheWay(myTarget, theFiles))
        {
            return NativePath(myTarget);
        }
    }
    return {};
}

void Unpack(const Arguments& myArguments)
{
    OpenArchive myArchive(myArguments.File);
    const Text myFolder = LogicalName(myArguments.Folder);
    Files& theFiles = myArchive.System->Ports().files;
    const std::vector<Text> myNames = myArchive.Listed().Names;
    const auto myMemory = theFiles.RememberFolders();
    const fs::path myInTheWay = FirstInTheWay(myNames, myFolder, theFiles);
    if (!myInTheWay.empty() && !myArguments.Force)
    {
        throw Failure(myInTheWay.string() + " is there already; --force replaces it");
    }
    const ProgressLine myLine;
    size_t myCount = 0;
    myArchive.Archive.BaseFolder(myFolder);
    myArchive.Archive.ProgessUnpack = [&](const Text& myName, bool& /*myCancel*/)
    {
        myLine.Show(std::to_string(++myCount) + "/" + std::to_string(myNames.size()) + " " + Tamed(ToUtf8(myName)));
    };
    if (!myArchive.Archive.UnPackArchive())
    {
        const std::string myPlace = myCount < myNames.size() ? Tamed(ToUtf8(myNames[myCount])) : "its end";
        throw Failure("unpacking failed at " + myPlace +
                      ": its name leads out of the folder, or the folder cannot be written. What came before it stays");
    }
}

CLI::App* AddArchiveCommand(CLI::App& theGroup, const char* myName, const char* myHelp, Arguments& theArguments,
                            void (*myAction)(const Arguments&))
{
    CLI::App* const theCommand = theGroup.add_subcommand(myName, myHelp);
    theCommand->add_option("FILE", theArguments.File, "The archive")->required()->type_name("");
    theCommand->callback([&theArguments, myAction] { myAction(theArguments); });
    return theCommand;
}

} // namespace

void AddArchiveCommands(CLI::App& theApplication, Arguments& theArguments)
{
    CLI::App* const myGroup = AddGroup(theApplication, "archive", "Design archives, the files with imported designs");
    AddArchiveCommand(*myGroup, "list", "Lists what an archive holds", theArguments, List);
    CLI::App* const myPack =
        AddArchiveCommand(*myGroup, "pack", "Packs the files of a folder, links left out", theArguments, Pack);
    CLI::App* const myUnpack =
        AddArchiveCommand(*myGroup, "unpack", "Unpacks an archive into a folder", theArguments, Unpack);
    for (CLI::App* const myCommand : {myPack, myUnpack})
    {
        myCommand->add_option("FOLDER", theArguments.Folder, "The folder")->required()->type_name("");
        myCommand->add_flag("--force", theArguments.Force, "Replaces what is there already");
    }
}

} // namespace qel::host

#include "build/OutputFolder.h"

#include "common/Failure.h"
#include "site/siteFiles.h"

#include <array>
#include <sstream>

namespace qel::host
{

namespace
{

constexpr std::array mySubfolders{"images", "media", "files"};
constexpr const char* myListName = ".qelhost";

[[noreturn]] void FailForeign(const fs::path& myPath, const char* myReason)
{
    throw Failure("the build does not touch " + myPath.string() + ": " + myReason + "; move it away and build again");
}

/// Makes a folder unless it is there.
void DemandFolder(const fs::path& myFolder)
{
    const fs::file_status myStatus = fs::symlink_status(myFolder);
    if (fs::is_symlink(myStatus))
    {
        FailForeign(myFolder, "it is a link");
    }
    if (fs::exists(myStatus) && !fs::is_directory(myStatus))
    {
        FailForeign(myFolder, "it is not a folder");
    }
    fs::create_directory(myFolder);
}

} // namespace

OutputFolder::OutputFolder(const fs::path& theFolder) : myFolder(theFolder)
{
    DemandFolder(myFolder);
    if (fs::exists(fs::symlink_status(myFolder / myListName)))
    {
        std::istringstream myLines(ReadWholeFile(myFolder / myListName));
        for (std::string myLine; std::getline(myLines, myLine);)
        {
            myWritten.insert(myLine);
        }
    }
    else if (!fs::is_empty(myFolder))
    {
        FailForeign(myFolder, "it holds files that qelhost did not make");
    }
    StoreList();
    for (const char* mySubfolder : mySubfolders)
    {
        DemandFolder(myFolder / mySubfolder);
    }
}

void OutputFolder::Empty(const std::set<std::string>& myPages)
{
    for (const char* mySubfolder : mySubfolders)
    {
        for (const fs::directory_entry& myEntry : fs::directory_iterator(myFolder / mySubfolder))
        {
            if (fs::is_directory(myEntry.symlink_status()))
            {
                FailForeign(myEntry.path(), "qelhost did not make this folder");
            }
        }
    }
    for (const char* mySubfolder : mySubfolders)
    {
        for (const std::string& myName : NamesInFolder(myFolder / mySubfolder))
        {
            fs::remove(myFolder / mySubfolder / myName);
        }
    }
    for (const std::string& myPage : myWritten)
    {
        if (!myPages.contains(myPage) && NameProblem(myPage).empty())
        {
            fs::remove(myFolder / myPage);
        }
    }
    myWritten = myPages;
    StoreList();
}

void OutputFolder::Refresh(const std::vector<Record>& myRecords, const fs::path& myDataFolder) const
{
    for (const Record& myRecord : myRecords)
    {
        const fs::path myCopy =
            myFolder / (myRecord.Kind == RecordKind::Picture ? "images" : "files") / myRecord.Filename;
        const fs::path mySource = myDataFolder / myRecord.Filename;
        if (HasFile(myRecord.Kind) && fs::exists(fs::symlink_status(myCopy)) && fs::exists(mySource))
        {
            CopyWholeFile(mySource, myCopy);
        }
    }
}

void OutputFolder::Write(const std::string& myPage, std::string_view myBytes)
{
    if (myWritten.insert(myPage).second)
    {
        StoreList();
    }
    WriteWholeFile(myFolder / myPage, myBytes);
}

void OutputFolder::StoreList() const
{
    std::string myLines;
    for (const std::string& myPage : myWritten)
    {
        myLines += myPage + "\n";
    }
    WriteWholeFile(myFolder / myListName, myLines);
}

} // namespace qel::host

#include "build/OutputFolder.h"

#include "common/Failure.h"
#include "common/paths.h"
#include "site/fileOperations.h"
#include "site/siteFiles.h"

#include <algorithm>
#include <sstream>

namespace qel::host
{

namespace
{

constexpr const char* ListName = ".qelhost";
constexpr const char* UnfinishedLine = ":unfinished";

[[noreturn]] void FailForeign(const fs::path& myPath, const char* myReason)
{
    throw Failure("the build does not touch " + TextOf(myPath) + ": " + myReason + "; move it away and build again");
}

/// Makes a folder unless it is there.
void DemandFolder(const fs::path& myFolder)
{
    const fs::file_type myType = TypeOfEntry(myFolder);
    if (myType == fs::file_type::symlink)
    {
        FailForeign(myFolder, "it is a link");
    }
    if (myType != fs::file_type::not_found && myType != fs::file_type::directory)
    {
        FailForeign(myFolder, "it is not a folder");
    }
    MakeFolder(myFolder);
}

/// The folders on the way to a path of the list, such as "/css/" and "/css/fonts/" for "/css/fonts/a.woff".
std::vector<std::string> FoldersOf(const std::string& myPath)
{
    std::vector<std::string> theFolders;
    for (std::size_t mySlash = 0; (mySlash = myPath.find('/', mySlash + 1)) != std::string::npos;)
    {
        theFolders.push_back(myPath.substr(0, mySlash + 1));
    }
    return theFolders;
}

/// True for a line of the list that names a static file or folder inside the build. Others may have changed the list.
bool IsStaticPath(const std::string& myLine)
{
    const bool myIsHidden = myLine.find("/.") != std::string::npos; // also "/.." and "/./"
    const bool myIsForeign = !HoldsAllNames && myLine.find_first_of("\\:") != std::string::npos;
    const bool myIsSubfolder = std::ranges::any_of(OutputSubfolders, [&](const char* myName)
                                                   { return myLine.starts_with("/" + std::string(myName) + "/"); });
    return myLine.starts_with('/') && !myIsHidden && !myIsForeign && !myIsSubfolder;
}

} // namespace

OutputFolder::OutputFolder(const fs::path& theFolder) : myFolder(theFolder)
{
    DemandFolder(myFolder);
    ReadList();
    StoreList(OnDisk::Now); // before anything else changes
    for (const char* mySubfolder : OutputSubfolders)
    {
        DemandFolder(myFolder / mySubfolder);
    }
    RemoveUnfinished();
}

void OutputFolder::ReadList()
{
    if (TypeOfEntry(myFolder / ListName) == fs::file_type::not_found)
    {
        // A program that was killed may have left the unfinished list, and nothing else.
        RemoveUnfinishedFiles(myFolder, Unfinished::OfAllPrograms);
        if (!NamesInFolder(myFolder).empty())
        {
            FailForeign(myFolder, "it contains files that qelhost did not make");
        }
        return;
    }
    std::istringstream myLines(ReadWholeFile(myFolder / ListName));
    for (std::string myLine; std::getline(myLines, myLine);)
    {
        myWritten.insert(myLine);
    }
    myWasInterrupted = myWritten.erase(UnfinishedLine) > 0;
}

void OutputFolder::RemoveUnfinished() const
{
    RemoveUnfinishedFiles(myFolder, Unfinished::OfAllPrograms);
    for (const char* mySubfolder : OutputSubfolders)
    {
        RemoveUnfinishedFiles(myFolder / mySubfolder, Unfinished::OfAllPrograms);
    }
    for (const std::string& myLine : myWritten)
    {
        if (myLine.ends_with('/') && IsStaticPath(myLine) && IsReachable(myLine))
        {
            RemoveUnfinishedFiles(myFolder / PathOf(myLine.substr(1)), Unfinished::OfAllPrograms);
        }
    }
}

void OutputFolder::Empty(const std::set<std::string>& myPages)
{
    for (const char* mySubfolder : OutputSubfolders)
    {
        for (const std::string& myName : NamesInFolder(myFolder / mySubfolder))
        {
            if (TypeOfEntry(myFolder / mySubfolder / PathOf(myName)) == fs::file_type::directory)
            {
                FailForeign(myFolder / mySubfolder / PathOf(myName), "qelhost did not make this folder");
            }
        }
    }
    for (const char* mySubfolder : OutputSubfolders)
    {
        for (const std::string& myName : NamesInFolder(myFolder / mySubfolder))
        {
            RemoveFile(myFolder / mySubfolder / PathOf(myName));
        }
    }
    std::erase_if(myWritten,
                  [&](const std::string& myPage)
                  {
                      const bool myIsStale = !myPage.starts_with('/') && !myPages.contains(myPage);
                      if (myIsStale && NameProblem(myPage).empty() &&
                          TypeOfEntry(myFolder / PathOf(myPage)) != fs::file_type::directory)
                      {
                          RemoveFile(myFolder / PathOf(myPage));
                      }
                      return myIsStale;
                  });
    std::ranges::copy_if(myPages, std::inserter(myWritten, myWritten.end()),
                         [](const std::string& myPage) { return NameProblem(myPage).empty(); });
    StoreList();
}

bool OutputFolder::IsReachable(const std::string& myPath) const
{
    for (const std::string& myParent : FoldersOf(myPath))
    {
        const fs::file_type myType = TypeOfEntry(myFolder / PathOf(myParent.substr(1, myParent.size() - 2)));
        if (myType != fs::file_type::directory)
        {
            return myType == fs::file_type::not_found;
        }
    }
    return true;
}

void OutputFolder::RemoveStaleStatic(const std::set<std::string>& myWanted)
{
    std::vector<std::string> myStale;
    std::ranges::copy_if(myWritten, std::back_inserter(myStale),
                         [&](const std::string& myLine)
                         { return myLine.starts_with('/') && !myWanted.contains(myLine); });
    std::ranges::reverse(myStale); // the content of a folder before the folder
    for (const std::string& myLine : myStale)
    {
        const fs::path myPath = myFolder / PathOf(myLine.substr(1));
        if (IsStaticPath(myLine) && IsReachable(myLine) && myLine.ends_with('/'))
        {
            std::error_code myIgnored; // other files may be in it
            fs::remove(myFolder / PathOf(myLine.substr(1, myLine.size() - 2)), myIgnored);
        }
        else if (IsStaticPath(myLine) && IsReachable(myLine) && TypeOfEntry(myPath) != fs::file_type::directory)
        {
            RemoveFile(myPath);
        }
        myWritten.erase(myLine);
    }
}

std::string OutputFolder::ObstacleTo(const StaticFile& myFile) const
{
    const fs::path myTarget = myFolder / PathOf(myFile.Path);
    const std::string myHint = "; move " + TextOf(myTarget) + " away";
    if (!IsReachable("/" + myFile.Path))
    {
        return "its path in the build leads through a link, or a file that qelhost did not make" + myHint;
    }
    const fs::file_type myType = TypeOfEntry(myTarget);
    const bool myIsOwn = myWritten.contains("/" + myFile.Path) || myWritten.contains(myFile.Path);
    if (myType == fs::file_type::directory)
    {
        return "the build has a folder of this name that qelhost did not make" + myHint;
    }
    return myType == fs::file_type::not_found || myIsOwn || HaveSameContent(myFile.Source, myTarget)
               ? std::string()
               : "the build has a file of this name that qelhost did not make" + myHint;
}

std::vector<StaticFile> OutputFolder::ClaimStatic(const std::vector<StaticFile>& myFiles,
                                                  std::vector<std::string>& theProblems)
{
    std::set<std::string> myWanted;
    for (const StaticFile& myFile : myFiles)
    {
        const std::string myLine = "/" + myFile.Path;
        myWanted.insert(myLine);
        std::ranges::copy(FoldersOf(myLine), std::inserter(myWanted, myWanted.end()));
    }
    RemoveStaleStatic(myWanted);
    std::vector<StaticFile> theClaimed;
    std::vector<std::string> myNewLines;
    for (const StaticFile& myFile : myFiles)
    {
        if (const std::string myObstacle = ObstacleTo(myFile); !myObstacle.empty())
        {
            theProblems.push_back("static/" + myFile.Path + ": " + myObstacle);
            continue;
        }
        theClaimed.push_back(myFile);
        myNewLines.push_back("/" + myFile.Path);
        std::ranges::copy_if(FoldersOf(myNewLines.back()), std::back_inserter(myNewLines),
                             [&](const std::string& myParent) {
                                 return TypeOfEntry(myFolder / PathOf(myParent.substr(1, myParent.size() - 2))) ==
                                        fs::file_type::not_found;
                             });
    }
    myWritten.insert(myNewLines.begin(), myNewLines.end());
    StoreList();
    return theClaimed;
}

void OutputFolder::CopyStatic(const StaticFile& myFile) const
{
    const fs::path myTarget = myFolder / PathOf(myFile.Path);
    MakeFolder(myTarget.parent_path());
    if (!HaveSameContent(myFile.Source, myTarget))
    {
        CopyWholeFile(myFile.Source, myTarget, OnDisk::Later);
    }
}

void OutputFolder::Refresh(const std::vector<Record>& myRecords, const fs::path& myDataFolder) const
{
    for (const Record& myRecord : myRecords)
    {
        if (!HasFile(myRecord.Kind) || !NameProblem(myRecord.Filename).empty())
        {
            continue;
        }
        const fs::path mySubfolder = myFolder / (myRecord.Kind == RecordKind::Picture ? "images" : "files");
        const fs::path mySource = myDataFolder / PathOf(myRecord.Filename);
        if (TypeOfEntry(mySubfolder / PathOf(myRecord.Filename)) != fs::file_type::not_found &&
            TypeOfEntry(mySource) != fs::file_type::not_found)
        {
            CopyWholeFile(mySource, mySubfolder / PathOf(myRecord.Filename), OnDisk::Later);
        }
    }
}

void OutputFolder::Write(const std::string& myPage, std::string_view myBytes)
{
    if (myWritten.insert(myPage).second)
    {
        StoreList();
    }
    WriteWholeFile(myFolder / PathOf(myPage), myBytes, OnDisk::Later);
}

void OutputFolder::Finish()
{
    myIsFinished = true;
    StoreList();
}

void OutputFolder::StoreList(OnDisk myTime) const
{
    std::string myLines = myIsFinished ? "" : std::string(UnfinishedLine) + "\n";
    for (const std::string& myLine : myWritten)
    {
        myLines += myLine + "\n";
    }
    WriteWholeFile(myFolder / ListName, myLines, myTime);
}

} // namespace qel::host

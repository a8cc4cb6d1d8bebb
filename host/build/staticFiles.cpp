#include "build/staticFiles.h"

#include "build/OutputFolder.h"
#include "common/Failure.h"
#include "common/paths.h"
#include "site/fileOperations.h"
#include "site/siteFiles.h"
#include "text/encodings.h"

#include <algorithm>
#include <map>

namespace qel::host
{

namespace
{

/// What has which name at the top of a build, by the name in lower case.
using Owners = std::map<Text, std::string>;

Owners OwnersOf(const std::vector<Page>& myPages)
{
    Owners theOwners;
    for (const char* mySubfolder : OutputSubfolders)
    {
        theOwners[FromUtf8(mySubfolder)] = std::string("a build writes its own files to ") + mySubfolder + "/";
    }
    for (const Page& myPage : myPages)
    {
        theOwners[LowerCase(FromUtf8(myPage.Name))] = "the page " + myPage.Name + " has this name";
    }
    return theOwners;
}

/// The reason why an entry is left out; the empty text if it is not.
std::string ProblemOf(const fs::path& myEntry, bool myIsAtTop, fs::file_type myType, const Owners& myOwners)
{
    const std::string myName = TextOf(myEntry.filename());
    const auto IsControl = [](char myCharacter)
    {
        return static_cast<unsigned char>(myCharacter) < 0x20 || myCharacter == 0x7F;
    };
    if (IsHidden(myEntry))
    {
        return "hidden files are not published; rename or remove it";
    }
    if (!IsUtf8(myName) || std::ranges::any_of(myName, IsControl))
    {
        return "its name contains a control character or is not valid UTF-8; rename it";
    }
    if (myType == fs::file_type::symlink)
    {
        return "it is a link, and links are not followed; put the file itself there";
    }
    if (myType == fs::file_type::not_found)
    {
        return "it cannot be reached, because its path is too long or it has just been removed; give it a shorter one";
    }
    if (myType != fs::file_type::regular && myType != fs::file_type::directory)
    {
        return "it is neither a file nor a folder; remove it";
    }
    const auto myOwner = myIsAtTop ? myOwners.find(LowerCase(FromUtf8(myName))) : myOwners.end();
    return myOwner == myOwners.end() ? std::string() : myOwner->second + "; rename it";
}

/// Warns of files that this system keeps and Windows does not.
void AddWarnings(StaticFiles& theFiles, const std::string& myShownFolder)
{
    std::map<Text, std::string> myTwins;
    for (const StaticFile& myFile : theFiles.Files)
    {
        const fs::path myPath = PathOf(myFile.Path);
        for (const fs::path& myPart : myPath)
        {
            if (const std::string myWarning = WindowsNameWarning(TextOf(myPart)); !myWarning.empty())
            {
                theFiles.Warnings.push_back(std::string(myShownFolder).append(myFile.Path).append(": ") + myWarning);
            }
        }
        const auto [myTwin, myIsNew] = myTwins.try_emplace(LowerCase(FromUtf8(myFile.Path)), myFile.Path);
        if (!myIsNew)
        {
            theFiles.Warnings.push_back(std::string(myShownFolder).append(myFile.Path) + ": its name and that of " +
                                        myTwin->second + " differ in case alone, which Windows does not tell apart; " +
                                        "give another one if the site is to be used there");
        }
    }
}

} // namespace

StaticFiles ListStaticFiles(const fs::path& myFolder, const std::vector<Page>& myPages)
{
    const std::string myShownFolder = TextOf(myFolder.filename()) + "/";
    const fs::file_type myTopType = TypeOfEntry(myFolder);
    if (myTopType != fs::file_type::directory)
    {
        return {
            {},
            myTopType == fs::file_type::not_found
                ? std::vector<std::string>()
                : std::vector{myShownFolder + ": it is not a folder, or a link to one; put the folder itself there"},
            {}};
    }
    const Owners myOwners = OwnersOf(myPages);
    StaticFiles theFiles;
    std::vector<std::string> myFolders{""}; // still to be read
    while (!myFolders.empty())
    {
        const std::string myPath = myFolders.back();
        myFolders.pop_back();
        try
        {
            for (const std::string& myName : NamesInFolder(myFolder / PathOf(myPath)))
            {
                const std::string myEntry = myPath + myName;
                const fs::path mySource = myFolder / PathOf(myEntry);
                const fs::file_type myType = TypeOfEntry(mySource);
                const std::string myProblem = ProblemOf(mySource, myPath.empty(), myType, myOwners);
                if (!myProblem.empty())
                {
                    theFiles.Problems.push_back(
                        std::string(myShownFolder).append(myEntry).append(": ").append(myProblem));
                }
                else if (myType == fs::file_type::directory)
                {
                    myFolders.push_back(myEntry + "/");
                }
                else
                {
                    theFiles.Files.push_back({myEntry, mySource});
                }
            }
        }
        catch (const Failure& myFailure)
        {
            theFiles.Problems.push_back(myShownFolder + myPath + ": " + myFailure.what());
        }
    }
    std::ranges::sort(theFiles.Files, {}, &StaticFile::Path);
    AddWarnings(theFiles, myShownFolder);
    return theFiles;
}

} // namespace qel::host

#include "platform/linux/PathFinder.h"

#include "platform/linux/systemErrors.h"
#include "text/encodings.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <sys/stat.h>

namespace qel
{
namespace
{

/// A path cut in three: "x/y/", "name", and the "/" that may stand behind it.
struct PathParts
{
    std::string_view Folder;
    std::string_view Name;
    std::string_view Tail;
};

PathParts PartsOf(std::string_view myPath)
{
    const size_t myEnd = myPath.find_last_not_of('/') + 1;
    const size_t myStart = myPath.substr(0, myEnd).rfind('/') + 1;
    return {myPath.substr(0, myStart), myPath.substr(myStart, myEnd - myStart), myPath.substr(myEnd)};
}

/// One name that others are compared with.
class WantedName
{
public:
    explicit WantedName(std::string_view myName) : myLowerCase(LowerCase(FromUtf8(myName))) {}

    bool IsLike(std::string_view myName) const
    {
        // Most names differ early, in plain ASCII, and need not be decoded to see it.
        for (size_t i = 0; i < myName.size() && static_cast<unsigned char>(myName[i]) < 0x80; ++i)
        {
            if (i >= myLowerCase.size() || LowerCase(static_cast<char16_t>(myName[i])) != myLowerCase[i])
            {
                return false;
            }
        }
        const std::optional<Text> myText = FromUtf8Exactly(myName);
        return myText && LowerCase(*myText) == myLowerCase;
    }

private:
    Text myLowerCase;
};

/// The name itself or the first that is like it; empty when the folder has none.
std::string FindByReading(FolderReader& myReader, std::string_view myName)
{
    const WantedName myWanted(myName);
    std::string theFound;
    while (const dirent* const myEntry = myReader.Next())
    {
        const std::string_view myEntryName = myEntry->d_name;
        if (myEntryName == myName)
        {
            return std::string(myName);
        }
        if (myWanted.IsLike(myEntryName) && (theFound.empty() || myEntryName < theFound))
        {
            theFound = myEntryName;
        }
    }
    return theFound;
}

} // namespace

// The names of twins differ only in letters that have a lower case. None of these is half of a surrogate pair, so the
// order of their bytes is the order of their character codes.

FolderNames::Map::const_iterator FolderNames::FindExactly(const Text& myLowerCase, std::string_view myName) const
{
    const auto [myFirst, myEnd] = myNames.equal_range(myLowerCase);
    const auto theFound = std::find_if(myFirst, myEnd, [&](const auto& n) { return n.second == myName; });
    return theFound == myEnd ? myNames.end() : theFound;
}

void FolderNames::Add(std::string_view myName)
{
    if (const std::optional<Text> myText = FromUtf8Exactly(myName))
    {
        Text myLowerCase = LowerCase(*myText);
        if (FindExactly(myLowerCase, myName) == myNames.end())
        {
            myNames.emplace(std::move(myLowerCase), myName);
        }
    }
}

void FolderNames::Remove(std::string_view myName)
{
    if (const auto myFound = FindExactly(LowerCase(FromUtf8(myName)), myName); myFound != myNames.end())
    {
        myNames.erase(myFound);
    }
}

const std::string* FolderNames::Find(std::string_view myName) const
{
    const std::string* theFound = nullptr;
    const auto [myFirst, myEnd] = myNames.equal_range(LowerCase(FromUtf8(myName)));
    for (auto i = myFirst; i != myEnd; ++i)
    {
        if (i->second == myName)
        {
            return &i->second;
        }
        if (theFound == nullptr || i->second < *theFound)
        {
            theFound = &i->second;
        }
    }
    return theFound;
}

Place PathFinder::Find(const std::string& myPath)
{
    const PathParts myParts = PartsOf(myPath);
    if (myParts.Name.empty())
    {
        return {myPath, Missing::Name};
    }
    std::string myFolder(myParts.Folder);
    std::string myFound;
    const FolderNames* myNames = NamesAround(myPath);
    if (myNames == nullptr)
    {
        FolderReader myReader = OpenFolder(myFolder);
        if (!myReader.IsOpen() && (errno == ENOENT || errno == ENOTDIR))
        {
            return {myPath, Missing::Folder};
        }
        if (!myReader.IsOpen() && errno != EACCES)
        {
            RaiseSystemError(errno);
        }
        if (myReader.IsOpen() && myRemembering > 0)
        {
            myNames = &ReadNames(myParts.Folder, myFolder, myReader);
        }
        else if (myReader.IsOpen())
        {
            myFound = FindByReading(myReader, myParts.Name);
        }
    }
    if (myNames != nullptr)
    {
        const std::string* const myName = myNames->Find(myParts.Name);
        myFound = myName != nullptr ? *myName : std::string();
        myFolder = myNames->Path;
    }
    const bool myIsThere = !myFound.empty();
    myFolder.append(myIsThere ? myFound : myParts.Name).append(myParts.Tail);
    return {std::move(myFolder), myIsThere ? Missing::Nothing : Missing::Name};
}

FolderReader PathFinder::OpenFolder(std::string& theFolder)
{
    FolderReader theReader(theFolder);
    if (theReader.IsOpen() || errno != ENOENT)
    {
        return theReader;
    }
    Place myPlace = Find(theFolder);
    if (myPlace.What != Missing::Nothing)
    {
        errno = ENOENT;
        return theReader;
    }
    theFolder = std::move(myPlace.Path);
    return FolderReader(theFolder);
}

FolderNames& PathFinder::ReadNames(std::string_view mySpelling, const std::string& myFolder, FolderReader& myReader)
{
    struct stat myFacts = {};
    if (fstat(myReader.Handle(), &myFacts) != 0)
    {
        RaiseSystemError(errno);
    }
    const std::pair myKey(myFacts.st_dev, myFacts.st_ino);
    auto myPosition = myFolders.find(myKey);
    if (myPosition == myFolders.end())
    {
        FolderNames myNames;
        // What changes between this and the end of the reading is told as well, and does no harm when it is seen twice.
        myNames.Watch = myOutermost == Memory::Lasting ? myWatch.Begin(myReader.Handle()) : std::nullopt;
        while (const dirent* const myEntry = myReader.Next())
        {
            myNames.Add(myEntry->d_name);
        }
        myPosition = myFolders.emplace(myKey, std::move(myNames)).first;
    }
    myPosition->second.Path = myFolder;
    mySpellings.emplace(mySpelling, &myPosition->second);
    return myPosition->second;
}

FolderNames* PathFinder::NamesAround(std::string_view myPath)
{
    if (myRemembering == 0 || myFolders.empty())
    {
        return nullptr;
    }
    const std::string_view myFolder = PartsOf(myPath).Folder;
    if (const auto mySpelling = mySpellings.find(myFolder); mySpelling != mySpellings.end())
    {
        return mySpelling->second;
    }
    struct stat myFacts = {};
    if (stat(myFolder.empty() ? "." : std::string(myFolder).c_str(), &myFacts) != 0)
    {
        return nullptr;
    }
    const auto myNames = myFolders.find({myFacts.st_dev, myFacts.st_ino});
    if (myNames == myFolders.end())
    {
        return nullptr;
    }
    myNames->second.Path = myFolder; // it may have been read by another path that leads there no longer
    mySpellings.emplace(myFolder, &myNames->second);
    return &myNames->second;
}

void PathFinder::Remember(Memory myMemory)
{
    if (myRemembering++ > 0)
    {
        return;
    }
    myOutermost = myMemory;
    try
    {
        CatchUp();
    }
    catch (const std::bad_alloc&)
    {
        ForgetAll(); // changes that were taken are lost
    }
}

void PathFinder::Forget()
{
    constexpr size_t MostKept = 8;
    if (--myRemembering == 0)
    {
        mySpellings.clear();
        std::erase_if(myFolders, [](const auto& f) { return !f.second.Watch; });
        if (myFolders.size() > MostKept)
        {
            ForgetAll();
        }
    }
}

/// Makes the folders that are kept what they are by now.
void PathFinder::CatchUp()
{
    const std::optional<std::vector<FolderChange>> myChanges = myWatch.TakeChanges();
    if (!myChanges)
    {
        ForgetAll();
        return;
    }
    for (const FolderChange& myChange : *myChanges)
    {
        const auto myFolder = std::find_if(myFolders.begin(), myFolders.end(),
                                           [&](const auto& f) { return f.second.Watch == myChange.Watch; });
        if (myFolder == myFolders.end())
        {
            continue;
        }
        switch (myChange.What)
        {
        case FolderChange::NameCame:
            myFolder->second.Add(myChange.Name);
            break;
        case FolderChange::NameWent:
            myFolder->second.Remove(myChange.Name);
            break;
        case FolderChange::Other:
            myWatch.End(myChange.Watch);
            myFolders.erase(myFolder);
        }
    }
}

void PathFinder::ForgetAll()
{
    myFolders.clear();
    myWatch.EndAll();
}

void PathFinder::Made(std::string_view myPath)
{
    if (FolderNames* const myNames = NamesAround(myPath))
    {
        myNames->Add(PartsOf(myPath).Name);
    }
}

void PathFinder::Deleted(std::string_view myPath)
{
    if (FolderNames* const myNames = NamesAround(myPath))
    {
        myNames->Remove(PartsOf(myPath).Name);
    }
}

} // namespace qel

#include "platform/linux/findPath.h"

#include "platform/linux/systemErrors.h"
#include "text/encodings.h"

#include <cerrno>
#include <optional>
#include <string_view>
#include <sys/stat.h>

namespace qel
{
namespace
{

/// A path cut in three: "x/y/", "name", and the separators that may follow it.
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

/// A name in lower case; nothing for one that is not valid UTF-8.
std::optional<Text> LoweredName(std::string_view myName)
{
    const std::optional<Text> myText = FromUtf8Exactly(myName);
    return myText ? std::optional(LowerCase(*myText)) : std::nullopt;
}

/// The name itself, else the first that is equal in lower case; empty if the folder has none.
std::string FindName(FolderReader& myReader, std::string_view myName)
{
    const Text myWanted = LowerCase(FromUtf8(myName));
    std::string theFound;
    while (const dirent* const myEntry = myReader.Next())
    {
        const std::string_view myEntryName = myEntry->d_name;
        if (myEntryName == myName)
        {
            return std::string(myName);
        }
        // These names differ only in letters that have a lower case. None of these letters is a surrogate, so the order
        // of the bytes is the order of the character codes.
        if ((theFound.empty() || myEntryName < theFound) && LoweredName(myEntryName) == myWanted)
        {
            theFound = myEntryName;
        }
    }
    return theFound;
}

/// Opens a folder; `theFolder` becomes its real path.
FolderReader OpenAndFind(std::string& theFolder)
{
    FolderReader theReader(theFolder);
    if (theReader.IsOpen() || errno != ENOENT)
    {
        return theReader;
    }
    Place myPlace = FindPath(theFolder);
    if (myPlace.What != Missing::Nothing)
    {
        errno = ENOENT;
        return theReader;
    }
    theFolder = std::move(myPlace.Path);
    return FolderReader(theFolder);
}

} // namespace

Place FindPath(const std::string& myPath)
{
    const PathParts myParts = PartsOf(myPath);
    if (myParts.Name.empty())
    {
        return {myPath, Missing::Name};
    }
    std::string myFolder(myParts.Folder);
    FolderReader myReader = OpenAndFind(myFolder);
    if (!myReader.IsOpen())
    {
        if (errno == ENOENT || errno == ENOTDIR)
        {
            return {myPath, Missing::Folder};
        }
        if (errno == EACCES)
        {
            return {myPath, Missing::Name};
        }
        RaiseSystemError(errno);
    }
    const std::string myFound = FindName(myReader, myParts.Name);
    if (myFound.empty())
    {
        return {myPath, Missing::Name};
    }
    return {myFolder.append(myFound).append(myParts.Tail), Missing::Nothing};
}

std::optional<std::string> FindFolderOf(const std::string& myPath)
{
    const PathParts myParts = PartsOf(myPath);
    std::string myFolder(myParts.Folder);
    struct stat myFacts = {};
    if (!myFolder.empty() && stat(myFolder.c_str(), &myFacts) != 0)
    {
        Place myPlace = FindPath(myFolder);
        if (myPlace.What != Missing::Nothing)
        {
            return std::nullopt;
        }
        myFolder = std::move(myPlace.Path);
    }
    return myFolder.append(myParts.Name).append(myParts.Tail);
}

FolderReader OpenFolder(const std::string& myFolder)
{
    std::string myFound = myFolder;
    return OpenAndFind(myFound);
}

} // namespace qel

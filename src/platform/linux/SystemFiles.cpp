#include "platform/shared/SystemFiles.h"

#include "platform/linux/findPath.h"
#include "platform/linux/nativePath.h"
#include "platform/linux/plainFile.h"
#include "platform/linux/systemErrors.h"
#include "platform/linux/temporaryPath.h"
#include "platform/shared/BufferedInputFile.h"
#include "platform/shared/BufferedOutputFile.h"
#include "platform/shared/wildCards.h"
#include "text/encodings.h"
#include "text/errors.h"

#include <fcntl.h>

namespace qel
{
namespace
{

/// Opening a pipe does not wait for its other end, and a terminal does not become the controlling one, until both are
/// refused.
constexpr int OpenFlags = O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

constexpr mode_t NewFileMode = 0666;
constexpr mode_t NewFolderMode = 0777;

/// Throws the Error of a call that creates something: if it reports something missing, that is the folder.
[[noreturn]] void RaiseCreationError()
{
    RaiseSystemError(errno == ENOENT ? ENOTDIR : errno);
}

/// The native path of the entry itself, without separators at its end, which would make the system follow a link.
std::string PathOfEntry(TextView myPath)
{
    std::string thePath = NativePath(myPath);
    while (thePath.size() > 1 && thePath.ends_with('/'))
    {
        thePath.pop_back();
    }
    return thePath;
}

std::string_view NameOf(std::string_view myPath)
{
    return myPath.substr(myPath.rfind('/') + 1);
}

/// The name of an entry in a listing; nothing if the listing leaves it out.
std::optional<Text> ListedName(const FolderReader& myReader, const dirent& myEntry, TextView myPattern,
                               Listing myListing)
{
    const std::string_view myName = myEntry.d_name;
    const bool myIsHidden = myName.starts_with('.') && myName != "." && myName != "..";
    std::optional<Text> theName = myIsHidden ? std::nullopt : LogicalPath(myName);
    if (!theName || !MatchesPattern(LowerCase(*theName), myPattern))
    {
        return std::nullopt;
    }
    const EntryKind myKind = myReader.KindOf(myEntry);
    const bool myIsListed =
        myKind == EntryKind::File || (myKind == EntryKind::Folder && myListing == Listing::FilesAndFolders);
    return myIsListed ? theName : std::nullopt;
}

/// Makes a system call on a path. If the path does not exist, repeats the call on the path that is found without regard
/// to case. Returns the result of the call; after -1, errno is ENOTDIR if a folder of the path is missing.
template <typename Call>
int OnPath(const std::string& myPath, Call myCall)
{
    const int theResult = Retrying([&] { return myCall(myPath); });
    if (theResult != -1 || errno != ENOENT)
    {
        return theResult;
    }
    const Place myPlace = FindPath(myPath);
    if (myPlace.What != Missing::Nothing)
    {
        errno = myPlace.What == Missing::Name ? ENOENT : ENOTDIR;
        return -1;
    }
    return Retrying([&] { return myCall(myPlace.Path); });
}

/// The same for a call that needs the exact last part of the path: only its folder is found without regard to case.
template <typename Call>
int OnExactName(const std::string& myPath, Call myCall)
{
    const int theResult = Retrying([&] { return myCall(myPath); });
    if (theResult != -1 || errno != ENOENT)
    {
        return theResult;
    }
    const std::optional<std::string> myFound = FindFolderOf(myPath);
    if (!myFound || *myFound == myPath)
    {
        errno = myFound ? ENOENT : ENOTDIR;
        return -1;
    }
    return Retrying([&] { return myCall(*myFound); });
}

/// Reads the status of a path; if it fails, errno is as after OnPath.
bool GetStatus(const std::string& myPath, int myFlags, struct stat& theFacts)
{
    return OnPath(myPath, [&](const std::string& myTried)
                  { return fstatat(AT_FDCWD, myTried.c_str(), &theFacts, myFlags); }) == 0;
}

struct SourceFile
{
    Descriptor File;
    struct stat Facts = {};
};

SourceFile OpenSource(TextView myFilename, Lock myLock)
{
    Descriptor theFile(OnPath(NativePath(myFilename),
                              [](const std::string& myPath) { return open(myPath.c_str(), O_RDONLY | OpenFlags); }));
    if (!theFile.IsOpen())
    {
        RaiseSystemError(errno);
    }
    LockFile(theFile, myLock);
    const struct stat myFacts = FactsOfPlainFile(theFile);
    return {std::move(theFile), myFacts};
}

/// Opens a file for writing and creates it if it is missing. A link is followed. Returns -1 and sets errno if it fails.
int OpenOrCreate(const std::string& myPath, bool& theFileIsNew)
{
    const auto Open = [&](int myFlags)
    {
        return open(myPath.c_str(), O_WRONLY | myFlags | OpenFlags, NewFileMode);
    };
    int theFile = Open(O_CREAT | O_EXCL);
    theFileIsNew = theFile != -1;
    if (theFile == -1 && errno == EEXIST)
    {
        theFile = Open(0);
        if (theFile == -1 && errno == ENOENT) // a link whose target does not exist yet
        {
            theFile = Open(O_CREAT);
        }
    }
    return theFile;
}

/// Opens an empty file, locked. Error 70: it is the file that `mySource` describes.
Descriptor OpenTarget(TextView myFilename, const struct stat* mySource)
{
    bool myFileIsNew = false;
    Descriptor theFile(OnExactName(NativePath(myFilename),
                                   [&](const std::string& myPath) { return OpenOrCreate(myPath, myFileIsNew); }));
    if (!theFile.IsOpen())
    {
        RaiseCreationError();
    }
    LockFile(theFile, Lock::Exclusive);
    if (myFileIsNew)
    {
        return theFile;
    }
    const struct stat myFacts = FactsOfPlainFile(theFile);
    if (mySource != nullptr && mySource->st_dev == myFacts.st_dev && mySource->st_ino == myFacts.st_ino)
    {
        Raise(ErrorNumber::PermissionDenied);
    }
    // The file is emptied only after the lock, which keeps others from its content.
    if (myFacts.st_size != 0 && Retrying([&] { return ftruncate(theFile.Handle(), 0); }) != 0)
    {
        RaiseSystemError(errno);
    }
    return theFile;
}

std::unique_ptr<InputFile> OpenInput(TextView myFilename, Lock myLock)
{
    SourceFile mySource = OpenSource(myFilename, myLock);
    return std::make_unique<BufferedInputFile<InputDevice>>(InputDevice(std::move(mySource.File), mySource.Facts));
}

} // namespace

std::unique_ptr<InputFile> SystemFiles::OpenForReading(TextView myFilename)
{
    return OpenInput(myFilename, Lock::Exclusive);
}

std::unique_ptr<InputFile> SystemFiles::OpenShared(TextView myFilename)
{
    return OpenInput(myFilename, Lock::Shared);
}

std::unique_ptr<OutputFile> SystemFiles::OpenForWriting(TextView myFilename)
{
    return std::make_unique<BufferedOutputFile<OutputDevice>>(OutputDevice(OpenTarget(myFilename, nullptr)));
}

Entry SystemFiles::Look(TextView myPath)
{
    const std::string myAsked = PathOfEntry(myPath);
    std::string myFound;
    struct stat myFacts = {};
    const auto GetFactsOf = [&](const std::string& myTried)
    {
        myFound = myTried;
        return lstat(myTried.c_str(), &myFacts);
    };
    if (OnPath(myAsked, GetFactsOf) != 0)
    {
        RaiseSystemError(errno);
    }
    const std::string_view myName = NameOf(myFound);
    return {KindOfMode(myFacts.st_mode), myFacts.st_size, myName == NameOf(myAsked) ? Text() : FromUtf8(myName)};
}

Entry SystemFiles::LookExactly(TextView myPath)
{
    struct stat myFacts = {};
    if (OnExactName(PathOfEntry(myPath),
                    [&](const std::string& myTried) { return lstat(myTried.c_str(), &myFacts); }) != 0)
    {
        RaiseSystemError(errno);
    }
    return {KindOfMode(myFacts.st_mode), myFacts.st_size, {}};
}

void SystemFiles::Copy(TextView mySource, TextView myTarget)
{
    const SourceFile myInput = OpenSource(mySource, Lock::Shared);
    Descriptor myOutput = OpenTarget(myTarget, &myInput.Facts);
    CopyContent(myInput.File, myOutput, myInput.Facts.st_size);
    if (const int mySystemError = myOutput.Close(); mySystemError != 0)
    {
        RaiseSystemError(mySystemError);
    }
}

bool SystemFiles::Delete(TextView myFilename)
{
    if (OnExactName(NativePath(myFilename), [](const std::string& myPath) { return unlink(myPath.c_str()); }) == 0)
    {
        return true;
    }
    if (errno != ENOENT)
    {
        RaiseSystemError(errno);
    }
    return false;
}

void SystemFiles::MakeFolder(TextView myFolder)
{
    if (OnExactName(NativePath(myFolder),
                    [](const std::string& myPath) { return mkdir(myPath.c_str(), NewFolderMode); }) != 0)
    {
        RaiseCreationError();
    }
}

bool SystemFiles::IsFolder(TextView myPath)
{
    try
    {
        struct stat myFacts = {};
        return GetStatus(NativePath(myPath), 0, myFacts) && S_ISDIR(myFacts.st_mode);
    }
    catch (const Error&)
    {
        return false;
    }
}

bool SystemFiles::IsLink(TextView myPath)
{
    try
    {
        struct stat myFacts = {};
        return GetStatus(PathOfEntry(myPath), AT_SYMLINK_NOFOLLOW, myFacts) && S_ISLNK(myFacts.st_mode);
    }
    catch (const Error&)
    {
        return false;
    }
}

std::vector<Text> SystemFiles::List(TextView myPattern, Listing myListing)
{
    const size_t myStart = myPattern.find_last_of(u"\\/") + 1;
    const Text myLowered = LoweredPattern(myPattern.substr(myStart));
    FolderReader myReader = OpenFolder(NativePath(myPattern.substr(0, myStart)));
    std::vector<Text> theNames;
    if (!myReader.IsOpen())
    {
        if (errno != ENOENT && errno != ENOTDIR)
        {
            Raise(ErrorNumber::PathAccess);
        }
        return theNames;
    }
    while (const dirent* const myEntry = myReader.Next())
    {
        if (std::optional<Text> myName = ListedName(myReader, *myEntry, myLowered, myListing))
        {
            theNames.push_back(*std::move(myName));
        }
    }
    return theNames;
}

void SystemFiles::DemandOwnFolder(TextView myFolder)
{
    struct stat myFacts = {};
    if (!GetStatus(PathOfEntry(myFolder), AT_SYMLINK_NOFOLLOW, myFacts))
    {
        if (errno == ENOENT || errno == ENOTDIR)
        {
            return;
        }
        Raise(ErrorNumber::PathAccess);
    }
    if (!S_ISDIR(myFacts.st_mode) || myFacts.st_uid != geteuid())
    {
        Raise(ErrorNumber::PathAccess);
    }
}

Text SystemFiles::TemporaryPath()
{
    std::optional<Text> thePath = LogicalPath(NativeTemporaryPath());
    return !thePath || thePath->empty() ? Text() : *std::move(thePath) + u"\\";
}

} // namespace qel

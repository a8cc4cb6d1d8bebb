// The system finds names without regard to case, so a name that differs in case alone is the same file in every
// operation. Hidden and system files are left out of listings; a name with a leading dot is like any other.
#include "platform/shared/SystemFiles.h"

#include "platform/shared/BufferedInputFile.h"
#include "platform/shared/BufferedOutputFile.h"
#include "platform/shared/wildCards.h"
#include "platform/windows/folderOwner.h"
#include "platform/windows/FolderReader.h"
#include "platform/windows/nativePath.h"
#include "platform/windows/plainFile.h"
#include "platform/windows/systemErrors.h"
#include "platform/windows/temporaryPath.h"
#include "platform/windows/wideText.h"
#include "text/errors.h"

#include <optional>

namespace qel
{
namespace
{

bool Exists(DWORD myAttributes)
{
    return myAttributes != INVALID_FILE_ATTRIBUTES;
}

bool HasAttribute(DWORD myAttributes, DWORD myAttribute)
{
    return Exists(myAttributes) && (myAttributes & myAttribute) != 0;
}

/// The native path of a file. A separator at the end makes it the name of a folder.
/// Error 75: such a folder exists. 53, 76: nothing of that name, or a file.
std::wstring PathOfFile(TextView myFilename)
{
    std::wstring thePath = NativePath(myFilename);
    if (myFilename.ends_with(u'\\') || myFilename.ends_with(u'/'))
    {
        const DWORD myAttributes = GetFileAttributesW(thePath.c_str());
        if (!Exists(myAttributes))
        {
            RaiseSystemError(GetLastError());
        }
        Raise(HasAttribute(myAttributes, FILE_ATTRIBUTE_DIRECTORY) ? ErrorNumber::PathAccess
                                                                   : ErrorNumber::PathNotFound);
    }
    return thePath;
}

/// What the system knows about the last part of a path: a link itself, not its target. Error 53, 76, 70: as in Look.
WIN32_FIND_DATAW FactsOf(const std::wstring& myNativePath)
{
    WIN32_FIND_DATAW theFacts = {};
    if (IsRoot(myNativePath)) // has no entry in any folder
    {
        theFacts.dwFileAttributes = GetFileAttributesW(myNativePath.c_str());
        if (!Exists(theFacts.dwFileAttributes))
        {
            RaiseSystemError(GetLastError());
        }
        return theFacts;
    }
    const HANDLE mySearch =
        FindFirstFileExW(myNativePath.c_str(), FindExInfoBasic, &theFacts, FindExSearchNameMatch, nullptr, 0);
    if (mySearch == INVALID_HANDLE_VALUE)
    {
        RaiseSystemError(GetLastError());
    }
    FindClose(mySearch);
    // The length in a folder's entry can be out of date, for a file that is being written or was written by another
    // name.
    WIN32_FILE_ATTRIBUTE_DATA myNewFacts = {};
    if (GetFileAttributesExW(myNativePath.c_str(), GetFileExInfoStandard, &myNewFacts) != 0)
    {
        theFacts.nFileSizeHigh = myNewFacts.nFileSizeHigh;
        theFacts.nFileSizeLow = myNewFacts.nFileSizeLow;
    }
    return theFacts;
}

/// The last part of a path, without the separators that may follow it.
TextView NameOf(TextView myPath)
{
    const TextView myTrimmed = myPath.substr(0, myPath.find_last_not_of(u"\\/") + 1);
    return myTrimmed.substr(myTrimmed.find_last_of(u"\\/") + 1);
}

bool IsOwnOrParentFolder(std::wstring_view myName)
{
    return myName == L"." || myName == L"..";
}

/// True when a listing of a folder contains an entry.
bool IsListed(const std::wstring& myNativeFolder, const WIN32_FIND_DATAW& myEntry, Listing myListing)
{
    const std::wstring_view myName = myEntry.cFileName;
    const bool myListsFolders = myListing == Listing::FilesAndFolders;
    if (IsOwnOrParentFolder(myName))
    {
        return myListsFolders;
    }
    if ((myEntry.dwFileAttributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) != 0 ||
        HasUnpairedSurrogate(myName))
    {
        return false;
    }
    EntryKind myKind = KindOf(myEntry);
    if (myKind == EntryKind::Link)
    {
        myKind = KindOfTarget(PathInFolder(myNativeFolder, myName));
    }
    return myKind == EntryKind::File || (myKind == EntryKind::Folder && myListsFolders);
}

/// True for an error of the system that means that nothing exists at a path.
bool IsMissing(DWORD mySystemError)
{
    const int32_t myNumber = NumberOfSystemError(mySystemError);
    return myNumber == ErrorNumber::FileNotFound || myNumber == ErrorNumber::PathNotFound ||
           myNumber == ErrorNumber::BadFileName;
}

/// The native path of a folder to list, empty for the current one; nothing if no folder can have that name.
std::optional<std::wstring> PathOfListed(TextView myFolder)
{
    try
    {
        return NativePath(myFolder.empty() ? TextView(u".") : myFolder);
    }
    catch (const Error& myFailure)
    {
        if (myFailure.Number != ErrorNumber::BadFileName)
        {
            throw;
        }
        return std::nullopt;
    }
}

std::unique_ptr<InputFile> OpenInput(TextView myFilename, Sharing mySharing)
{
    return std::make_unique<BufferedInputFile<InputDevice>>(
        InputDevice(OpenPlainFile(PathOfFile(myFilename), mySharing)));
}

} // namespace

std::unique_ptr<InputFile> SystemFiles::OpenForReading(TextView myFilename)
{
    return OpenInput(myFilename, Sharing::None);
}

std::unique_ptr<InputFile> SystemFiles::OpenShared(TextView myFilename)
{
    return OpenInput(myFilename, Sharing::Readers);
}

std::unique_ptr<OutputFile> SystemFiles::OpenForWriting(TextView myFilename)
{
    return std::make_unique<BufferedOutputFile<OutputDevice>>(OutputDevice(OpenEmptyFile(PathOfFile(myFilename))));
}

Entry SystemFiles::Look(TextView myPath)
{
    const WIN32_FIND_DATAW myFacts = FactsOf(NativePath(myPath));
    Text myName = TextOfWide(myFacts.cFileName);
    if (myName == NameOf(myPath))
    {
        myName.clear();
    }
    const auto myLength = static_cast<int64_t>(uint64_t{myFacts.nFileSizeHigh} << 32 | myFacts.nFileSizeLow);
    return {KindOf(myFacts), myLength, std::move(myName)};
}

Entry SystemFiles::LookExactly(TextView myPath)
{
    Entry theEntry = Look(myPath);
    theEntry.Name.clear();
    return theEntry;
}

void SystemFiles::Copy(TextView mySource, TextView myTarget)
{
    // The system's own copy includes attributes, and a read-only target could not be replaced or deleted later.
    const Handle myInput = OpenPlainFile(PathOfFile(mySource), Sharing::Readers);
    Handle myOutput = OpenEmptyFile(PathOfFile(myTarget));
    CopyContent(myInput, myOutput);
    if (const DWORD mySystemError = myOutput.Close(); mySystemError != 0)
    {
        RaiseSystemError(mySystemError);
    }
}

bool SystemFiles::Delete(TextView myFilename)
{
    if (myFilename.empty())
    {
        return false;
    }
    const std::wstring myPath = PathOfFile(myFilename);
    if (DeleteFileW(myPath.c_str()) != 0)
    {
        return true;
    }
    const DWORD mySystemError = GetLastError();
    if (mySystemError == ERROR_FILE_NOT_FOUND)
    {
        return false;
    }
    // A link to a folder is removed like a folder.
    if (HasAttribute(GetFileAttributesW(myPath.c_str()), FILE_ATTRIBUTE_DIRECTORY))
    {
        if (KindOf(FactsOf(myPath)) != EntryKind::Link)
        {
            Raise(ErrorNumber::PathAccess);
        }
        if (RemoveDirectoryW(myPath.c_str()) != 0)
        {
            return true;
        }
    }
    RaiseSystemError(mySystemError);
}

void SystemFiles::MakeFolder(TextView myFolder)
{
    if (myFolder.empty())
    {
        Raise(ErrorNumber::PathNotFound);
    }
    const std::wstring myPath = NativePath(myFolder);
    if (CreateDirectoryW(myPath.c_str(), nullptr) != 0)
    {
        return;
    }
    const DWORD mySystemError = GetLastError();
    if (Exists(GetFileAttributesW(myPath.c_str()))) // a root exists, but the system answers that access is denied
    {
        Raise(ErrorNumber::PathAccess);
    }
    // If something is missing, that is the parent.
    RaiseSystemError(mySystemError == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : mySystemError);
}

bool SystemFiles::IsFolder(TextView myPath)
{
    try
    {
        const std::wstring myFolder = NativePath(myPath);
        const DWORD myAttributes = GetFileAttributesW(myFolder.c_str());
        return HasAttribute(myAttributes, FILE_ATTRIBUTE_REPARSE_POINT)
                   ? KindOfTarget(myFolder) == EntryKind::Folder
                   : HasAttribute(myAttributes, FILE_ATTRIBUTE_DIRECTORY);
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
        const std::wstring myEntry = NativePath(myPath);
        return HasAttribute(GetFileAttributesW(myEntry.c_str()), FILE_ATTRIBUTE_REPARSE_POINT) &&
               KindOf(FactsOf(myEntry)) == EntryKind::Link;
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
    const std::optional<std::wstring> myFolder = PathOfListed(myPattern.substr(0, myStart));
    std::vector<Text> theNames;
    if (!myFolder)
    {
        return theNames;
    }
    FolderReader myReader(*myFolder);
    if (!myReader.IsOpen())
    {
        if (!IsMissing(myReader.OpeningError()))
        {
            Raise(ErrorNumber::PathAccess);
        }
        return theNames;
    }
    while (const WIN32_FIND_DATAW* const myEntry = myReader.Next())
    {
        Text myName = TextOfWide(myEntry->cFileName);
        if (MatchesPattern(LowerCase(myName), myLowered) && IsListed(*myFolder, *myEntry, myListing))
        {
            theNames.push_back(std::move(myName));
        }
    }
    return theNames;
}

void SystemFiles::DemandOwnFolder(TextView myFolder)
{
    const std::wstring myPath = NativePath(myFolder);
    const DWORD myAttributes = GetFileAttributesW(myPath.c_str());
    if (!Exists(myAttributes) && IsMissing(GetLastError()))
    {
        return;
    }
    if (!HasAttribute(myAttributes, FILE_ATTRIBUTE_DIRECTORY) ||
        HasAttribute(myAttributes, FILE_ATTRIBUTE_REPARSE_POINT) || !BelongsToUser(myPath))
    {
        Raise(ErrorNumber::PathAccess);
    }
}

Text SystemFiles::TemporaryPath()
{
    return SystemTemporaryPath();
}

} // namespace qel

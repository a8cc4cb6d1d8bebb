#include "archive/classArchive.h"

#include "platform/codePage.h"
#include "text/dates.h"
#include "text/errors.h"
#include "text/succeeds.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace qel
{

/// An archive that is open for reading. Nobody else can write to it, so its length is read only once.
struct ArchiveInput
{
    explicit ArchiveInput(std::unique_ptr<InputFile> theOpenFile) : File(std::move(theOpenFile)), Length(File->Length())
    {
    }

    std::unique_ptr<InputFile> File;
    int64_t Length;
};

namespace
{

constexpr std::string_view Magic = "qelarchive1.0";

/// More characters than any system allows in a path.
constexpr int32_t LongestName = 32767;

/// The text without one such character at its end, if there is one; and the same for its start.
TextView WithoutEnd(TextView myText, char16_t myCharacter)
{
    return myText.substr(0, myText.size() - (myText.ends_with(myCharacter) ? 1 : 0));
}

TextView WithoutStart(TextView myText, char16_t myCharacter)
{
    return myText.substr(myText.starts_with(myCharacter) ? 1 : 0);
}

/// True for a part of a path that leads up or to a drive. Some systems ignore blanks and dots at the end, so ".. "
/// leads up as well.
bool IsHostilePart(TextView myPart)
{
    const bool myLeadsUp = myPart.size() >= 2 && myPart.find_first_not_of(u". ") == TextView::npos &&
                           std::count(myPart.begin(), myPart.end(), u'.') >= 2;
    const bool myIsDrive =
        myPart.size() >= 2 && myPart[1] == u':' && LowerCase(myPart[0]) >= u'a' && LowerCase(myPart[0]) <= u'z';
    return myLeadsUp || myIsDrive;
}

/// Encodes a name for an archive. Error 52: the code page lacks one of its characters.
std::string AnsiName(TextView myName)
{
    std::optional<std::string> theResult = ToAnsi(myName);
    if (!theResult)
    {
        Raise(ErrorNumber::BadFileName);
    }
    return *std::move(theResult);
}

/// Encodes a length for an archive. Error 6: it needs more than 32 bits.
int32_t SizeOfFile(int64_t myLength)
{
    if (myLength > INT32_MAX)
    {
        Raise(ErrorNumber::Overflow);
    }
    return static_cast<int32_t>(myLength);
}

void WriteCharacters(OutputFile& myOutputFile, std::string_view myCharacters)
{
    myOutputFile.Write(std::as_bytes(std::span(myCharacters)));
}

void WriteInteger(OutputFile& myOutputFile, int32_t myNumber)
{
    std::array<char, 4> myBytes{};
    for (size_t i = 0; i < myBytes.size(); ++i)
    {
        myBytes[i] = static_cast<char>(static_cast<uint32_t>(myNumber) >> (8 * i));
    }
    WriteCharacters(myOutputFile, {myBytes.data(), myBytes.size()});
}

bool ReadMagic(InputFile& myInputFile)
{
    std::array<char, Magic.size()> myCharacters{};
    myInputFile.Read(std::as_writable_bytes(std::span(myCharacters)));
    return std::string_view(myCharacters.data(), myCharacters.size()) == Magic;
}

int32_t ReadInteger(InputFile& myInputFile)
{
    std::array<std::byte, 4> myBytes{};
    myInputFile.Read(myBytes);
    uint32_t theResult = 0;
    for (size_t i = myBytes.size(); i-- > 0;)
    {
        theResult = theResult << 8 | std::to_integer<uint32_t>(myBytes[i]);
    }
    return static_cast<int32_t>(theResult);
}

/// Reads a length that the rest of the file must hold. Error 62: it does not, or the length is negative.
int32_t ReadLength(ArchiveInput& theInput)
{
    const int32_t theResult = ReadInteger(*theInput.File);
    if (theResult < 0 || theResult > theInput.Length - theInput.File->Position())
    {
        Raise(ErrorNumber::InputPastEnd);
    }
    return theResult;
}

/// Reads the name at the head of an entry, whose length the rest of the file must hold; the empty text for the end
/// marker. Error 52: it is longer than any path can be.
Text ReadName(ArchiveInput& theInput)
{
    const int32_t myLength = ReadLength(theInput);
    if (myLength > LongestName)
    {
        Raise(ErrorNumber::BadFileName);
    }
    std::string myCharacters(static_cast<size_t>(myLength), '\0');
    theInput.File->Read(std::as_writable_bytes(std::span(myCharacters)));
    return FromAnsi(myCharacters);
}

/// Runs an operation whose result says whether it is complete. A failure, also one of a subscriber, is the result
/// false, and its number is stored.
template <class Operation>
bool Completes(Operation myOperation, int32_t& theFailureNumber)
{
    theFailureNumber = 0;
    try
    {
        return myOperation();
    }
    catch (...)
    {
        theFailureNumber = CurrentError().Number;
        return false;
    }
}

} // namespace

bool classArchive::PackArchive()
{
    return Completes(
        [&]
        {
            myFiles.clear();
            ListFolder(u"\\", u"\\");
            myLastName.clear();
            DeleteFile(myArchiveFilename);
            bool myCancel = false;
            RaiseCreate({}, 0, myCancel);
            const auto myOutputFile = myFilePort.OpenForWriting(myArchiveFilename);
            WriteCharacters(*myOutputFile, Magic);
            WriteAllEntries(*myOutputFile, myCancel);
            myLastName.clear();
            RaiseCreate({}, 100, myCancel);
            WriteInteger(*myOutputFile, 0);
            myOutputFile->Close();
            if (myCancel)
            {
                DeleteFile(myArchiveFilename);
            }
            return !myCancel;
        },
        myFailureNumber);
}

/// Lists the files of a folder, and then those of its subfolders. Both arguments are its path below the base folder: as
/// the archive stores it, and as spelled on disk.
void classArchive::ListFolder(const Text& myFolder, const Text& myDiskFolder)
{
    const Text myFullFolder = Concat(myBaseFolder, myDiskFolder);
    myLastName = myDiskFolder;
    std::vector<std::pair<Text, Text>> mySubfolders;
    std::unordered_set<Text> myLowerNames;
    for (const Text& myName : myFilePort.List(Concat(myFullFolder, u"*.*"), Listing::FilesAndFolders))
    {
        if (myName == u"." || myName == u"..")
        {
            continue;
        }
        Text myDiskPath = Concat(myDiskFolder, myName);
        myLastName = myDiskPath;
        const Entry myEntry = myFilePort.Look(Concat(myFullFolder, myName));
        if (myEntry.Kind == EntryKind::Link)
        {
            continue;
        }
        Text myLowerName = LowerCase(myName);
        Text myPath = Concat(myFolder, mySmallFilenames ? myLowerName : myName);
        if (!myLowerNames.insert(std::move(myLowerName)).second)
        {
            Raise(ErrorNumber::FileAlreadyExists);
        }
        if (myEntry.Kind == EntryKind::Folder)
        {
            mySubfolders.emplace_back(std::move(myPath), std::move(myDiskPath));
        }
        else
        {
            AddFile(std::move(myPath), std::move(myDiskPath), myEntry.Length);
        }
    }
    for (const auto& [mySubfolder, myDiskSubfolder] : mySubfolders)
    {
        ListFolder(mySubfolder, myDiskSubfolder);
    }
}

void classArchive::AddFile(Text myName, Text myDiskName, int64_t myLength)
{
    if (LeavesFolder(myName))
    {
        Raise(ErrorNumber::BadFileName);
    }
    AnsiName(myName);
    myFiles.push_back({std::move(myName), SizeOfFile(myLength), std::move(myDiskName)});
}

/// Writes the entries until the flag is set. The percentage is based on the sizes as they were listed.
void classArchive::WriteAllEntries(OutputFile& myOutputFile, bool& theCancel)
{
    const double myTotal = TotalSize();
    double myDone = 0;
    for (const ArchiveEntry& myEntry : myFiles)
    {
        myLastName = myEntry.Name;
        WriteArchiveEntry(myOutputFile, myEntry);
        myDone += myEntry.Size;
        RaiseCreate(myEntry.Name, myTotal == 0 ? 100 : RoundToWhole(myDone / myTotal * 100), theCancel);
        if (theCancel)
        {
            return;
        }
    }
}

/// Writes one entry with the current length of its file.
void classArchive::WriteArchiveEntry(OutputFile& myOutputFile, const ArchiveEntry& myEntry)
{
    const auto myInputFile = myFilePort.OpenForReading(Concat(myBaseFolder, myEntry.DiskName));
    const std::string myName = AnsiName(myEntry.Name);
    const int32_t mySize = SizeOfFile(myInputFile->Length());
    WriteInteger(myOutputFile, static_cast<int32_t>(myName.size()));
    WriteCharacters(myOutputFile, myName);
    WriteInteger(myOutputFile, mySize);
    CopyBytes(*myInputFile, myOutputFile, mySize);
}

void classArchive::RaiseCreate(const Text& myFilename, int32_t myPercent, bool& theCancel) const
{
    if (ProgessCreate)
    {
        ProgessCreate(myFilename, myPercent, theCancel);
    }
}

bool classArchive::ReadArchive()
{
    const bool theResult = Completes(
        [&]
        {
            myLastName.clear();
            myFiles.clear();
            ArchiveInput myInput(myFilePort.OpenForReading(myArchiveFilename));
            if (!ReadMagic(*myInput.File))
            {
                Raise(ErrorNumber::InvalidArgument);
            }
            for (Text myName = ReadName(myInput); !myName.empty(); myName = ReadName(myInput))
            {
                const int32_t mySize = ReadLength(myInput);
                myInput.File->Skip(mySize);
                myFiles.push_back({std::move(myName), mySize});
            }
            return true;
        },
        myFailureNumber);
    if (!theResult)
    {
        myFiles.clear();
    }
    return theResult;
}

bool classArchive::UnPackArchive()
{
    return Completes(
        [&]
        {
            myLastName.clear();
            myFolders.clear();
            ArchiveInput myInput(myFilePort.OpenForReading(myArchiveFilename));
            if (!ReadMagic(*myInput.File))
            {
                Raise(ErrorNumber::InvalidArgument);
            }
            bool myCancel = false;
            while (!myCancel)
            {
                const Text myName = ReadName(myInput);
                if (myName.empty())
                {
                    break;
                }
                UnPackEntry(myInput, myName, myCancel);
            }
            return true;
        },
        myFailureNumber);
}

/// Unpacks one entry, whose name has been read.
void classArchive::UnPackEntry(ArchiveInput& theInput, const Text& myName, bool& theCancel)
{
    myLastName = myName;
    if (LeavesFolder(myName))
    {
        Raise(ErrorNumber::BadFileName);
    }
    const TextView myFolder = FolderOfName(myName);
    const Text& myDiskFolder = myFolder.empty() ? myBaseFolder : MakeFolders(myFolder);
    const Text myFilename = JoinTexts({myDiskFolder, TextView(myName).substr(myFolder.size())});
    // What cannot be deleted may be a link, which must not be followed.
    if (!DeleteFile(myFilename) && myFilePort.IsLink(myFilename))
    {
        Raise(ErrorNumber::PathAccess);
    }
    const auto myOutputFile = myFilePort.OpenForWriting(myFilename);
    CopyBytes(*theInput.File, *myOutputFile, ReadLength(theInput));
    myOutputFile->Close();
    if (ProgessUnpack)
    {
        ProgessUnpack(myName, theCancel);
    }
    myLastName.clear();
}

/// Creates each missing level of a path below the base folder, which comes first, and returns the path's folder on disk
/// with its closing "\". Each level is looked up once per operation. Error 75: a level is a link. Others: it cannot be
/// created.
const Text& classArchive::MakeFolders(TextView myFolder)
{
    if (const auto myKnown = myFolders.find(Text(myFolder)); myKnown != myFolders.end())
    {
        return myKnown->second;
    }
    const Text* theFolder = &myBaseFolder;
    size_t myStart = 0;
    for (size_t myEnd = myFolder.find(u'\\'); myEnd != Text::npos; myEnd = myFolder.find(u'\\', myStart))
    {
        const auto [myLevel, myIsNew] = myFolders.try_emplace(Text(myFolder.substr(0, myEnd + 1)));
        if (myIsNew)
        {
            myLevel->second = MakeFolder(*theFolder, myFolder.substr(myStart, myEnd - myStart));
        }
        theFolder = &myLevel->second;
        myStart = myEnd + 1;
    }
    return *theFolder;
}

/// Creates a folder in another one if it is missing. The other one exists and ends in "\"; the empty name means the
/// other one itself.
Text classArchive::MakeFolder(const Text& myParent, TextView myName)
{
    if (myName.empty())
    {
        if (!FolderExists(myParent))
        {
            myFilePort.MakeFolder(myParent);
        }
        return myParent;
    }
    Text theFolder = JoinTexts({myParent, myName});
    try
    {
        const Entry myEntry = myFilePort.Look(theFolder);
        if (myEntry.Kind == EntryKind::Link)
        {
            Raise(ErrorNumber::PathAccess);
        }
        if (myEntry.Kind == EntryKind::Folder)
        {
            return JoinTexts({myParent, myEntry.Name.empty() ? myName : myEntry.Name, u"\\"});
        }
    }
    catch (const Error& e)
    {
        if (e.Number != ErrorNumber::FileNotFound)
        {
            throw;
        }
    }
    myFilePort.MakeFolder(theFolder);
    return theFolder += u'\\';
}

/// Checks the folder itself. A listing with any entry would prove the same, but takes longer the more entries there
/// are.
bool classArchive::FolderExists(TextView myFolder)
{
    return !myFolder.empty() && myFilePort.IsFolder(myFolder);
}

/// False: it cannot be deleted; writing the file then fails.
bool classArchive::DeleteFile(TextView myFilename)
{
    return Succeeds([&] { myFilePort.Delete(myFilename); });
}

void classArchive::CopyBytes(InputFile& mySource, OutputFile& myTarget, int64_t myCount)
{
    while (myCount > 0)
    {
        const auto myBytes = std::span(myBlock).first(std::min<size_t>(BlockSize, static_cast<size_t>(myCount)));
        mySource.Read(myBytes);
        myTarget.Write(myBytes);
        myCount -= static_cast<int64_t>(myBytes.size());
    }
}

double classArchive::TotalSize() const
{
    double theResult = 0;
    for (const ArchiveEntry& myEntry : myFiles)
    {
        theResult += myEntry.Size;
    }
    return theResult;
}

Text classArchive::Concat(TextView myFirst, TextView mySecond)
{
    return JoinTexts({WithoutEnd(myFirst, u'\\'), u"\\", WithoutStart(mySecond, u'\\')});
}

Text classArchive::ConcatUnix(TextView myFirst, TextView mySecond)
{
    return JoinTexts(
        {WithoutEnd(WithoutEnd(myFirst, u'\\'), u'/'), u"/", WithoutStart(WithoutStart(mySecond, u'\\'), u'/')});
}

/// A "/" separates folders on some systems and is no part of a file's name on any, so its only use is to hide where a
/// name leads.
bool classArchive::LeavesFolder(TextView myName)
{
    if (myName.starts_with(u"\\\\") || myName.find(u'/') != TextView::npos || myName.find(u'\0') != TextView::npos)
    {
        return true;
    }
    for (size_t myStart = 0; myStart <= myName.size();)
    {
        const size_t myEnd = std::min(myName.find(u'\\', myStart), myName.size());
        if (IsHostilePart(myName.substr(myStart, myEnd - myStart)))
        {
            return true;
        }
        myStart = myEnd + 1;
    }
    return false;
}

/// The name up to its last "\", which is included; empty if there is none.
TextView classArchive::FolderOfName(TextView myFilename)
{
    return myFilename.substr(0, myFilename.rfind(u'\\') + 1);
}

} // namespace qel

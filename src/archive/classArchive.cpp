#include "archive/classArchive.h"

#include "text/dates.h"
#include "text/encodings.h"
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

/// An archive that is open for reading. Nobody else can write to it, so its length is asked once.
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

/// More characters than a path takes on any system.
constexpr int32_t LongestName = 32767;

/// The text without one such character at its end, if it is there; and the same at its start.
TextView WithoutEnd(TextView myText, char16_t myCharacter)
{
    return myText.substr(0, myText.size() - (myText.ends_with(myCharacter) ? 1 : 0));
}

TextView WithoutStart(TextView myText, char16_t myCharacter)
{
    return myText.substr(myText.starts_with(myCharacter) ? 1 : 0);
}

/// True for one part of a path that leads up or to a drive. Blanks and dots at the end count for nothing on some
/// systems, so ".. " leads up as well.
bool IsHostilePart(TextView myPart)
{
    const bool myLeadsUp = myPart.size() >= 2 && myPart.find_first_not_of(u". ") == TextView::npos &&
                           std::count(myPart.begin(), myPart.end(), u'.') >= 2;
    const bool myIsDrive =
        myPart.size() >= 2 && myPart[1] == u':' && LowerCase(myPart[0]) >= u'a' && LowerCase(myPart[0]) <= u'z';
    return myLeadsUp || myIsDrive;
}

/// True when a name would not stay below the folder that it is joined to, links aside. A "/" separates folders on some
/// systems and is no part of a file's name on any, so it can only hide where a name leads.
bool LeavesFolder(TextView myName)
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

/// A name as an archive holds it. Error 52: the code page has not all of its characters.
std::string AnsiName(TextView myName)
{
    std::optional<std::string> theResult = ToAnsi(myName);
    if (!theResult)
    {
        Raise(ErrorNumber::BadFileName);
    }
    return *std::move(theResult);
}

/// A length as an archive holds it. Error 6: it takes more than 32 bits.
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

/// Runs an operation that tells whether it is complete. A failure, also one of a subscriber, is the result false, and
/// its number is kept.
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
        theFailureNumber = ErrorInHand().Number;
        return false;
    }
}

} // namespace

bool classArchive::PackArchive()
{
    return Completes(
        [&]
        {
            const auto myMemory = myFilePort.RememberFolders();
            myFiles.clear();
            ListFolder(u"\\");
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

/// Lists the files of a folder, and then those of its subfolders. `myFolder` is a path below the base folder.
void classArchive::ListFolder(const Text& myFolder)
{
    const Text myFullFolder = Concat(myBaseFolder, myFolder);
    myLastName = myFolder;
    std::vector<Text> mySubfolders;
    std::unordered_set<Text> myLowerNames;
    for (Text& myName : myFilePort.List(Concat(myFullFolder, u"*.*"), Listing::FilesAndFolders))
    {
        if (myName == u"." || myName == u"..")
        {
            continue;
        }
        myLastName = Concat(myFolder, myName);
        Entry myEntry = myFilePort.Look(Concat(myFullFolder, myName));
        if (myEntry.Kind == EntryKind::Link)
        {
            continue;
        }
        Text myLowerName = LowerCase(myName);
        if (mySmallFilenames && myName != myLowerName)
        {
            myName = myLowerName;
            myEntry = myFilePort.Look(Concat(myFullFolder, myName));
            if (myEntry.Kind == EntryKind::Link) // it would be read instead
            {
                Raise(ErrorNumber::FileAlreadyExists);
            }
        }
        if (!myLowerNames.insert(std::move(myLowerName)).second)
        {
            Raise(ErrorNumber::FileAlreadyExists);
        }
        Text myPath = Concat(myFolder, myName);
        if (myEntry.Kind == EntryKind::Folder)
        {
            mySubfolders.push_back(std::move(myPath));
        }
        else
        {
            AddFile(std::move(myPath), myEntry.Length);
        }
    }
    for (const Text& mySubfolder : mySubfolders)
    {
        ListFolder(mySubfolder);
    }
}

void classArchive::AddFile(Text myName, int64_t myLength)
{
    if (LeavesFolder(myName))
    {
        Raise(ErrorNumber::BadFileName);
    }
    AnsiName(myName);
    myFiles.push_back({std::move(myName), SizeOfFile(myLength)});
}

/// Writes the entries until the flag is raised. The percentage goes by the sizes as they were listed.
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

/// Writes one entry with the length that its file has by now.
void classArchive::WriteArchiveEntry(OutputFile& myOutputFile, const ArchiveEntry& myEntry)
{
    const auto myInputFile = myFilePort.OpenForReading(Concat(myBaseFolder, myEntry.Name));
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
    int32_t myIgnored = 0;
    const bool theResult = Completes(
        [&]
        {
            myFiles.clear();
            ArchiveInput myInput(myFilePort.OpenForReading(myArchiveFilename));
            if (!ReadMagic(*myInput.File))
            {
                return false;
            }
            for (Text myName = ReadName(myInput); !myName.empty(); myName = ReadName(myInput))
            {
                const int32_t mySize = ReadLength(myInput);
                myInput.File->Skip(mySize);
                myFiles.push_back({std::move(myName), mySize});
            }
            return true;
        },
        myIgnored);
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
            const auto myMemory = myFilePort.RememberFolders();
            myLastName.clear();
            ArchiveInput myInput(myFilePort.OpenForReading(myArchiveFilename));
            if (!ReadMagic(*myInput.File))
            {
                Raise(ErrorNumber::InvalidArgument);
            }
            bool myCancel = false;
            Text myFolder;
            while (!myCancel)
            {
                const Text myName = ReadName(myInput);
                if (myName.empty())
                {
                    break;
                }
                UnPackEntry(myInput, myName, myFolder, myCancel);
            }
            return true;
        },
        myFailureNumber);
}

/// Unpacks one entry, whose name has been read. `theFolder` is the folder of the entry before, and then of this one:
/// its levels are looked at only when it changes.
void classArchive::UnPackEntry(ArchiveInput& theInput, const Text& myName, Text& theFolder, bool& theCancel)
{
    myLastName = myName;
    if (LeavesFolder(myName))
    {
        Raise(ErrorNumber::BadFileName);
    }
    const TextView myFolder = FolderOfName(myName);
    if (myFolder != theFolder)
    {
        MakeFolders(myFolder);
        theFolder = myFolder;
    }
    const Text myFilename = Concat(myBaseFolder, myName);
    // Where something was in the way there may be a link still, one that is alike or that cannot be deleted.
    if (DeleteFile(myFilename) && myFilePort.IsLink(myFilename))
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

/// Makes sure of each level of a path below the base folder, the base folder itself first. Error 75: a level is a link.
/// Others: it cannot be made.
void classArchive::MakeFolders(TextView myFolder)
{
    const Text myPath = Concat(myFolder, u"\\");
    for (size_t myEnd = myPath.find(u'\\'); myEnd != Text::npos; myEnd = myPath.find(u'\\', myEnd + 1))
    {
        const Text myLevel = Concat(myBaseFolder, TextView(myPath).substr(0, myEnd + 1));
        if (myEnd > 0 && myFilePort.IsLink(WithoutEnd(myLevel, u'\\')))
        {
            Raise(ErrorNumber::PathAccess);
        }
        if (!FolderExists(myLevel))
        {
            myFilePort.MakeFolder(myLevel);
        }
    }
}

/// Asks for the folder itself: a listing that yields anything would say the same, at the cost of its length.
bool classArchive::FolderExists(TextView myFolder)
{
    return !myFolder.empty() && myFilePort.IsFolder(myFolder);
}

/// False: there was nothing of that name. What cannot be deleted shows when the file is written.
bool classArchive::DeleteFile(TextView myFilename)
{
    bool theResult = true;
    Succeeds([&] { return theResult = myFilePort.Delete(myFilename); });
    return theResult;
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

/// The name up to and with its last "\"; empty if there is none.
TextView classArchive::FolderOfName(TextView myFilename)
{
    return myFilename.substr(0, myFilename.rfind(u'\\') + 1);
}

} // namespace qel

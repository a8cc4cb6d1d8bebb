#include "site/siteFiles.h"

#include "common/Failure.h"
#include "common/paths.h"
#include "common/systemReasons.h"
#include "site/fileOperations.h"
#include "site/processes.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <optional>

namespace qel::host
{

namespace
{

/// Separators, what ends or splits an address, and what ends the quoted text of a script that contains the address.
constexpr std::string_view ForbiddenCharacters = "/\\:%#?\"'<>";

/// What the file systems in use allow, in bytes.
constexpr std::size_t LongestName = 255;

constexpr std::string_view UnfinishedHead = ".qelhost-";
constexpr std::string_view UnfinishedEnd = ".new";

/// Why an operation of a stream has failed. The caller has set errno to 0 before it.
std::error_code StreamError()
{
    return errno == 0 ? std::make_error_code(std::errc::io_error) : std::error_code(errno, std::generic_category());
}

/// Names that Windows keeps for devices, also with an ending, in lower case.
constexpr std::array<TextView, 4> Devices{u"con", u"prn", u"aux", u"nul"};

bool IsNumberedDevice(TextView myLowerName)
{
    return myLowerName.size() == 4 && (myLowerName.starts_with(u"com") || myLowerName.starts_with(u"lpt")) &&
           TextView(u"0123456789\u00B9\u00B2\u00B3").find(myLowerName.back()) != TextView::npos;
}

bool IsForbidden(char myCharacter)
{
    const auto myCode = static_cast<unsigned char>(myCharacter);
    return myCode < 0x20 || myCode == 0x7F || ForbiddenCharacters.find(myCharacter) != std::string_view::npos;
}

/// Gives a file another name, in the place of a file that has it.
void PutInPlace(const fs::path& myFile, const fs::path& myTarget, OnDisk myTime, const std::string& myWhat)
{
    const auto Do = [&](const auto& myOperation)
    {
        std::error_code myError;
        myOperation(myError);
        if (myError)
        {
            FailWithSystemError(myWhat, myError);
        }
    };
    if (myTime == OnDisk::Now)
    {
        Do([&](std::error_code& theError) { FlushFile(myFile, theError); });
    }
    Do([&](std::error_code& theError) { RenameEntry(myFile, myTarget, theError); });
    if (myTime == OnDisk::Now)
    {
        Do([&](std::error_code& theError) { FlushFolder(myTarget.parent_path(), theError); });
    }
}

/// The reason why the bytes of what a path leads to cannot be copied; no error if they can, or if that is unknown.
std::error_code ReasonAgainstCopying(const fs::path& mySource)
{
    std::error_code myIgnored; // opening it has the reason
    const fs::file_status myStatus = fs::status(mySource, myIgnored);
    if (fs::is_directory(myStatus))
    {
        return std::make_error_code(std::errc::is_a_directory);
    }
    return fs::is_other(myStatus) ? std::make_error_code(std::errc::not_supported) : std::error_code();
}

/// The file that becomes the target once it is complete, and is removed unless that happens.
class NewFile
{
public:
    NewFile(const fs::path& theTarget, OnDisk theTime)
        : myTarget(theTarget), myName(UnfinishedName(theTarget)), myTime(theTime)
    {
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile()
    {
        if (!myIsInPlace)
        {
            std::error_code myIgnored;
            fs::remove(myName, myIgnored);
        }
    }

    void Write(std::string_view myBytes) const
    {
        RemoveFile(myName); // a link of that name is not followed
        errno = 0;
        std::ofstream myFile(myName, std::ios::binary);
        myFile.write(myBytes.data(), static_cast<std::streamsize>(myBytes.size()));
        myFile.close();
        if (!myFile)
        {
            Fail(StreamError());
        }
    }

    void CopyFrom(const fs::path& mySource) const
    {
        std::error_code myError = ReasonAgainstCopying(mySource);
        if (!myError)
        {
            CopyContent(mySource, myName, myError);
        }
        if (myError)
        {
            FailWithSystemError("cannot copy " + TextOf(mySource) + " to " + TextOf(myTarget), myError);
        }
    }

    void TakePlace()
    {
        PutInPlace(myName, myTarget, myTime, "cannot write " + TextOf(myTarget));
        myIsInPlace = true;
    }

private:
    [[noreturn]] void Fail(std::error_code myError) const
    {
        FailWithSystemError("cannot write " + TextOf(myTarget), myError);
    }

    fs::path myTarget;
    fs::path myName;
    OnDisk myTime;
    bool myIsInPlace = false;
};

} // namespace

void FailWithSystemError(const std::string& myWhat, std::error_code myError)
{
    throw Failure(myWhat + ": " + ReasonOf(myError));
}

namespace
{

/// Opens a plain file, or another one that can be read. Failure: it cannot be read.
std::ifstream OpenedForReading(const fs::path& mySource, const std::string& myWhat)
{
    std::error_code myIgnored; // opening it has the reason
    if (fs::is_directory(mySource, myIgnored))
    {
        FailWithSystemError(myWhat, std::make_error_code(std::errc::is_a_directory));
    }
    errno = 0;
    std::ifstream theFile(mySource, std::ios::binary);
    if (!theFile)
    {
        FailWithSystemError(myWhat, StreamError());
    }
    return theFile;
}

} // namespace

std::string ReadWholeFile(const fs::path& mySource, uint64_t myLimit)
{
    const bool myIsInput = mySource == "-";
    const std::string myWhat = "cannot read " + (myIsInput ? "the standard input" : TextOf(mySource));
    const auto DemandLength = [&](uint64_t myLength)
    {
        if (myLength > myLimit)
        {
            throw Failure(myWhat + ": it is larger than " + std::to_string(myLimit >> 20) +
                          " MB; divide it into several files");
        }
    };
    std::ifstream myFile = myIsInput ? std::ifstream() : OpenedForReading(mySource, myWhat);
    std::error_code myIgnored; // what has no length is read up to the limit
    const uint64_t myLength = fs::file_size(mySource, myIgnored);
    DemandLength(myIsInput || myIgnored ? 0 : myLength);

    std::string theBytes;
    std::array<char, 65536> myPart{};
    std::size_t myCount = 0;
    do
    {
        errno = 0;
        myCount = myIsInput ? std::fread(myPart.data(), 1, myPart.size(), stdin)
                            : static_cast<std::size_t>(myFile.read(myPart.data(), myPart.size()).gcount());
        theBytes.append(myPart.data(), myCount);
        DemandLength(theBytes.size());
    } while (myCount != 0);
    if (myFile.bad() || (myIsInput && std::ferror(stdin) != 0))
    {
        FailWithSystemError(myWhat, StreamError());
    }
    return theBytes;
}

void WriteWholeFile(const fs::path& myTarget, std::string_view myBytes, OnDisk myTime)
{
    NewFile myFile(myTarget, myTime);
    myFile.Write(myBytes);
    myFile.TakePlace();
}

void CopyWholeFile(const fs::path& mySource, const fs::path& myTarget, OnDisk myTime)
{
    NewFile myFile(myTarget, myTime);
    myFile.CopyFrom(mySource);
    myFile.TakePlace();
}

fs::file_type TypeOfEntry(const fs::path& myPath)
{
    std::error_code myError;
    const fs::file_type theType = EntryType(myPath, myError);
    if (theType == fs::file_type::none)
    {
        FailWithSystemError("cannot examine " + TextOf(myPath), myError);
    }
    return theType;
}

bool HaveSameContent(const fs::path& myOne, const fs::path& myOther)
{
    const auto Length = [](const fs::path& myFile) -> std::optional<uint64_t>
    {
        std::error_code myError;
        const uint64_t theLength = fs::file_size(myFile, myError);
        return myError || TypeOfEntry(myFile) != fs::file_type::regular ? std::nullopt : std::optional(theLength);
    };
    const auto myLength = Length(myOne);
    if (!myLength || myLength != Length(myOther))
    {
        return false;
    }
    std::ifstream myOneFile(myOne, std::ios::binary);
    std::ifstream myOtherFile(myOther, std::ios::binary);
    std::array<char, 65536> myOnePart{};
    std::array<char, 65536> myOtherPart{};
    bool myIsSame = myOneFile.is_open() && myOtherFile.is_open();
    while (myIsSame && myOneFile)
    {
        const auto myCount = myOneFile.read(myOnePart.data(), myOnePart.size()).gcount();
        myIsSame = myCount == myOtherFile.read(myOtherPart.data(), myOtherPart.size()).gcount() &&
                   std::equal(myOnePart.begin(), myOnePart.begin() + myCount, myOtherPart.begin());
    }
    return myIsSame && !myOneFile.bad() && !myOtherFile.bad();
}

void MakeFolder(const fs::path& myFolder)
{
    std::error_code myError;
    fs::create_directories(myFolder, myError);
    if (myError)
    {
        FailWithSystemError("cannot create the folder " + TextOf(myFolder), myError);
    }
}

void RemoveFile(const fs::path& myFile)
{
    std::error_code myError;
    if (TypeOfEntry(myFile) == fs::file_type::directory)
    {
        myError = std::make_error_code(std::errc::is_a_directory);
    }
    else
    {
        fs::remove(myFile, myError);
    }
    if (myError)
    {
        FailWithSystemError("cannot remove " + TextOf(myFile), myError);
    }
}

void RenameFile(const fs::path& myFile, const fs::path& myTarget)
{
    PutInPlace(myFile, myTarget, OnDisk::Now, "cannot rename " + TextOf(myFile));
}

fs::path UnfinishedName(const fs::path& myTarget)
{
    std::string theName(UnfinishedHead);
    theName += std::to_string(OwnProcess());
    return myTarget.parent_path() / PathOf(theName += UnfinishedEnd);
}

namespace
{

/// The number of the program that writes an unfinished file of that name, or one that SQLite keeps beside it; 0 for any
/// other name.
int64_t WriterOf(std::string_view myName)
{
    int64_t theWriter = 0;
    const std::size_t myEnd = myName.find(UnfinishedEnd);
    if (myName.starts_with(UnfinishedHead) && myEnd != std::string_view::npos)
    {
        const char* const myDigitsEnd = myName.data() + myEnd;
        const auto myParsed = std::from_chars(myName.data() + UnfinishedHead.size(), myDigitsEnd, theWriter);
        theWriter = myParsed.ptr == myDigitsEnd ? theWriter : 0;
    }
    return theWriter;
}

} // namespace

void RemoveUnfinishedFiles(const fs::path& myFolder, Unfinished myKind)
{
    for (const std::string& myName : NamesInFolder(myFolder))
    {
        const int64_t myWriter = WriterOf(myName);
        if (myWriter > 0 && (myKind == Unfinished::OfAllPrograms || HasEnded(myWriter)))
        {
            RemoveFile(myFolder / PathOf(myName));
        }
    }
}

std::vector<std::string> NamesInFolder(const fs::path& myFolder)
{
    std::error_code myError;
    std::vector<std::string> theNames;
    for (const fs::path& myName : EntryNames(myFolder, myError))
    {
        theNames.push_back(TextOf(myName));
    }
    if (myError && myError != std::errc::no_such_file_or_directory)
    {
        FailWithSystemError("cannot read the folder " + TextOf(myFolder), myError);
    }
    std::ranges::sort(theNames);
    return theNames;
}

std::string NameProblem(std::string_view myName)
{
    if (myName.empty())
    {
        return "it is empty";
    }
    if (myName.front() == '.')
    {
        return "it begins with a full stop";
    }
    if (!IsUtf8(myName))
    {
        return "it is not valid UTF-8";
    }
    if (myName.size() > LongestName)
    {
        return "it is longer than " + std::to_string(LongestName) + " bytes";
    }
    for (const char myCharacter : myName)
    {
        if (IsForbidden(myCharacter))
        {
            return static_cast<unsigned char>(myCharacter) > 0x20 ? std::string("it contains ") + myCharacter
                                                                  : "it contains a control character";
        }
    }
    return HoldsAllNames ? std::string() : WindowsNameProblem(myName);
}

std::string WindowsNameProblem(std::string_view myName)
{
    if (const std::size_t myPlace = myName.find_first_of("<>:\"|?*\\"); myPlace != std::string_view::npos)
    {
        return std::string("it contains ") + myName[myPlace];
    }
    if (myName.ends_with('.') || myName.ends_with(' '))
    {
        return myName.ends_with('.') ? "it ends in a full stop" : "it ends in a blank";
    }
    const Text myStem = LowerCase(FromUtf8(myName.substr(0, myName.find('.'))));
    const TextView myDevice = TextView(myStem).substr(0, myStem.find_last_not_of(u' ') + 1);
    return std::ranges::find(Devices, myDevice) != Devices.end() || IsNumberedDevice(myDevice)
               ? "it is the name of a device"
               : std::string();
}

std::string WindowsNameWarning(std::string_view myName)
{
    const std::string myProblem = HoldsAllNames ? WindowsNameProblem(myName) : std::string();
    return myProblem.empty() ? std::string()
                             : "Windows cannot hold the name \"" + std::string(myName) + "\": " + myProblem +
                                   "; give another one if the site is to be used there";
}

std::string SafeFileName(std::string_view myName)
{
    std::string theName = ToUtf8(FromUtf8(myName));
    for (char& myCharacter : theName)
    {
        if (IsForbidden(myCharacter))
        {
            myCharacter = '_';
        }
    }
    if (!theName.empty() && theName.front() == '.')
    {
        theName.front() = '_';
    }
    return theName;
}

} // namespace qel::host

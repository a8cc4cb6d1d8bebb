#include "site/siteFiles.h"

#include "common/Failure.h"
#include "platform/linux/Descriptor.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qel::host
{

namespace
{

/// Separators, what ends or splits an address, and what ends the quoted text of a script that the address stands in.
constexpr std::string_view myForbiddenCharacters = "/\\:%#?\"'<>";

/// What the file systems in use allow, in bytes.
constexpr std::size_t myLongestName = 255;

constexpr std::string_view myUnfinishedHead = ".qelhost-";
constexpr std::string_view myUnfinishedEnd = ".new";

std::string SystemReason(int myError)
{
    switch (myError)
    {
    case ENOSPC:
        return "the disk is full; make room and try again";
    case EDQUOT:
        return "your share of the disk is full; make room and try again";
    case EROFS:
        return "the disk can only be read; copy the site to another one";
    case EACCES:
    case EPERM:
        return "no permission; change the permissions of the file and its folder";
    case ENOENT:
        return "there is no such file or folder; check the path";
    case ENOTDIR:
        return "a part of its path is not a folder; check the path";
    case EISDIR:
        return "it is a folder; give a file";
    case ENAMETOOLONG:
        return "the name is too long; give a shorter one";
    case ENOTSUP:
        return "it is not a plain file; give one";
    case ELOOP:
        return "it is a link, or leads through too many; give the file itself";
    default:
        return std::strerror(myError);
    }
}

bool IsForbidden(char myCharacter)
{
    const auto myCode = static_cast<unsigned char>(myCharacter);
    return myCode < 0x20 || myCode == 0x7F || myForbiddenCharacters.find(myCharacter) != std::string_view::npos;
}

/// The file that becomes the target once it is whole; it goes again unless that happens.
class NewFile
{
public:
    explicit NewFile(const fs::path& theTarget)
        : myTarget(theTarget.string()),
          myName(myTarget.substr(0, myTarget.rfind('/') + 1) + std::string(myUnfinishedHead) +
                 std::to_string(getpid()) + std::string(myUnfinishedEnd))
    {
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile()
    {
        if (!myIsInPlace)
        {
            unlink(myName.c_str());
        }
    }

    void Write(std::string_view myBytes) const
    {
        Descriptor myFile(open(myName.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0666));
        int myError = myFile.IsOpen() ? 0 : errno;
        while (!myBytes.empty() && myError == 0)
        {
            const ssize_t myCount = Retrying([&] { return write(myFile.Handle(), myBytes.data(), myBytes.size()); });
            myBytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(myCount, 0)));
            myError = myCount < 0 ? errno : 0;
        }
        const int myLateError = myFile.Close();
        if (myError != 0 || myLateError != 0)
        {
            Fail(myError != 0 ? myError : myLateError);
        }
    }

    void CopyFrom(const fs::path& mySource) const
    {
        std::error_code myError;
        fs::copy_file(mySource, myName, fs::copy_options::overwrite_existing, myError);
        if (myError)
        {
            FailWithSystemError("cannot copy " + mySource.string() + " to " + myTarget, myError.value());
        }
    }

    void TakePlace()
    {
        if (rename(myName.c_str(), myTarget.c_str()) != 0)
        {
            Fail(errno);
        }
        myIsInPlace = true;
    }

private:
    [[noreturn]] void Fail(int myError) const { FailWithSystemError("cannot write " + myTarget, myError); }

    std::string myTarget;
    std::string myName;
    bool myIsInPlace = false;
};

} // namespace

void FailWithSystemError(const std::string& myWhat, int myError)
{
    throw Failure(myWhat + ": " + SystemReason(myError));
}

std::string ReadWholeFile(const fs::path& mySource, uint64_t myLimit)
{
    const bool myIsInput = mySource == "-";
    const std::string myWhat = "cannot read " + (myIsInput ? "the standard input" : mySource.string());
    Descriptor myFile(myIsInput ? -1 : open(mySource.c_str(), O_RDONLY | O_CLOEXEC));
    const int myHandle = myIsInput ? STDIN_FILENO : myFile.Handle();
    struct stat myFacts
    {
    };
    if (myHandle == -1 || fstat(myHandle, &myFacts) != 0)
    {
        FailWithSystemError(myWhat, errno);
    }
    std::string theBytes;
    const auto DemandLength = [&](uint64_t myLength)
    {
        if (myLength > myLimit)
        {
            throw Failure(myWhat + ": it is larger than " + std::to_string(myLimit >> 20) +
                          " MB; move what it holds into several files");
        }
    };
    DemandLength(S_ISREG(myFacts.st_mode) ? static_cast<uint64_t>(myFacts.st_size) : 0);
    std::array<char, 65536> myPart{};
    for (ssize_t myCount = 1; myCount != 0;)
    {
        myCount = Retrying([&] { return read(myHandle, myPart.data(), myPart.size()); });
        if (myCount < 0)
        {
            FailWithSystemError(myWhat, errno);
        }
        theBytes.append(myPart.data(), static_cast<std::size_t>(myCount));
        DemandLength(theBytes.size());
    }
    return theBytes;
}

void WriteWholeFile(const fs::path& myTarget, std::string_view myBytes)
{
    NewFile myFile(myTarget);
    myFile.Write(myBytes);
    myFile.TakePlace();
}

void CopyWholeFile(const fs::path& mySource, const fs::path& myTarget)
{
    NewFile myFile(myTarget);
    myFile.CopyFrom(mySource);
    myFile.TakePlace();
}

fs::file_type TypeOfEntry(const fs::path& myPath)
{
    std::error_code myError;
    const fs::file_type theType = fs::symlink_status(myPath, myError).type();
    if (theType == fs::file_type::none)
    {
        FailWithSystemError("cannot look at " + myPath.string(), myError.value());
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
    const Descriptor myOneFile(open(myOne.c_str(), O_RDONLY | O_CLOEXEC));
    const Descriptor myOtherFile(open(myOther.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 65536> myOnePart{};
    std::array<char, 65536> myOtherPart{};
    ssize_t myCount = 1;
    while (myCount > 0)
    {
        myCount = Retrying([&] { return read(myOneFile.Handle(), myOnePart.data(), myOnePart.size()); });
        const ssize_t myOtherCount =
            Retrying([&] { return read(myOtherFile.Handle(), myOtherPart.data(), myOtherPart.size()); });
        if (myCount != myOtherCount ||
            !std::equal(myOnePart.begin(), myOnePart.begin() + std::max<ssize_t>(myCount, 0), myOtherPart.begin()))
        {
            return false;
        }
    }
    return myCount == 0;
}

void MakeFolder(const fs::path& myFolder)
{
    std::error_code myError;
    fs::create_directories(myFolder, myError);
    if (myError)
    {
        FailWithSystemError("cannot make the folder " + myFolder.string(), myError.value());
    }
}

void RemoveFile(const fs::path& myFile)
{
    if (unlink(myFile.c_str()) != 0 && errno != ENOENT)
    {
        FailWithSystemError("cannot remove " + myFile.string(), errno);
    }
}

void RenameFile(const fs::path& myFile, const fs::path& myTarget)
{
    if (rename(myFile.c_str(), myTarget.c_str()) != 0)
    {
        FailWithSystemError("cannot rename " + myFile.string(), errno);
    }
}

namespace
{

/// The number of the program that writes an unfinished file of that name; 0 for any other name.
pid_t WriterOf(std::string_view myName)
{
    pid_t theWriter = 0;
    if (myName.starts_with(myUnfinishedHead) && myName.ends_with(myUnfinishedEnd))
    {
        const char* const myEnd = myName.data() + myName.size() - myUnfinishedEnd.size();
        const auto myParsed = std::from_chars(myName.data() + myUnfinishedHead.size(), myEnd, theWriter);
        theWriter = myParsed.ptr == myEnd ? theWriter : 0;
    }
    return theWriter;
}

bool HasEnded(pid_t myProgram)
{
    return kill(myProgram, 0) != 0 && errno == ESRCH;
}

} // namespace

void RemoveUnfinishedFiles(const fs::path& myFolder, Unfinished myKind)
{
    for (const std::string& myName : NamesInFolder(myFolder))
    {
        const pid_t myWriter = WriterOf(myName);
        if (myWriter > 0 && (myKind == Unfinished::OfAllPrograms || HasEnded(myWriter)))
        {
            RemoveFile(myFolder / myName);
        }
    }
}

std::vector<std::string> NamesInFolder(const fs::path& myFolder)
{
    std::error_code myError;
    std::vector<std::string> theNames;
    for (fs::directory_iterator myEntry(myFolder, myError), myEnd; !myError && myEntry != myEnd;
         myEntry.increment(myError))
    {
        theNames.push_back(myEntry->path().filename().string());
    }
    if (myError && myError != std::errc::no_such_file_or_directory)
    {
        FailWithSystemError("cannot read the folder " + myFolder.string(), myError.value());
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
    if (myName.size() > myLongestName)
    {
        return "it is longer than " + std::to_string(myLongestName) + " bytes";
    }
    for (const char myCharacter : myName)
    {
        if (IsForbidden(myCharacter))
        {
            return static_cast<unsigned char>(myCharacter) > 0x20 ? std::string("it holds ") + myCharacter
                                                                  : "it holds a control character";
        }
    }
    return {};
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

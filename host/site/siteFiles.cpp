#include "site/siteFiles.h"

#include "common/Failure.h"
#include "platform/linux/Descriptor.h"
#include "text/encodings.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

#include <fcntl.h>
#include <unistd.h>

namespace qel::host
{

namespace
{

/// Separators, what ends or splits an address, and what ends the quoted text of a script that the address stands in.
constexpr std::string_view myForbiddenCharacters = "/\\:%#?\"'<>";

[[noreturn]] void FailWithSystemError(const std::string& myWhat, int myError)
{
    throw Failure(myWhat + ": " + std::strerror(myError));
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
          myName(myTarget.substr(0, myTarget.rfind('/') + 1) + ".qelhost-" + std::to_string(getpid()) + ".new")
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

std::string ReadWholeFile(const fs::path& mySource)
{
    if (mySource == "-")
    {
        return {std::istreambuf_iterator<char>(std::cin), {}};
    }
    std::error_code myError;
    if (fs::is_directory(mySource, myError))
    {
        throw Failure("cannot read " + mySource.string() + ": it is a folder");
    }
    errno = 0;
    std::ifstream myStream(mySource, std::ios::binary);
    std::string theBytes{std::istreambuf_iterator<char>(myStream), {}};
    if (!myStream.is_open() || myStream.bad())
    {
        FailWithSystemError("cannot read " + mySource.string(), errno);
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

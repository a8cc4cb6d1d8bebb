#include "com/linux/classRegistry.h"

#include "com/linux/contained.h"
#include "platform/linux/environment.h"
#include "text/encodings.h"
#include "text/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <memory>
#include <new>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace qel
{
namespace
{

namespace fs = std::filesystem;

constexpr std::string_view ProgIdKey = "ProgID=";
constexpr std::string_view LibraryKey = "Library=";
constexpr size_t LargestFile = 8192;

struct FolderCloser
{
    void operator()(DIR* myListing) const noexcept { closedir(myListing); }
};

struct ClassEntry
{
    Text ProgId;
    std::string Library;
};

std::string FilenameOf(const CLSID& myClass)
{
    std::array<char, 48> theName{};
    const auto& myRest = myClass.Data4;
    std::snprintf(theName.data(), theName.size(), "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}.class",
                  static_cast<unsigned>(myClass.Data1), unsigned{myClass.Data2}, unsigned{myClass.Data3},
                  unsigned{myRest[0]}, unsigned{myRest[1]}, unsigned{myRest[2]}, unsigned{myRest[3]},
                  unsigned{myRest[4]}, unsigned{myRest[5]}, unsigned{myRest[6]}, unsigned{myRest[7]});
    return theName.data();
}

/// The class that a file is named after; nothing for a name that is not exactly as FilenameOf returns it.
std::optional<CLSID> ClassOfFilename(const std::string& myName)
{
    CLSID theClass{};
    auto& theRest = theClass.Data4;
    std::sscanf(myName.c_str(), "{%8x-%4hx-%4hx-%2hhx%2hhx-%2hhx%2hhx%2hhx%2hhx%2hhx%2hhx}", &theClass.Data1,
                &theClass.Data2, &theClass.Data3, &theRest[0], &theRest[1], &theRest[2], &theRest[3], &theRest[4],
                &theRest[5], &theRest[6], &theRest[7]);
    return FilenameOf(theClass) == myName ? std::optional(theClass) : std::nullopt;
}

/// The folder of the user's own entries; empty for a user without a home.
fs::path UserFolder()
{
    fs::path theFolder = PathFromEnvironment("XDG_DATA_HOME");
    if (theFolder.empty())
    {
        const std::string myHome = HomeFolder();
        if (myHome.empty())
        {
            return {};
        }
        theFolder = fs::path(myHome) / ".local/share";
    }
    return theFolder / "qel/classes";
}

/// All folders with entries, in the order of their precedence.
std::vector<fs::path> ClassFolders()
{
    std::vector<fs::path> theFolders = {UserFolder()};
    const char* const myValue = secure_getenv("XDG_DATA_DIRS");
    std::string_view myRest = myValue != nullptr && *myValue != 0 ? myValue : "/usr/local/share:/usr/share";
    while (!myRest.empty())
    {
        const std::string_view myFolder = myRest.substr(0, myRest.find(':'));
        myRest.remove_prefix(std::min(myRest.size(), myFolder.size() + 1));
        theFolders.push_back(fs::path(myFolder) / "qel/classes");
    }
    std::erase_if(theFolders, [](const fs::path& myFolder) { return !myFolder.is_absolute(); });
    return theFolders;
}

/// After a failed system call: a lookup without enough memory must not count as one that found nothing.
void ThrowIfMemoryIsOut(int myError)
{
    if (myError == ENOMEM)
    {
        throw std::bad_alloc();
    }
}

/// Reads up to that many bytes; none if what is open is not a plain file. Throws nothing.
size_t ReadPlainFile(int myDescriptor, char* theBytes, size_t myLimit)
{
    struct stat myStatus
    {
    };
    if (fstat(myDescriptor, &myStatus) != 0 || !S_ISREG(myStatus.st_mode))
    {
        return 0;
    }
    size_t theCount = 0;
    for (ssize_t myPart = 1; myPart > 0 && theCount < myLimit;)
    {
        myPart = read(myDescriptor, theBytes + theCount, myLimit - theCount);
        theCount += myPart > 0 ? static_cast<size_t>(myPart) : 0;
    }
    return theCount;
}

/// The bytes of a plain file; nothing for one that is too large, and none for anything else. std::bad_alloc.
std::optional<std::string> ReadSmallFile(const fs::path& myPath)
{
    std::string theBytes(LargestFile + 1, '\0');
    const int myDescriptor = open(myPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); // a pipe must not block
    if (myDescriptor < 0)
    {
        ThrowIfMemoryIsOut(errno);
        return std::nullopt;
    }
    theBytes.resize(ReadPlainFile(myDescriptor, theBytes.data(), theBytes.size()));
    close(myDescriptor);
    return theBytes.size() > LargestFile ? std::nullopt : std::optional(std::move(theBytes));
}

/// The rest of the first line that begins with the key; empty if there is none.
std::string_view ValueOf(std::string_view myKey, std::string_view myLines)
{
    while (!myLines.empty())
    {
        std::string_view myLine = myLines.substr(0, myLines.find('\n'));
        myLines.remove_prefix(std::min(myLines.size(), myLine.size() + 1));
        if (myLine.starts_with(myKey))
        {
            myLine.remove_suffix(myLine.ends_with('\r') ? 1 : 0);
            return myLine.substr(myKey.size());
        }
    }
    return {};
}

std::optional<ClassEntry> ReadEntry(const fs::path& myPath)
{
    const std::optional<std::string> myBytes = ReadSmallFile(myPath);
    if (!myBytes || myBytes->find('\0') != std::string::npos)
    {
        return std::nullopt;
    }
    const std::optional<Text> myProgId = FromUtf8Exactly(ValueOf(ProgIdKey, *myBytes));
    const std::string_view myLibrary = ValueOf(LibraryKey, *myBytes);
    if (!myProgId || myProgId->empty() || myLibrary.empty())
    {
        return std::nullopt;
    }
    return ClassEntry{*myProgId, myPath.parent_path() / myLibrary};
}

/// Writes a file so that a reader sees the old one or the new one, whole, after a power failure too.
bool ReplaceFile(const fs::path& myPath, std::string_view myBytes)
{
    std::string myTemporary = myPath.parent_path() / ".new.XXXXXX";
    const int myDescriptor = mkostemp(myTemporary.data(), O_CLOEXEC);
    if (myDescriptor < 0)
    {
        return false;
    }
    const bool isWritten =
        write(myDescriptor, myBytes.data(), myBytes.size()) == std::ssize(myBytes) && fsync(myDescriptor) == 0;
    const bool isClosed = close(myDescriptor) == 0;
    if (isWritten && isClosed && rename(myTemporary.c_str(), myPath.c_str()) == 0)
    {
        return true;
    }
    unlink(myTemporary.c_str());
    return false;
}

bool HasControlCharacter(std::string_view myText)
{
    return std::ranges::any_of(myText, [](char myByte) { return static_cast<unsigned char>(myByte) < ' '; });
}

HRESULT WriteEntry(const CLSID& myClass, TextView myProgId, std::string_view myLibrary)
{
    const std::optional<std::string> myName = ToUtf8Exactly(myProgId);
    if (!myName || myName->empty() || HasControlCharacter(*myName) || !myLibrary.starts_with('/') ||
        HasControlCharacter(myLibrary))
    {
        return Refuse(E_INVALIDARG);
    }
    std::string myBytes;
    myBytes.append(ProgIdKey).append(*myName).append("\n").append(LibraryKey).append(myLibrary).append("\n");
    if (myBytes.size() > LargestFile)
    {
        return Refuse(E_INVALIDARG);
    }
    const fs::path myFolder = UserFolder();
    std::error_code myError;
    fs::create_directories(myFolder, myError);
    const bool isWritten = !myFolder.empty() && ReplaceFile(myFolder / FilenameOf(myClass), myBytes);
    return isWritten ? S_OK : Refuse(E_ACCESSDENIED);
}

HRESULT RemoveEntry(const CLSID& myClass)
{
    const fs::path myFolder = UserFolder();
    if (myFolder.empty())
    {
        return S_FALSE;
    }
    if (unlink((myFolder / FilenameOf(myClass)).c_str()) == 0)
    {
        return S_OK;
    }
    return errno == ENOENT || errno == ENOTDIR ? S_FALSE : Refuse(E_ACCESSDENIED);
}

/// The names of the class files in a folder, in order. std::bad_alloc.
std::set<std::string> ClassFilesIn(const fs::path& myFolder)
{
    std::set<std::string> theNames;
    const std::unique_ptr<DIR, FolderCloser> myListing(opendir(myFolder.c_str()));
    if (!myListing)
    {
        ThrowIfMemoryIsOut(errno);
        return theNames;
    }
    while (const dirent* const myEntry = readdir(myListing.get()))
    {
        if (std::string myName = myEntry->d_name; ClassOfFilename(myName))
        {
            theNames.insert(std::move(myName));
        }
    }
    return theNames;
}

std::optional<CLSID> FindProgId(TextView myProgId)
{
    std::set<std::string> mySeen; // an entry in an earlier folder hides later ones of the same class
    for (const fs::path& myFolder : ClassFolders())
    {
        for (const std::string& myName : ClassFilesIn(myFolder))
        {
            const std::optional<ClassEntry> myEntry = ReadEntry(myFolder / myName);
            if (myEntry && mySeen.insert(myName).second && EqualInLowerCase(myEntry->ProgId, myProgId))
            {
                return ClassOfFilename(myName);
            }
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> LibraryOfClass(const CLSID& myClass)
{
    for (const fs::path& myFolder : ClassFolders())
    {
        if (std::optional<ClassEntry> myEntry = ReadEntry(myFolder / FilenameOf(myClass)))
        {
            return std::move(myEntry->Library);
        }
    }
    return std::nullopt;
}

} // namespace qel

HRESULT QelRegisterClass(REFCLSID myClass, LPCOLESTR myProgID, const char* myLibrary)
{
    if (myProgID == nullptr || myLibrary == nullptr)
    {
        return qel::Refuse(E_POINTER);
    }
    return qel::Contained([&] { return qel::WriteEntry(myClass, myProgID, myLibrary); });
}

HRESULT QelUnregisterClass(REFCLSID myClass)
{
    return qel::Contained([&] { return qel::RemoveEntry(myClass); });
}

HRESULT CLSIDFromProgID(LPCOLESTR myProgID, CLSID* theClass)
{
    if (theClass != nullptr)
    {
        *theClass = GUID_NULL;
    }
    if (myProgID == nullptr || theClass == nullptr)
    {
        return qel::Refuse(E_POINTER);
    }
    return qel::Contained(
        [&]
        {
            const std::optional<CLSID> myFound = qel::FindProgId(myProgID);
            *theClass = myFound.value_or(GUID_NULL);
            return myFound ? S_OK : qel::Refuse(CO_E_CLASSSTRING);
        });
}

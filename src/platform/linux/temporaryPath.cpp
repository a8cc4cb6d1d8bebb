#include "platform/linux/temporaryPath.h"

#include "platform/linux/nativePath.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace qel
{
namespace
{

/// A path from the environment, without "/" at its end; empty if it is not set or not absolute.
std::string PathFromEnvironment(const char* myName)
{
    const char* const myValue = std::getenv(myName);
    const std::string_view myPath = myValue == nullptr ? "" : myValue;
    return myPath.starts_with('/') ? std::string(myPath.substr(0, myPath.find_last_not_of('/') + 1)) : std::string();
}

bool IsSafe(const std::string& myFolder)
{
    struct stat myFacts = {};
    return !myFolder.empty() && LogicalPath(myFolder) && lstat(myFolder.c_str(), &myFacts) == 0 &&
           S_ISDIR(myFacts.st_mode) && myFacts.st_uid == geteuid() && (myFacts.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

std::string HomeFolder()
{
    std::string theHome = PathFromEnvironment("HOME");
    if (theHome.empty())
    {
        std::array<char, 4096> myTexts = {};
        passwd myRecord = {};
        passwd* myUser = nullptr;
        if (getpwuid_r(geteuid(), &myRecord, myTexts.data(), myTexts.size(), &myUser) == 0 && myUser != nullptr &&
            myUser->pw_dir[0] == '/')
        {
            theHome = myUser->pw_dir;
        }
    }
    return theHome;
}

/// Our folder in the user's cache, created if it is missing; empty without a home folder.
std::string CacheFolder()
{
    std::string theFolder = PathFromEnvironment("XDG_CACHE_HOME");
    if (theFolder.empty())
    {
        theFolder = HomeFolder();
        if (theFolder.empty())
        {
            return theFolder;
        }
        theFolder += "/.cache";
    }
    theFolder += "/qel";
    // Whether each of them exists is checked with the folder itself.
    for (size_t i = theFolder.find('/', 1); i != std::string::npos; i = theFolder.find('/', i + 1))
    {
        mkdir(theFolder.substr(0, i).c_str(), S_IRWXU);
    }
    mkdir(theFolder.c_str(), S_IRWXU);
    return theFolder;
}

} // namespace

std::string NativeTemporaryPath()
{
    for (const char* const myName : {"TMPDIR", "XDG_RUNTIME_DIR"})
    {
        if (std::string thePath = PathFromEnvironment(myName); IsSafe(thePath))
        {
            return thePath;
        }
    }
    std::string thePath = CacheFolder();
    return IsSafe(thePath) ? thePath : std::string();
}

} // namespace qel

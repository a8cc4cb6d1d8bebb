#include "platform/linux/temporaryPath.h"

#include "platform/linux/environment.h"
#include "platform/linux/nativePath.h"

#include <sys/stat.h>
#include <unistd.h>

namespace qel
{
namespace
{

bool IsSafe(const std::string& myFolder)
{
    struct stat myFacts = {};
    return !myFolder.empty() && LogicalPath(myFolder) && lstat(myFolder.c_str(), &myFacts) == 0 &&
           S_ISDIR(myFacts.st_mode) && myFacts.st_uid == geteuid() && (myFacts.st_mode & (S_IRWXG | S_IRWXO)) == 0;
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
    // Whether they exist is checked together with the folder itself.
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

#include "commands/openInBrowser.h"

#include "common/Failure.h"

#include <spawn.h>
#include <string>
#include <unistd.h>

namespace qel::host
{

void OpenInBrowser(const std::filesystem::path& myFile)
{
    std::string myOpener = "xdg-open";
    std::string myName = std::filesystem::absolute(myFile).string();
    char* const myArguments[] = {myOpener.data(), myName.data(), nullptr};
    pid_t myProcess = 0;
    if (posix_spawnp(&myProcess, myOpener.c_str(), nullptr, nullptr, myArguments, environ) != 0)
    {
        throw Failure("there is no xdg-open (package xdg-utils) to start a browser with; open " + myName + " yourself");
    }
}

} // namespace qel::host

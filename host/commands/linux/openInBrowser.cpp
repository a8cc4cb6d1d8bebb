#include "commands/openInBrowser.h"

#include "common/Failure.h"

#include <chrono>
#include <string>
#include <thread>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qel::host
{

namespace
{

/// The status of a process that ends in time; 0 for one that goes on.
int StatusOf(pid_t myProcess)
{
    constexpr std::chrono::milliseconds Interval(20);
    constexpr int Tries = 150;
    int theStatus = 0;
    for (int myTry = 0; myTry < Tries && waitpid(myProcess, &theStatus, WNOHANG) == 0; ++myTry)
    {
        std::this_thread::sleep_for(Interval);
    }
    return theStatus;
}

} // namespace

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
    if (StatusOf(myProcess) != 0)
    {
        throw Failure(
            "the pages are built, but xdg-open finds no browser; install one, name one in $BROWSER, or open " + myName +
            " yourself");
    }
}

} // namespace qel::host

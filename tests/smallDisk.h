/// A real disk that runs full.
#pragma once

#include <cstdio>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qel
{

/// Gives this process the right to mount disks that only it sees, by making it root of a world of its own if need be.
inline bool MayMount()
{
    if (unshare(CLONE_NEWNS) == 0)
    {
        return true;
    }
    const auto Write = [](const char* myFile, const std::string& myText)
    {
        return bool(std::ofstream(myFile) << myText << std::flush);
    };
    const std::string myUser = std::to_string(getuid());
    const std::string myGroup = std::to_string(getgid());
    return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && Write("/proc/self/uid_map", myUser + " " + myUser + " 1") &&
           Write("/proc/self/setgroups", "deny") && Write("/proc/self/gid_map", myGroup + " " + myGroup + " 1");
}

/// Does something in a process of its own, in which an empty disk stands in the place of a folder; what fails there
/// fails the test. False: no disk may be mounted here, and nothing was done.
inline bool OnASmallDisk(const std::string& myFolder, const char* mySize, const std::function<void()>& myWork)
{
    constexpr int myRefusal = 2;
    std::fflush(nullptr);
    const pid_t myChild = fork();
    if (myChild == 0)
    {
        if (!MayMount() || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", myFolder.c_str(), "tmpfs", 0, mySize) != 0)
        {
            _exit(myRefusal);
        }
        bool myIsDone = false;
        try
        {
            myWork();
            myIsDone = !testing::Test::HasFailure();
        }
        catch (const std::exception& myFailure)
        {
            std::puts(myFailure.what());
        }
        std::fflush(nullptr);
        _exit(myIsDone ? 0 : 1);
    }
    int myStatus = -1;
    waitpid(myChild, &myStatus, 0);
    const bool myIsRefused = WIFEXITED(myStatus) && WEXITSTATUS(myStatus) == myRefusal;
    EXPECT_TRUE(myIsRefused || myStatus == 0);
    return !myIsRefused;
}

} // namespace qel

/// What tests need of the system beyond the standard library. Each system has a header of this name.
#pragma once

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace qel
{

/// Sets a variable of the environment, or removes it: null.
inline void SetVariable(const char* myName, const char* myValue)
{
    myValue == nullptr ? unsetenv(myName) : setenv(myName, myValue, 1);
}

/// Makes a link to a folder. It needs no special right.
inline void LinkFolder(const std::filesystem::path& myFolder, const std::filesystem::path& myLink)
{
    std::filesystem::create_directory_symlink(myFolder, myLink);
}

/// True where a link to a folder can be deleted.
constexpr bool LinksCanBeDeleted = true;

/// Removes a folder with its content, as far as possible.
inline void RemoveTree(const std::filesystem::path& myFolder)
{
    std::error_code myIgnored;
    std::filesystem::remove_all(myFolder, myIgnored);
}

/// The variable of the environment that names the folder for temporary files.
constexpr const char* TemporaryFolderVariable = "TMPDIR";

/// What makes the system have no temporary path.
constexpr std::pair<const char*, const char*> NoTemporaryPath[] = {
    {"TMPDIR", "/nonexistent"}, {"XDG_RUNTIME_DIR", ""}, {"XDG_CACHE_HOME", "/dev/null"}};

/// Hides an entry whose name begins with a dot.
inline void Hide(const std::filesystem::path& /*myEntry*/) {}

/// Calls a function in a copy of this process. True if the copy ends after it, false if it is killed there.
inline std::optional<bool> ReachesItsEnd(const std::function<void()>& myFunction)
{
    const pid_t myCopy = fork();
    if (myCopy == 0)
    {
        myFunction();
        _exit(0);
    }
    int myStatus = 0;
    waitpid(myCopy, &myStatus, 0);
    return !WIFSIGNALED(myStatus);
}

/// Ends this process without giving it another moment.
inline void KillThisProcess()
{
    std::raise(SIGKILL);
}

} // namespace qel

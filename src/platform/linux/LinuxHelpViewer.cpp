#include "platform/linux/LinuxHelpViewer.h"

#include "platform/linux/nativePath.h"
#include "text/errors.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace qel
{
namespace
{

/// What a spawned program starts with: no open files, no blocked signals, a session of its own.
class SpawnSettings
{
public:
    SpawnSettings()
    {
        posix_spawn_file_actions_init(&myFiles);
        for (const int myHandle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        {
            posix_spawn_file_actions_addopen(&myFiles, myHandle, "/dev/null", O_RDWR, 0);
        }
        posix_spawn_file_actions_addclosefrom_np(&myFiles, STDERR_FILENO + 1);
        sigset_t mySignals;
        sigemptyset(&mySignals);
        posix_spawnattr_init(&myAttributes);
        posix_spawnattr_setsigmask(&myAttributes, &mySignals);
        sigaddset(&mySignals, SIGCHLD);
        sigaddset(&mySignals, SIGPIPE);
        posix_spawnattr_setsigdefault(&myAttributes, &mySignals);
        posix_spawnattr_setflags(&myAttributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&myFiles);
        posix_spawnattr_destroy(&myAttributes);
    }

    const posix_spawn_file_actions_t& Files() const { return myFiles; }
    const posix_spawnattr_t& Attributes() const { return myAttributes; }

private:
    posix_spawn_file_actions_t myFiles = {};
    posix_spawnattr_t myAttributes = {};
};

/// Starts the program that opens a file for the user. It is started by a shell, which exits at once, so that
/// this call does not wait for the program to end.
void OpenForUser(std::string myPath)
{
    std::string myShell = "sh";
    std::string myOption = "-c";
    std::string myCommand = "xdg-open \"$0\" &";
    const std::array<char*, 5> myArguments = {myShell.data(), myOption.data(), myCommand.data(), myPath.data(),
                                              nullptr};
    const SpawnSettings mySettings;
    pid_t myProcess = 0;
    if (posix_spawn(&myProcess, "/bin/sh", &mySettings.Files(), &mySettings.Attributes(), myArguments.data(),
                    environ) == 0)
    {
        while (waitpid(myProcess, nullptr, 0) == -1 && errno == EINTR)
        {
        }
    }
}

} // namespace

void LinuxHelpViewer::ShowContext(TextView myHelpFile, int32_t myContext)
{
    try
    {
        const Text myFolder(myHelpFile.substr(0, myHelpFile.find_last_of(u"\\/") + 1));
        const std::string myTopic = NativePath(myFolder + u"help\\" + NumberText(int64_t{myContext}) + u".html");
        if (std::string myPath = RealPath(myTopic); !myPath.empty())
        {
            OpenForUser(std::move(myPath));
        }
    }
    catch (const Error&)
    {
        // A name that no file can have means a missing help file.
    }
}

} // namespace qel

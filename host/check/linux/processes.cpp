// Processes: running this program again, and what it does then.
#include "check/system.h"

#include "common/Failure.h"
#include "common/printable.h"
#include "common/programFiles.h"
#include "platform/linux/Descriptor.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// Starts this program as the head of a process group of its own, with these signals blocked.
pid_t Start(const std::vector<std::string>& myArguments, const sigset_t& myBlocked)
{
    std::string myProgram = "qelhost";
    std::vector<char*> myTexts{myProgram.data()};
    std::vector<std::string> myCopies = myArguments;
    std::transform(myCopies.begin(), myCopies.end(), std::back_inserter(myTexts),
                   [](std::string& myText) { return myText.data(); });
    myTexts.push_back(nullptr);

    posix_spawnattr_t myAttributes;
    posix_spawnattr_init(&myAttributes);
    posix_spawnattr_setflags(&myAttributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setpgroup(&myAttributes, 0);
    posix_spawnattr_setsigmask(&myAttributes, &myBlocked);
    posix_spawn_file_actions_t myActions;
    posix_spawn_file_actions_init(&myActions);
    posix_spawn_file_actions_addopen(&myActions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&myActions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t theProcess = -1;
    const int myError =
        posix_spawn(&theProcess, ProgramFile().c_str(), &myActions, &myAttributes, myTexts.data(), environ);
    posix_spawn_file_actions_destroy(&myActions);
    posix_spawnattr_destroy(&myAttributes);
    if (myError != 0)
    {
        throw Failure(std::string("no process can be made: ") + std::strerror(myError));
    }
    return theProcess;
}

/// How a process ended.
std::string EndOf(int myStatus)
{
    if (WIFSIGNALED(myStatus))
    {
        return "signal " + std::to_string(WTERMSIG(myStatus)) + " (" + strsignal(WTERMSIG(myStatus)) + ")";
    }
    return "the process ended by itself with " + std::to_string(WEXITSTATUS(myStatus));
}

} // namespace

/// The signals that end a program, and that of a process that has ended. Signals that the program was told to ignore
/// stay ignored.
struct ProgramRunner::HeldSignals
{
    HeldSignals()
    {
        sigset_t myEnding;
        sigemptyset(&myEnding);
        for (const int mySignal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
        {
            struct sigaction myAction = {};
            if (sigaction(mySignal, nullptr, &myAction) == 0 && myAction.sa_handler != SIG_IGN)
            {
                sigaddset(&myEnding, mySignal);
            }
        }
        sigset_t myOfProcess;
        sigemptyset(&myOfProcess);
        sigaddset(&myOfProcess, SIGCHLD);
        pthread_sigmask(SIG_BLOCK, &myEnding, &Before);
        pthread_sigmask(SIG_BLOCK, &myOfProcess, nullptr);
        Ending = Descriptor(signalfd(-1, &myEnding, SFD_CLOEXEC));
        OfProcess = Descriptor(signalfd(-1, &myOfProcess, SFD_CLOEXEC | SFD_NONBLOCK));
    }

    /// Waits until the process has ended, without reaping it. False: it has not ended by then, or a signal came.
    bool WaitForEnd(pid_t myProcess, Clock::time_point myEnd) const
    {
        for (;;)
        {
            siginfo_t myInfo{};
            if (waitid(P_PID, static_cast<id_t>(myProcess), &myInfo, WEXITED | WNOWAIT | WNOHANG) == 0 &&
                myInfo.si_pid == myProcess)
            {
                return true;
            }
            const auto myRest = std::chrono::ceil<std::chrono::milliseconds>(myEnd - Clock::now()).count();
            std::array<pollfd, 2> myWaits{{{OfProcess.Handle(), POLLIN, 0}, {Ending.Handle(), POLLIN, 0}}};
            Retrying(
                [&] {
                    return poll(myWaits.data(), myWaits.size(), static_cast<int>(std::clamp(myRest, 0L, 86'400'000L)));
                });
            if (myRest <= 0 || myWaits[1].revents != 0)
            {
                return false;
            }
            signalfd_siginfo mySignal{};
            [[maybe_unused]] const auto myCount = read(OfProcess.Handle(), &mySignal, sizeof mySignal);
        }
    }

    sigset_t Before{};
    Descriptor Ending;
    Descriptor OfProcess;
};

ProgramRunner::ProgramRunner() : mySignals(std::make_unique<HeldSignals>()) {}

ProgramRunner::~ProgramRunner()
{
    pthread_sigmask(SIG_SETMASK, &mySignals->Before, nullptr);
}

std::string ProgramRunner::Run(const std::vector<std::string>& myArguments, double mySeconds) const
{
    const auto myEnd =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(mySeconds));
    const pid_t myProcess = Start(myArguments, mySignals->Before);
    const bool myHasEnded = mySignals->WaitForEnd(myProcess, myEnd);
    kill(-myProcess, SIGKILL);
    kill(myProcess, SIGKILL); // it may have left its group
    int myStatus = 0;
    Retrying([&] { return waitpid(myProcess, &myStatus, 0); });
    std::array<char, 64> myLimit{};
    std::snprintf(myLimit.data(), myLimit.size(), "no end within %g seconds", mySeconds);
    return myHasEnded ? EndOf(myStatus) : myLimit.data();
}

void BeginRun()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

void EndRun()
{
    std::_Exit(0);
}

void IsolateProcess(const fs::path& myFolder)
{
    for (const char* myName : {"TMPDIR", "HOME", "XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_RUNTIME_DIR"})
    {
        const fs::path myPlace = myFolder / myName;
        fs::create_directory(myPlace);
        fs::permissions(myPlace, fs::perms::owner_all);
        setenv(myName, myPlace.c_str(), 1);
    }
    for (const char* myName : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
    {
        unsetenv(myName);
    }
    setenv("PATH", myFolder.c_str(), 1); // no help viewer opens
    const rlimit myNoImage{0, 0};
    setrlimit(RLIMIT_CORE, &myNoImage);
}

fs::path MakeTemporaryFolder()
{
    std::error_code myError;
    fs::path myPlace = fs::temp_directory_path(myError);
    myPlace = myError ? myPlace : fs::canonical(myPlace, myError);
    const char* const mySetting = std::getenv("TMPDIR");
    const std::string myName = mySetting != nullptr ? mySetting : "/tmp";
    if (!myError && (!IsUtf8(myPlace.string()) || myPlace.string().find('\\') != std::string::npos))
    {
        throw Failure("the component cannot work in " + Printable(myName) +
                      "; set TMPDIR to a folder whose name is UTF-8 without \"\\\"");
    }
    std::string theFolder = (myPlace / "qelhost-check.XXXXXX").string();
    if (myError || mkdtemp(theFolder.data()) == nullptr)
    {
        throw Failure("no folder can be made in " + Printable(myName) + ": " +
                      (myError ? myError.message() : std::strerror(errno)) + "; set TMPDIR to one that can be written");
    }
    return theFolder;
}

void RemoveTemporaryFolder(const fs::path& myFolder)
{
    std::error_code myIgnored;
    fs::remove_all(myFolder, myIgnored);
}

} // namespace qel::host

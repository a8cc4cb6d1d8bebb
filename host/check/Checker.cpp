#include "check/Checker.h"

#include "platform/linux/Descriptor.h"
#include "platform/linux/nativePath.h"
#include "site/Failure.h"
#include "site/markup.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include <fcntl.h>
#include <poll.h>
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

// What the process says on its pipe: a letter, a text, a zero. The result comes last.
constexpr char StepMessage = 's';
constexpr char ExpectedMessage = 'e';
constexpr char GotMessage = 'g';
constexpr char ResultMessage = 'r';

int ReportPipe = -1;

void Tell(char myKind, const std::string& myText)
{
    // Without zeros, and in one piece as long as it is short: two threads may note their steps.
    const std::string myMessage = myKind + myText.substr(0, myText.find('\0')) + '\0';
    for (size_t myDone = 0; myDone < myMessage.size();)
    {
        const ssize_t myCount =
            Retrying([&] { return write(ReportPipe, myMessage.data() + myDone, myMessage.size() - myDone); });
        if (myCount < 0)
        {
            return; // nobody listens any more
        }
        myDone += static_cast<size_t>(myCount);
    }
}

/// Holds the signals that end a program back for as long as it lives, so that what it has made is put away first. After
/// that they do what they always do. Signals that the program was told to ignore stay ignored.
class HeldSignals
{
public:
    HeldSignals()
    {
        sigset_t myHeld;
        sigemptyset(&myHeld);
        for (const int mySignal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
        {
            struct sigaction myAction = {};
            if (sigaction(mySignal, nullptr, &myAction) == 0 && myAction.sa_handler != SIG_IGN)
            {
                sigaddset(&myHeld, mySignal);
            }
        }
        pthread_sigmask(SIG_BLOCK, &myHeld, &myBefore);
        myArrivals = Descriptor(signalfd(-1, &myHeld, SFD_CLOEXEC));
    }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals() { Release(); }

    void Release() const { pthread_sigmask(SIG_SETMASK, &myBefore, nullptr); }

    /// Waits until there is something to read, but not beyond the moment and no longer than to the first held signal.
    /// False: there is nothing. -1 for the pipe waits for signals alone.
    bool WaitFor(int myPipe, Clock::time_point myEnd) const
    {
        const auto myRest = std::chrono::ceil<std::chrono::milliseconds>(myEnd - Clock::now()).count();
        std::array<pollfd, 2> myWaits{{{myPipe, POLLIN, 0}, {myArrivals.Handle(), POLLIN, 0}}};
        Retrying(
            [&]
            { return poll(myWaits.data(), myWaits.size(), static_cast<int>(std::clamp(myRest, 0L, 86'400'000L))); });
        return myWaits[0].revents != 0 && myWaits[1].revents == 0;
    }
    bool HasOne() const
    {
        pollfd myWait{myArrivals.Handle(), POLLIN, 0};
        return Retrying([&] { return poll(&myWait, 1, 0); }) == 1;
    }

private:
    sigset_t myBefore{};
    Descriptor myArrivals;
};

/// A new folder that goes with all that is in it. Its name can be told to the component.
class PrivateFolder
{
public:
    PrivateFolder()
    {
        std::error_code myError;
        fs::path myPlace = fs::temp_directory_path(myError);
        myPlace = myError ? myPlace : fs::canonical(myPlace, myError);
        const char* const mySetting = std::getenv("TMPDIR");
        const std::string myName = mySetting != nullptr ? mySetting : "/tmp";
        if (!myError && !LogicalPath(myPlace.string()))
        {
            throw Failure("the component cannot be told of folders in " + Tamed(myName) +
                          "; set TMPDIR to one whose name is UTF-8 without \"\\\"");
        }
        std::string myPattern = (myPlace / "qelhost-check.XXXXXX").string();
        if (myError || mkdtemp(myPattern.data()) == nullptr)
        {
            throw Failure("no folder can be made in " + Tamed(myName) + ": " +
                          (myError ? myError.message() : std::strerror(errno)) +
                          "; set TMPDIR to one that can be written");
        }
        Path = myPattern;
    }
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    ~PrivateFolder()
    {
        std::error_code myIgnored;
        fs::remove_all(Path, myIgnored);
    }

    fs::path Path;
};

/// In the new process: cuts it off from the user's files, desktop and terminal.
void Isolate(const fs::path& myFolder)
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
    const rlimit myNoCore{0, 0};
    setrlimit(RLIMIT_CORE, &myNoCore);
}

[[noreturn]] void RunAndTell(const Trial& myTrial, const std::function<void(const Trial&)>& myOperation,
                             bool myIsolation)
{
    Outcome theOutcome;
    try
    {
        const int myNull = open("/dev/null", O_RDWR | O_CLOEXEC);
        dup2(myNull, STDIN_FILENO);
        dup2(myNull, STDOUT_FILENO);
        if (myIsolation)
        {
            Isolate(myTrial.Folder);
        }
        fs::current_path(myTrial.Folder);
        myOperation(myTrial);
    }
    catch (const Outcome& myOutcome)
    {
        theOutcome = myOutcome;
    }
    catch (const std::exception& myError)
    {
        theOutcome = {CheckResult::Failed, "the check comes to its end", myError.what()};
    }
    Tell(ExpectedMessage, theOutcome.Expected);
    Tell(GotMessage, theOutcome.Got);
    Tell(ResultMessage, std::to_string(static_cast<int>(theOutcome.Result)));
    _exit(0);
}

/// What came through the pipe, up to its end, the result, a signal or the moment.
struct Messages
{
    void Read(int myPipe, const HeldSignals& mySignals, Clock::time_point myEnd)
    {
        std::array<char, 4096> myBuffer{};
        while (!HasResult)
        {
            const bool myIsReady = mySignals.WaitFor(myPipe, myEnd);
            const ssize_t myCount =
                myIsReady ? Retrying([&] { return read(myPipe, myBuffer.data(), myBuffer.size()); }) : 0;
            if (myCount <= 0)
            {
                return;
            }
            myText.append(myBuffer.data(), static_cast<size_t>(myCount));
            TakeMessages();
        }
    }

    std::string Step;
    Outcome TheOutcome;
    bool HasResult = false;

private:
    void TakeMessages()
    {
        for (size_t myEnd = myText.find('\0'); myEnd != std::string::npos; myEnd = myText.find('\0'))
        {
            std::string myContent = myEnd == 0 ? "" : myText.substr(1, myEnd - 1);
            switch (myText.front())
            {
            case StepMessage:
                Step = std::move(myContent);
                break;
            case ExpectedMessage:
                TheOutcome.Expected = std::move(myContent);
                break;
            case GotMessage:
                TheOutcome.Got = std::move(myContent);
                break;
            case ResultMessage:
                TheOutcome.Result = static_cast<CheckResult>(std::atoi(myContent.c_str()));
                HasResult = true;
                break;
            default:
                break;
            }
            myText.erase(0, myEnd + 1);
        }
    }

    std::string myText;
};

/// How a process ended that did not say so itself.
std::string EndOf(int myStatus)
{
    if (WIFSIGNALED(myStatus))
    {
        return "signal " + std::to_string(WTERMSIG(myStatus)) + " (" + strsignal(WTERMSIG(myStatus)) + ")";
    }
    return "the process ended by itself with " + std::to_string(WEXITSTATUS(myStatus));
}

/// Waits for a process that has said its last, without reaping it. False: it goes on beyond the moment, or a signal
/// came.
bool EndsBefore(pid_t myProcess, const HeldSignals& mySignals, Clock::time_point myEnd)
{
    constexpr auto myPause = std::chrono::milliseconds(1);
    for (siginfo_t myInfo{}; Clock::now() < myEnd && !mySignals.HasOne(); mySignals.WaitFor(-1, Clock::now() + myPause))
    {
        if (waitid(P_PID, static_cast<id_t>(myProcess), &myInfo, WEXITED | WNOWAIT | WNOHANG) == 0 &&
            myInfo.si_pid == myProcess)
        {
            return true;
        }
    }
    return false;
}

/// Listens to the process until it is done, ends it and its group, and reaps it.
Outcome Await(pid_t myProcess, int myPipe, const HeldSignals& mySignals, double mySeconds)
{
    const auto myStart = Clock::now();
    const auto myEnd = myStart + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(mySeconds));
    Messages myMessages;
    myMessages.Read(myPipe, mySignals, myEnd);
    const bool myIsLate = !myMessages.HasResult && !EndsBefore(myProcess, mySignals, myEnd);
    kill(-myProcess, SIGKILL);
    kill(myProcess, SIGKILL); // it may have left its group
    int myStatus = 0;
    Retrying([&] { return waitpid(myProcess, &myStatus, 0); });
    Outcome theOutcome = std::move(myMessages.TheOutcome);
    if (!myMessages.HasResult)
    {
        std::array<char, 64> myLimit{};
        std::snprintf(myLimit.data(), myLimit.size(), "no end within %g seconds", mySeconds);
        theOutcome = {CheckResult::Failed, "the check comes to its end", myIsLate ? myLimit.data() : EndOf(myStatus)};
        theOutcome.Got += myMessages.Step.empty() ? "" : "; the last that went well: " + myMessages.Step;
    }
    theOutcome.Seconds = std::chrono::duration<double>(Clock::now() - myStart).count();
    return theOutcome;
}

} // namespace

Outcome RunApart(const fs::path& myFile, const std::function<void(const Trial&)>& myOperation, double mySeconds,
                 bool myIsolation)
{
    const HeldSignals mySignals; // goes last
    const PrivateFolder myFolder;
    std::array<int, 2> myEnds{};
    if (pipe2(myEnds.data(), O_CLOEXEC) != 0)
    {
        throw Failure(std::string("no pipe can be made: ") + std::strerror(errno));
    }
    const Descriptor myReadEnd(myEnds[0]);
    Descriptor myWriteEnd(myEnds[1]);
    std::cout.flush();
    const pid_t myProcess = fork();
    if (myProcess < 0)
    {
        throw Failure(std::string("no process can be made: ") + std::strerror(errno));
    }
    if (myProcess == 0)
    {
        setpgid(0, 0);
        mySignals.Release();
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        ReportPipe = myEnds[1];
        RunAndTell({myFile, myFolder.Path}, myOperation, myIsolation);
    }
    setpgid(myProcess, myProcess); // here too: whoever comes first
    myWriteEnd.Close();
    return Await(myProcess, myReadEnd.Handle(), mySignals, mySeconds);
}

void NoteStep(const std::string& myStep)
{
    Tell(StepMessage, myStep);
}

} // namespace qel::host

#include "Checker.h"

#include "Failure.h"
#include "platform/linux/Descriptor.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
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

/// A new folder that goes with all that is in it.
class PrivateFolder
{
public:
    PrivateFolder()
    {
        std::string myPattern = (fs::temp_directory_path() / "qelhost-check.XXXXXX").string();
        if (mkdtemp(myPattern.data()) == nullptr)
        {
            throw Failure("no folder can be made in " + fs::temp_directory_path().string() + ": " +
                          std::strerror(errno) + "; set TMPDIR to one that can be written");
        }
        Path = fs::canonical(myPattern);
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

/// What came through the pipe, up to its end, the result or the moment.
struct Messages
{
    void Read(int myPipe, Clock::time_point myEnd)
    {
        std::array<char, 4096> myBuffer{};
        while (!HasResult)
        {
            const auto myRest = std::chrono::ceil<std::chrono::milliseconds>(myEnd - Clock::now()).count();
            pollfd myWait{myPipe, POLLIN, 0};
            const bool myIsReady =
                Retrying([&] { return poll(&myWait, 1, myRest < 0 ? 0 : static_cast<int>(myRest)); }) == 1;
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

/// Waits for a process that has said its last, without reaping it. False: it goes on beyond the moment.
bool EndsBefore(pid_t myProcess, Clock::time_point myEnd)
{
    constexpr auto myPause = std::chrono::milliseconds(1);
    for (siginfo_t myInfo{}; Clock::now() < myEnd; std::this_thread::sleep_for(myPause))
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
Outcome Await(pid_t myProcess, int myPipe, double mySeconds)
{
    const auto myStart = Clock::now();
    const auto myEnd = myStart + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(mySeconds));
    Messages myMessages;
    myMessages.Read(myPipe, myEnd);
    const bool myIsLate = !myMessages.HasResult && !EndsBefore(myProcess, myEnd);
    kill(-myProcess, SIGKILL);
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
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        ReportPipe = myEnds[1];
        RunAndTell({myFile, myFolder.Path}, myOperation, myIsolation);
    }
    setpgid(myProcess, myProcess); // here too: whoever comes first
    myWriteEnd.Close();
    return Await(myProcess, myReadEnd.Handle(), mySeconds);
}

void NoteStep(const std::string& myStep)
{
    Tell(StepMessage, myStep);
}

} // namespace qel::host

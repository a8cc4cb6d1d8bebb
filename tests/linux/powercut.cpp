/// Kills a program as a power cut would, at a system call that changes a file; that call no longer happens.
///
///     powercut N PROGRAM ARGUMENT...    kills it at its Nth such call; exits with 99 if it came to that, else as it
///     did powercut 0 PROGRAM ARGUMENT...    lets it run; the last line of the error output is how many such calls it
///     made
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr uint64_t Changes[] = {
#ifdef SYS_rename // the older calls, which not every machine has
    SYS_rename,    SYS_unlink,   SYS_rmdir,     SYS_mkdir,    SYS_link,
#endif
    SYS_renameat2, SYS_unlinkat, SYS_mkdirat,   SYS_linkat,   SYS_pwrite64,
    SYS_ftruncate, SYS_fsync,    SYS_fdatasync, SYS_sendfile, SYS_copy_file_range};

bool ChangesFile(pid_t myProcess, const __ptrace_syscall_info& myCall)
{
    const uint64_t myNumber = myCall.entry.nr;
    if (myCall.op != PTRACE_SYSCALL_INFO_ENTRY || (myNumber != SYS_write && myNumber != SYS_writev))
    {
        const bool isCreation = myNumber == SYS_openat && (myCall.entry.args[2] & (O_CREAT | O_TRUNC)) != 0;
        return myCall.op == PTRACE_SYSCALL_INFO_ENTRY && (isCreation || std::ranges::count(Changes, myNumber) > 0);
    }
    std::error_code myIgnored; // what is written to may be a pipe
    const auto myFile = "/proc/" + std::to_string(myProcess) + "/fd/" + std::to_string(myCall.entry.args[0]);
    return std::filesystem::read_symlink(myFile, myIgnored).is_absolute();
}

} // namespace

int main(int myCount, char** myArguments)
{
    const int myLast = myCount > 2 ? std::atoi(myArguments[1]) : 0;
    const pid_t myProgram = fork();
    if (myProgram == 0)
    {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        execv(myArguments[2], myArguments + 2);
        _exit(127);
    }
    int myCalls = 0;
    int myStatus = 0;
    waitpid(myProgram, &myStatus, 0);
    ptrace(PTRACE_SETOPTIONS, myProgram, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_EXITKILL);
    pid_t myThread = myProgram;
    for (int mySignal = 0; WIFSTOPPED(myStatus) || myThread != myProgram; myThread = waitpid(-1, &myStatus, __WALL))
    {
        __ptrace_syscall_info myCall{};
        const int myStop = WIFSTOPPED(myStatus) ? WSTOPSIG(myStatus) : 0;
        if (myStop == (SIGTRAP | 0x80))
        {
            ptrace(PTRACE_GET_SYSCALL_INFO, myThread, sizeof(myCall), &myCall);
        }
        if (ChangesFile(myProgram, myCall) && ++myCalls == myLast)
        {
            kill(myProgram, SIGKILL);
        }
        mySignal = myStop == (SIGTRAP | 0x80) || myStop == SIGTRAP || myStop == SIGSTOP ? 0 : myStop; // of the tracing
        ptrace(PTRACE_SYSCALL, myThread, nullptr, mySignal);
    }
    std::fprintf(stderr, "%d\n", myCalls);
    return WIFEXITED(myStatus) ? WEXITSTATUS(myStatus) : myCalls == myLast ? 99 : 128 + WTERMSIG(myStatus);
}

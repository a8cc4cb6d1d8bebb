// Processes: running this program again, and what it does then.
#include "check/system.h"

#include "common/Failure.h"
#include "common/paths.h"
#include "common/printable.h"
#include "common/programFiles.h"
#include "common/systemReasons.h"
#include "platform/windows/ansiPath.h"
#include "platform/windows/Handle.h"
#include "platform/windows/wideText.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include <objbase.h>

extern "C" void SetOaNoCache(); // not in the headers; the library has it for 32 bits without the suffix of WINAPI

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

/// Where the private registries of processes are, each in a key with the name of its folder.
constexpr wchar_t RegistriesKey[] = L"Software\\qelhost-check";

std::wstring RegistryKey(const fs::path& myFolder)
{
    return RegistriesKey + (L"\\" + myFolder.filename().wstring());
}

/// An argument as programs expect it: in quotation marks, each one in it after a backslash, and after twice as many
/// backslashes as there were in front of it.
std::wstring Quoted(const std::string& myArgument)
{
    std::wstring theText = L"\"";
    size_t myBackslashes = 0;
    for (const wchar_t myUnit : WideText(FromUtf8(myArgument)))
    {
        if (myUnit == L'"')
        {
            theText.append(myBackslashes + 1, L'\\');
        }
        myBackslashes = myUnit == L'\\' ? myBackslashes + 1 : 0;
        theText += myUnit;
    }
    return theText.append(myBackslashes, L'\\') + L'"';
}

/// Why the system has refused what was asked of it last.
std::string LastReason()
{
    return ReasonOf({static_cast<int>(GetLastError()), std::system_category()});
}

/// When the handle of the job is closed, each process in it ends.
Handle MakeJob()
{
    Handle theJob(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION myLimits = {};
    myLimits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (SetInformationJobObject(theJob.Get(), JobObjectExtendedLimitInformation, &myLimits, sizeof myLimits) == 0)
    {
        throw Failure("no job can be made for the processes: " + LastReason());
    }
    return theJob;
}

/// Starts this program in a job. What it writes as an error is written where this process writes its own.
Handle Start(const std::vector<std::string>& myArguments, const Handle& myJob)
{
    std::wstring myCommand = Quoted(TextOf(ProgramFile()));
    for (const std::string& myArgument : myArguments)
    {
        myCommand += L" " + Quoted(myArgument);
    }
    SECURITY_ATTRIBUTES myInheritance = {sizeof myInheritance, nullptr, TRUE};
    const Handle myNothing(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                       &myInheritance, OPEN_EXISTING, 0, nullptr));
    STARTUPINFOW myStart = {};
    myStart.cb = sizeof myStart;
    myStart.dwFlags = STARTF_USESTDHANDLES;
    myStart.hStdInput = myNothing.Get();
    myStart.hStdOutput = myNothing.Get();
    myStart.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION myProcess = {};
    // In a group of its own it does not receive the Ctrl+C that ends this process.
    if (CreateProcessW(ProgramFile().c_str(), myCommand.data(), nullptr, nullptr, TRUE,
                       CREATE_SUSPENDED | CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &myStart, &myProcess) == 0)
    {
        throw Failure("no process can be made: " + LastReason());
    }
    Handle theProcess(myProcess.hProcess);
    const Handle myThread(myProcess.hThread);
    if (AssignProcessToJobObject(myJob.Get(), theProcess.Get()) == 0)
    {
        const std::string myReason = LastReason();
        TerminateProcess(theProcess.Get(), 1); // outside of the job nothing else would end it
        throw Failure("a process cannot be put into a job: " + myReason);
    }
    ResumeThread(myThread.Get());
    return theProcess;
}

/// Ends all processes of a job, and waits until they have gone.
void EndJob(const Handle& theJob)
{
    JOBOBJECT_BASIC_ACCOUNTING_INFORMATION myCounts = {};
    TerminateJobObject(theJob.Get(), 1);
    while (QueryInformationJobObject(theJob.Get(), JobObjectBasicAccountingInformation, &myCounts, sizeof myCounts,
                                     nullptr) != 0 &&
           myCounts.ActiveProcesses > 0)
    {
        Sleep(1);
    }
}

/// How a process ended.
std::string EndOf(DWORD myCode)
{
    constexpr DWORD FirstException = 0xC0000000;
    std::array<char, 64> theText{};
    std::snprintf(theText.data(), theText.size(),
                  myCode < FirstException ? "the process ended by itself with %lu" : "exception 0x%08lX", myCode);
    return theText.data();
}

/// Ends the process in place of the system, which would ask the user or write a report.
LONG WINAPI EndByException(EXCEPTION_POINTERS* myException)
{
    TerminateProcess(GetCurrentProcess(), myException->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

/// A key of a private registry.
HKEY MakeKey(const std::wstring& myName)
{
    HKEY theKey = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, myName.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &theKey, nullptr) !=
        ERROR_SUCCESS)
    {
        throw Failure("no private registry can be made");
    }
    return theKey;
}

/// Replaces the parts of the registry that have classes by private ones, for this process.
void ReplaceRegistry(const std::wstring& myKey)
{
    MakeKey(myKey + L"\\user\\Software\\Classes");
    HKEY const myUser = MakeKey(myKey + L"\\user");
    HKEY const myClasses = MakeKey(myKey + L"\\machine\\Software\\Classes");
    HKEY const myMachine = MakeKey(myKey + L"\\machine");
    RegOverridePredefKey(HKEY_CLASSES_ROOT, myClasses);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, myMachine);
    RegOverridePredefKey(HKEY_CURRENT_USER, myUser);
}

/// Moves the process to a desktop that nobody sees, like that of a service. It has no windows yet.
void HideFromDisplay()
{
    HWINSTA const myStation = CreateWindowStationW(nullptr, 0, WINSTA_ALL_ACCESS, nullptr);
    if (myStation == nullptr || SetProcessWindowStation(myStation) == 0 ||
        SetThreadDesktop(CreateDesktopW(L"check", nullptr, nullptr, 0, GENERIC_ALL, nullptr)) == 0)
    {
        throw Failure("no desktop can be made that nobody sees: " + LastReason());
    }
}

} // namespace

/// The console's requests to end the program. The system reports each in a thread of its own.
struct ProgramRunner::HeldSignals
{
    HeldSignals() { SetConsoleCtrlHandler(&Hold, TRUE); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals()
    {
        if (WaitForSingleObject(Ending().Get(), 0) == WAIT_OBJECT_0)
        {
            std::exit(static_cast<int>(STATUS_CONTROL_C_EXIT)); // which also restores the console
        }
        SetConsoleCtrlHandler(&Hold, FALSE);
    }

    static const Handle& Ending()
    {
        static const Handle theEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        return theEvent;
    }
    static BOOL WINAPI Hold(DWORD mySignal)
    {
        SetEvent(Ending().Get());
        if (mySignal != CTRL_C_EVENT && mySignal != CTRL_BREAK_EVENT)
        {
            Sleep(INFINITE); // when this returns, the system ends the program at once
        }
        return TRUE;
    }
};

ProgramRunner::ProgramRunner() : mySignals(std::make_unique<HeldSignals>()) {}

ProgramRunner::~ProgramRunner() = default;

std::string ProgramRunner::Run(const std::vector<std::string>& myArguments, double mySeconds) const
{
    const Handle myJob = MakeJob();
    const Handle myProcess = Start(myArguments, myJob);
    const std::array<HANDLE, 2> myWaits{myProcess.Get(), HeldSignals::Ending().Get()};
    const bool myHasEnded =
        WaitForMultipleObjects(2, myWaits.data(), FALSE, static_cast<DWORD>(mySeconds * 1000)) == WAIT_OBJECT_0;
    EndJob(myJob);
    WaitForSingleObject(myProcess.Get(), INFINITE);
    DWORD myCode = 0;
    GetExitCodeProcess(myProcess.Get(), &myCode);
    std::array<char, 64> myLimit{};
    std::snprintf(myLimit.data(), myLimit.size(), "no end within %g seconds", mySeconds);
    return myHasEnded ? EndOf(myCode) : myLimit.data();
}

void BeginRun()
{
    // The job ends this process together with the one that runs it.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(&EndByException);
    SetOaNoCache();    // so that a text that has been freed does not count as memory in use
    HideFromDisplay(); // while the thread has no window, as it has after the next call
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
}

void EndRun()
{
    TerminateProcess(GetCurrentProcess(), 0);
    std::abort(); // not reached
}

void IsolateProcess(const fs::path& myFolder)
{
    for (const wchar_t* myName : {L"TMP", L"TEMP", L"USERPROFILE", L"APPDATA", L"LOCALAPPDATA"})
    {
        const fs::path myPlace = myFolder / myName;
        fs::create_directory(myPlace);
        _wputenv_s(myName, myPlace.c_str());
    }
    ReplaceRegistry(RegistryKey(myFolder));
}

fs::path MakeTemporaryFolder()
{
    std::error_code myError;
    const fs::path myPlace = fs::canonical(fs::temp_directory_path(myError), myError);
    const std::wstring myStart =
        (myPlace / (L"qelhost-check." + std::to_wstring(GetCurrentProcessId()) + L".")).wstring();
    for (int i = 0; !myError; ++i)
    {
        const fs::path theFolder = myStart + std::to_wstring(i);
        if (fs::create_directory(theFolder, myError))
        {
            if (AnsiPathOf(TextOfWide(theFolder.wstring())))
            {
                return theFolder;
            }
            fs::remove(theFolder);
            throw Failure("the component cannot work in " + Printable(TextOf(myPlace)) +
                          "; set TMP to a folder whose name has only characters of the system's code page");
        }
    }
    throw Failure("no folder can be made in the one for temporary files: " + myError.message() +
                  "; set TMP to one that can be written");
}

void RemoveTemporaryFolder(const fs::path& myFolder)
{
    std::error_code myIgnored;
    fs::remove_all(myFolder, myIgnored);
    RegDeleteTreeW(HKEY_CURRENT_USER, RegistryKey(myFolder).c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, RegistriesKey); // fails while it contains another one
}

} // namespace qel::host

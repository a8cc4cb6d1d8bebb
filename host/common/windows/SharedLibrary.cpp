#include "common/SharedLibrary.h"

#include "common/Failure.h"
#include "common/paths.h"
#include "common/printable.h"
#include "common/systemReasons.h"
#include "platform/windows/windowsHeaders.h"

#include <string>
#include <system_error>

namespace qel::host
{

namespace
{

/// Why the system does not open a file as a shared library.
std::string LoadingProblem(const std::filesystem::path& myFile, DWORD mySystemError)
{
    const std::string myName = Printable(TextOf(myFile));
    std::error_code myIgnored;
    const auto myType = std::filesystem::status(myFile, myIgnored).type();
    if (myType == std::filesystem::file_type::not_found)
    {
        return "there is no file " + myName;
    }
    if (myType == std::filesystem::file_type::directory)
    {
        return myName + " is a folder, not a shared library";
    }
    switch (mySystemError)
    {
    case ERROR_ACCESS_DENIED:
        return "there is no permission to read " + myName;
    case ERROR_BAD_EXE_FORMAT:
        return myName + " is not a shared library, or one for programs of another word size";
    case ERROR_MOD_NOT_FOUND:
        return "the system cannot load " + myName + ", because a library that it needs is missing";
    default:
        return "the system cannot load " + myName + " (" +
               ReasonOf({static_cast<int>(mySystemError), std::system_category()}) + ")";
    }
}

HMODULE Load(const std::filesystem::path& myFile)
{
    // The system would search for a name without a folder in its library folders, and add ".dll" to one without a full
    // stop. What the library needs is searched for beside it first.
    std::filesystem::path myName = std::filesystem::absolute(myFile);
    if (!myName.has_extension())
    {
        myName += L".";
    }
    // The failure is reported as an exception; the system would also show it in a box.
    DWORD myOldMode = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &myOldMode);
    const HMODULE theLibrary = LoadLibraryExW(myName.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    const DWORD myError = GetLastError();
    SetThreadErrorMode(myOldMode, nullptr);
    if (theLibrary == nullptr)
    {
        throw Failure(LoadingProblem(myFile, myError));
    }
    return theLibrary;
}

} // namespace

SharedLibrary::SharedLibrary(const std::filesystem::path& myFile) : myHandle(Load(myFile)) {}

SharedLibrary::~SharedLibrary()
{
    if (myHandle != nullptr)
    {
        FreeLibrary(static_cast<HMODULE>(myHandle));
    }
}

void* SharedLibrary::AddressOf(const char* myName) const
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(myHandle), myName));
}

std::filesystem::path FileOfAddress(const void* myAddress)
{
    constexpr DWORD LongestPath = 32768;
    HMODULE myModule = nullptr;
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<const wchar_t*>(myAddress), &myModule) == 0)
    {
        return {};
    }
    std::wstring theFile(LongestPath, L'\0');
    theFile.resize(GetModuleFileNameW(myModule, theFile.data(), LongestPath));
    return theFile;
}

} // namespace qel::host

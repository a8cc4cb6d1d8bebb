#include "platform/windows/systemErrors.h"

#include "text/errors.h"

namespace qel
{
namespace
{

constexpr DWORD QuotaExceeded = 1295; // missing in the headers of mingw-w64

} // namespace

int32_t NumberOfSystemError(DWORD mySystemError)
{
    switch (mySystemError)
    {
    case ERROR_FILE_NOT_FOUND:
        return ErrorNumber::FileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_DIRECTORY: // a file where the path needs a folder
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
        return ErrorNumber::PathNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_NETWORK_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
    case ERROR_DELETE_PENDING:
        return ErrorNumber::PermissionDenied;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
    case ERROR_CANT_RESOLVE_FILENAME: // a loop of links
    case ERROR_CANT_ACCESS_FILE:
        return ErrorNumber::PathAccess;
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
        return ErrorNumber::BadFileName;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case QuotaExceeded:
    case ERROR_FILE_TOO_LARGE:
        return ErrorNumber::DiskFull;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
    case ERROR_TOO_MANY_OPEN_FILES:
    case ERROR_NO_SYSTEM_RESOURCES:
        return ErrorNumber::OutOfMemory;
    default:
        return ErrorNumber::DeviceError;
    }
}

void RaiseSystemError(DWORD mySystemError)
{
    Raise(NumberOfSystemError(mySystemError));
}

} // namespace qel

#include "platform/linux/systemErrors.h"

#include "text/errors.h"

#include <cerrno>

namespace qel
{
namespace
{

int32_t NumberOfSystemError(int mySystemError)
{
    switch (mySystemError)
    {
    case ENOENT:
        return ErrorNumber::FileNotFound;
    case ENOTDIR:
        return ErrorNumber::PathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EBUSY:
    case ETXTBSY:
    case EWOULDBLOCK: // someone else holds the lock
        return ErrorNumber::PermissionDenied;
    case EEXIST:
    case EISDIR:
    case ELOOP:
    case ENXIO: // a pipe without a reader, or a socket
    case ENODEV:
        return ErrorNumber::PathAccess;
    case ENAMETOOLONG:
    case EILSEQ:
    case EINVAL: // a character that the file system cannot hold
        return ErrorNumber::BadFileName;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return ErrorNumber::DiskFull;
    case ENOMEM:
    case EMFILE:
    case ENFILE:
        return ErrorNumber::OutOfMemory;
    default:
        return ErrorNumber::DeviceError;
    }
}

} // namespace

void RaiseSystemError(int mySystemError)
{
    Raise(NumberOfSystemError(mySystemError));
}

} // namespace qel

#include "site/UserLock.h"

#include "common/Failure.h"
#include "common/systemReasons.h"
#include "platform/windows/Handle.h"
#include "platform/windows/nativePath.h"
#include "platform/windows/temporaryPath.h"
#include "platform/windows/windowsHeaders.h"
#include "text/encodings.h"

#include <system_error>

namespace qel::host
{

namespace
{

/// Locks the file's first byte. False: another program holds it, or the system refuses.
bool Lock(const Handle& myFile, DWORD myFlags)
{
    OVERLAPPED myPlace{};
    return LockFileEx(myFile.Get(), LOCKFILE_EXCLUSIVE_LOCK | myFlags, 0, 1, 0, &myPlace) != 0;
}

} // namespace

UserLock::UserLock(std::ostream& theMessages)
{
    const Text myFolder = SystemTemporaryPath();
    if (myFolder.empty())
    {
        throw Failure("there is no folder for temporary files that the component can use; set TMP to one with a short "
                      "path");
    }
    const Text myName = myFolder + u"qelhost.lock";
    const auto theFile = std::make_shared<Handle>(
        CreateFileW(NativePath(myName).c_str(), GENERIC_READ | GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    bool myIsLocked = theFile->IsOpen() && Lock(*theFile, LOCKFILE_FAIL_IMMEDIATELY);
    if (!myIsLocked && theFile->IsOpen() && GetLastError() == ERROR_LOCK_VIOLATION)
    {
        theMessages << AnotherIsWorking << std::endl;
        myIsLocked = Lock(*theFile, 0);
    }
    if (!myIsLocked)
    {
        throw Failure("cannot lock " + ToUtf8(myName) + ": " +
                      ReasonOf({static_cast<int>(GetLastError()), std::system_category()}));
    }
    myFile = theFile;
}

} // namespace qel::host

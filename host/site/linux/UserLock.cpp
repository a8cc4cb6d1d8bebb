#include "site/UserLock.h"

#include "common/Failure.h"
#include "common/systemReasons.h"
#include "platform/linux/Descriptor.h"
#include "platform/linux/temporaryPath.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>

namespace qel::host
{

UserLock::UserLock(std::ostream& theMessages)
{
    const std::string myFolder = NativeTemporaryPath();
    if (myFolder.empty())
    {
        throw Failure("there is no temporary folder of this user alone; make one with mode 700 and set TMPDIR to it");
    }
    const std::string myName = myFolder + "/qelhost.lock";
    const auto theFile =
        std::make_shared<Descriptor>(open(myName.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    int myResult = theFile->IsOpen() ? flock(theFile->Handle(), LOCK_EX | LOCK_NB) : -1;
    if (myResult != 0 && errno == EWOULDBLOCK)
    {
        theMessages << AnotherIsWorking << std::endl;
        myResult = Retrying([&] { return flock(theFile->Handle(), LOCK_EX); });
    }
    if (myResult != 0)
    {
        throw Failure("cannot lock " + myName + ": " + ReasonOf(std::error_code(errno, std::generic_category())));
    }
    myFile = theFile;
}

} // namespace qel::host

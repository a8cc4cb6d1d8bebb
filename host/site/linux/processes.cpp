#include "site/processes.h"

#include <cerrno>
#include <csignal>

#include <unistd.h>

namespace qel::host
{

int64_t OwnProcess()
{
    return getpid();
}

bool HasEnded(int64_t myProcess)
{
    return kill(static_cast<pid_t>(myProcess), 0) != 0 && errno == ESRCH;
}

} // namespace qel::host

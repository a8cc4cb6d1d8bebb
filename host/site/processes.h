/// The programs that run on this machine, by their numbers.
#pragma once

#include <cstdint>

namespace qel::host
{

/// The number of this program, which is positive.
int64_t OwnProcess();

/// True when no program has that number. False also where that is unknown.
bool HasEnded(int64_t myProcess);

} // namespace qel::host

/// The files of the system that the program was built for, for programs that need no other port.
#pragma once

#include "platform/Files.h"

#include <memory>

namespace qel
{

/// Makes the port, which is used on the thread that made it. It does not access the disk.
std::unique_ptr<Files> MakeSystemFiles();

} // namespace qel

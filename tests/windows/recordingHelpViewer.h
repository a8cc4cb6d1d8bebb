/// The call that the library in place of the system's help viewer has recorded.
#pragma once

#include <cstdint>
#include <string>

namespace qel
{

struct HelpCall
{
    const void* Caller = this; ///< the window
    std::string File;
    unsigned Command = 0;
    uintptr_t Data = 0;
};

} // namespace qel

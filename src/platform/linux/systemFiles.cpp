#include "platform/shared/systemFiles.h"

#include "platform/linux/LinuxFiles.h"

namespace qel
{

std::unique_ptr<Files> MakeSystemFiles()
{
    return std::make_unique<LinuxFiles>();
}

} // namespace qel

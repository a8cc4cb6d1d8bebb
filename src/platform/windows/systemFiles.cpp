#include "platform/shared/systemFiles.h"

#include "platform/windows/WindowsFiles.h"

namespace qel
{

std::unique_ptr<Files> MakeSystemFiles()
{
    return std::make_unique<WindowsFiles>();
}

} // namespace qel

#include "common/paths.h"

namespace qel::host
{

std::filesystem::path PathOf(std::string_view myText)
{
    return myText;
}

std::string TextOf(const std::filesystem::path& myPath)
{
    return myPath.native();
}

std::string PortableTextOf(const std::filesystem::path& myPath)
{
    return myPath.native();
}

} // namespace qel::host

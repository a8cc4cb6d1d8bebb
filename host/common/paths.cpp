#include "common/paths.h"

namespace qel::host
{

namespace
{

std::string Bytes(const std::u8string& myText)
{
    return {myText.begin(), myText.end()};
}

} // namespace

std::filesystem::path PathOf(std::string_view myText)
{
    return std::u8string(myText.begin(), myText.end());
}

std::string TextOf(const std::filesystem::path& myPath)
{
    return Bytes(myPath.u8string());
}

std::string PortableTextOf(const std::filesystem::path& myPath)
{
    return Bytes(myPath.generic_u8string());
}

} // namespace qel::host

#include "common/paths.h"

#include "platform/windows/wideText.h"
#include "text/encodings.h"

namespace qel::host
{

std::filesystem::path PathOf(std::string_view myText)
{
    return WideText(FromUtf8(myText));
}

std::string TextOf(const std::filesystem::path& myPath)
{
    return ToUtf8(TextOfWide(myPath.native()));
}

std::string PortableTextOf(const std::filesystem::path& myPath)
{
    return ToUtf8(TextOfWide(myPath.generic_wstring()));
}

} // namespace qel::host

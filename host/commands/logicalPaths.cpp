#include "commands/logicalPaths.h"

#include "common/paths.h"
#include "text/encodings.h"

#include <algorithm>

namespace qel::host
{

std::optional<Text> LogicalName(const std::filesystem::path& myPath)
{
    const std::string myText = PortableTextOf(myPath);
    std::optional<Text> theName = FromUtf8Exactly(myText);
    if (!theName || theName->find(u'\\') != Text::npos)
    {
        return std::nullopt; // where a name may contain "\", or bytes that are not UTF-8
    }
    std::ranges::replace(*theName, u'/', u'\\');
    return theName;
}

std::filesystem::path NativeName(TextView myName)
{
    std::string theText = ToUtf8(myName);
    std::ranges::replace(theText, '\\', '/');
    return PathOf(theText).make_preferred();
}

} // namespace qel::host

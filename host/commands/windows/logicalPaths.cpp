#include "commands/logicalPaths.h"

#include "platform/windows/wideText.h"

namespace qel::host
{

std::optional<Text> LogicalName(const std::filesystem::path& myPath)
{
    return TextOfWide(myPath.native());
}

std::filesystem::path NativeName(TextView myName)
{
    return WideText(myName);
}

} // namespace qel::host

#include "commands/logicalPaths.h"

#include "platform/linux/nativePath.h"

namespace qel::host
{

std::optional<Text> LogicalName(const std::filesystem::path& myPath)
{
    return LogicalPath(myPath.string());
}

std::filesystem::path NativeName(TextView myName)
{
    return NativePath(myName);
}

} // namespace qel::host

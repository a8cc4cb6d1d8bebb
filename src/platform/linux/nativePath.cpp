#include "platform/linux/nativePath.h"

#include "text/encodings.h"
#include "text/errors.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>

namespace qel
{

std::string NativePath(TextView myPath)
{
    std::optional<std::string> thePath = ToUtf8Exactly(myPath);
    if (!thePath || thePath->find('\0') != std::string::npos)
    {
        Raise(ErrorNumber::BadFileName);
    }
    std::replace(thePath->begin(), thePath->end(), '\\', '/');
    return *std::move(thePath);
}

std::optional<Text> LogicalPath(std::string_view myNativePath)
{
    if (myNativePath.find('\\') != std::string_view::npos)
    {
        return std::nullopt;
    }
    std::optional<Text> thePath = FromUtf8Exactly(myNativePath);
    if (thePath)
    {
        std::replace(thePath->begin(), thePath->end(), u'/', u'\\');
    }
    return thePath;
}

std::string RealPath(const std::string& myNativePath)
{
    std::array<char, PATH_MAX> myPath = {};
    return realpath(myNativePath.c_str(), myPath.data()) == nullptr ? std::string() : std::string(myPath.data());
}

} // namespace qel

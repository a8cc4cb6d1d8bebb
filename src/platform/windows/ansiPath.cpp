#include "platform/windows/ansiPath.h"

#include "platform/codePage.h"
#include "platform/windows/wideText.h"
#include "platform/windows/windowsHeaders.h"

#include <array>

namespace qel
{
namespace
{

/// The same path with short names; empty if it has none.
Text ShortPath(TextView myPath)
{
    std::array<wchar_t, MAX_PATH> theShortPath = {};
    const DWORD myLength = GetShortPathNameW(WideText(myPath).c_str(), theShortPath.data(), MAX_PATH);
    return myLength < MAX_PATH ? TextOfWide({theShortPath.data(), myLength}) : Text();
}

} // namespace

std::optional<AnsiPath> AnsiPathOf(TextView myPath)
{
    Text thePath(myPath);
    std::optional<std::string> theBytes = ToAnsi(thePath);
    if (!theBytes)
    {
        thePath = ShortPath(myPath);
        theBytes = thePath.empty() ? std::nullopt : ToAnsi(thePath);
    }
    return theBytes ? std::optional(AnsiPath{std::move(thePath), *std::move(theBytes)}) : std::nullopt;
}

} // namespace qel

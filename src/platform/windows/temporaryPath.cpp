#include "platform/windows/temporaryPath.h"

#include "platform/windows/ansiPath.h"
#include "platform/windows/wideText.h"
#include "platform/windows/windowsHeaders.h"

#include <array>

namespace qel
{

Text SystemTemporaryPath()
{
    constexpr size_t StatedSize = 254; // of the buffer for the bytes, the 0 at their end included
    std::array<wchar_t, MAX_PATH + 2> myWidePath = {};
    const DWORD myLength = GetTempPathW(static_cast<DWORD>(myWidePath.size()), myWidePath.data());
    if (myLength == 0 || myLength >= myWidePath.size())
    {
        return {};
    }
    const std::optional<AnsiPath> myPath = AnsiPathOf(TextOfWide({myWidePath.data(), myLength}));
    if (!myPath || myPath->Bytes.size() >= StatedSize)
    {
        return {};
    }
    return myPath->Path.ends_with(u'\\') ? myPath->Path : myPath->Path + u'\\';
}

} // namespace qel

#include "platform/codePage.h"

#include "platform/windows/wideText.h"
#include "platform/windows/windowsHeaders.h"
#include "text/encodings.h"

namespace qel
{
namespace
{

/// In UTF-8 every text can be written, and the system's functions refuse the flags that the other code pages need.
bool CodePageIsUtf8()
{
    return GetACP() == CP_UTF8;
}

} // namespace

std::optional<std::string> ToAnsi(TextView myText)
{
    if (CodePageIsUtf8())
    {
        return ToUtf8Exactly(myText);
    }
    const std::wstring myWide = WideText(myText);
    const auto myLength = static_cast<int>(myWide.size());
    BOOL myHasReplacement = FALSE;
    const int myCount = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, myWide.data(), myLength, nullptr, 0, nullptr,
                                            &myHasReplacement);
    std::string theBytes(static_cast<size_t>(myCount), '\0');
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, myWide.data(), myLength, theBytes.data(), myCount, nullptr,
                        &myHasReplacement);
    return myHasReplacement == FALSE && (myCount > 0 || myText.empty()) ? std::optional(std::move(theBytes))
                                                                        : std::nullopt;
}

Text FromAnsi(std::string_view myBytes)
{
    if (CodePageIsUtf8())
    {
        return FromUtf8(myBytes);
    }
    const auto myLength = static_cast<int>(myBytes.size());
    const int myCount = MultiByteToWideChar(CP_ACP, 0, myBytes.data(), myLength, nullptr, 0);
    std::wstring theText(static_cast<size_t>(myCount), L'\0');
    MultiByteToWideChar(CP_ACP, 0, myBytes.data(), myLength, theText.data(), myCount);
    return TextOfWide(theText);
}

} // namespace qel

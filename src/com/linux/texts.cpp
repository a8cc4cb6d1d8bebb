// SysAllocString and its companions.
#include "com/qelcom.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

namespace
{

// A prefix of 8 bytes keeps the text aligned; the length is in its last four bytes.
constexpr size_t HeaderSize = 8;
constexpr uint32_t LongestText = std::numeric_limits<uint32_t>::max() / sizeof(char16_t);

} // namespace

BSTR SysAllocString(LPCOLESTR myText)
{
    if (myText == nullptr)
    {
        return nullptr;
    }
    const size_t myLength = std::char_traits<char16_t>::length(myText);
    return myLength > LongestText ? nullptr : SysAllocStringLen(myText, static_cast<uint32_t>(myLength));
}

BSTR SysAllocStringLen(LPCOLESTR myText, UINT myLength)
{
    if (myLength > LongestText)
    {
        return nullptr;
    }
    const uint32_t myByteCount = myLength * static_cast<uint32_t>(sizeof(char16_t));
    const size_t mySize = HeaderSize + myByteCount + sizeof(char16_t);
    auto* const myMemory = static_cast<char*>(myText == nullptr ? std::calloc(mySize, 1) : std::malloc(mySize));
    if (myMemory == nullptr)
    {
        return nullptr;
    }
    char* const theText = myMemory + HeaderSize;
    std::memcpy(theText - sizeof myByteCount, &myByteCount, sizeof myByteCount);
    if (myText != nullptr)
    {
        std::memcpy(theText, myText, myByteCount);
        std::memset(theText + myByteCount, 0, sizeof(char16_t));
    }
    return reinterpret_cast<BSTR>(theText);
}

void SysFreeString(BSTR myText)
{
    if (myText != nullptr)
    {
        std::free(reinterpret_cast<char*>(myText) - HeaderSize);
    }
}

UINT SysStringLen(BSTR myText)
{
    uint32_t theByteCount = 0;
    if (myText != nullptr)
    {
        std::memcpy(&theByteCount, reinterpret_cast<const char*>(myText) - sizeof theByteCount, sizeof theByteCount);
    }
    return theByteCount / static_cast<uint32_t>(sizeof(char16_t));
}

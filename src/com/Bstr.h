/// Texts that cross the binary interface.
#pragma once

#include "com/qelcom.h"
#include "text/text.h"

#include <cstdint>
#include <limits>
#include <new>

namespace qel
{

/// A copy of a text that was received; null is the empty text. std::bad_alloc.
inline Text TextOfBstr(const char16_t* myBstr)
{
    return myBstr == nullptr ? Text() : Text(myBstr, SysStringLen(myBstr));
}

/// A new text, which the receiver frees. std::bad_alloc.
inline BSTR NewBstr(TextView myText)
{
    const bool fits = myText.size() <= std::numeric_limits<uint32_t>::max();
    const BSTR theBstr = fits ? SysAllocStringLen(myText.data(), static_cast<uint32_t>(myText.size())) : nullptr;
    if (theBstr == nullptr)
    {
        throw std::bad_alloc();
    }
    return theBstr;
}

/// Owns a text: one to pass into a call, or the place for one that a call returns. Frees it at the end of its life.
class Bstr
{
public:
    Bstr() noexcept = default;
    explicit Bstr(TextView myText) : myBstr(NewBstr(myText)) {}
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { SysFreeString(myBstr); }

    BSTR* Pointer() noexcept { return &myBstr; }
    Text Value() const { return TextOfBstr(myBstr); }

private:
    BSTR myBstr = nullptr;
};

} // namespace qel

/// Texts that cross the binary interface.
#pragma once

#include "com/qelcom.h"
#include "text/text.h"

#include <cstdint>
#include <limits>
#include <new>

namespace qel
{

/// The units of a zero-terminated or counted text, as the binary interface types them and as this program does. Both
/// are UTF-16 units; only these two functions turn one type into the other.
inline LPCOLESTR ToOle(const char16_t* myUnits) noexcept
{
    return reinterpret_cast<LPCOLESTR>(myUnits);
}
inline const char16_t* FromOle(LPCOLESTR myUnits) noexcept
{
    return reinterpret_cast<const char16_t*>(myUnits);
}

/// The text for a member that is declared as if it changed its argument, but only reads it.
inline LPOLESTR InputText(const char16_t* myUnits) noexcept
{
    return const_cast<LPOLESTR>(ToOle(myUnits));
}

/// A copy of a text that was received; null is the empty text. std::bad_alloc.
inline Text TextOfBstr(BSTR myBstr)
{
    return myBstr == nullptr ? Text() : Text(FromOle(myBstr), SysStringLen(myBstr));
}

/// A new text, which the receiver frees. std::bad_alloc.
inline BSTR NewBstr(TextView myText)
{
    const bool fits = myText.size() <= std::numeric_limits<UINT>::max();
    const BSTR theBstr = fits ? SysAllocStringLen(ToOle(myText.data()), static_cast<UINT>(myText.size())) : nullptr;
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

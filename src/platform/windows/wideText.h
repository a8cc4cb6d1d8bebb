/// Texts between the logic and the system, which both hold UTF-16 in types of their own.
#pragma once

#include "text/text.h"

#include <string>
#include <string_view>

namespace qel
{

inline std::wstring WideText(TextView myText)
{
    return {myText.begin(), myText.end()};
}

inline Text TextOfWide(std::wstring_view myWide)
{
    return {myWide.begin(), myWide.end()};
}

} // namespace qel

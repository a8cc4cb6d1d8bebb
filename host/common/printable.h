/// Makes foreign texts safe to show.
#pragma once

#include <string>
#include <string_view>

namespace qel::host
{

/// The text with "?" for every control character, which could control the terminal. Line ends stay.
std::string PrintableLines(std::string_view myText);

/// The same on one line: line ends become "?" too.
std::string Printable(std::string_view myText);

} // namespace qel::host

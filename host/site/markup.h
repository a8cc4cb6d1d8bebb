/// The mark-up of the component's texts, shown in a terminal.
#pragma once

#include <string>
#include <string_view>

namespace qel::host
{

/// The text with `<b>` bold, a warning sign for `<warning>`, and the captions of `<callback ...>` and `<help ...>`
/// underlined as words to click on; without `myWithEscapes` as plain text. What is no mark-up stays as it is; control
/// characters, which could control the terminal, become "?".
std::string RenderedMarkup(std::string_view myText, bool myWithEscapes);

} // namespace qel::host

/// The ANSI code page, in which archives store names: the system's on Windows, Windows-1252 where the system has none.
#pragma once

#include "text/text.h"

#include <optional>
#include <string>
#include <string_view>

namespace qel
{

/// Encodes a text in the code page; nothing when the code page lacks one of its characters. Similar characters do not
/// stand in for it. Callable on any thread.
std::optional<std::string> ToAnsi(TextView myText);

/// Decodes text in the code page. Callable on any thread. Bytes that are no character of it become
/// a replacement character.
Text FromAnsi(std::string_view myBytes);

} // namespace qel

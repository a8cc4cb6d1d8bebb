/// The edge between Text and the encodings outside: UTF-8 (files, the terminal, the database) and the ANSI code page
/// (names in archives), which is Windows-1252 with its five unassigned bytes as control characters.
#pragma once

#include "text/text.h"

#include <optional>
#include <string>
#include <string_view>

namespace qel
{

/// UTF-8 of a text. Half a surrogate pair on its own becomes U+FFFD.
std::string ToUtf8(TextView myText);

/// UTF-8 of a text, or nothing when the text holds half a surrogate pair on its own.
std::optional<std::string> ToUtf8Exactly(TextView myText);

/// The text of UTF-8 bytes. Each byte that is not part of a valid sequence becomes U+FFFD.
Text FromUtf8(std::string_view myBytes);

/// True when the bytes are valid UTF-8.
bool IsUtf8(std::string_view myBytes);

/// The text of UTF-8 bytes, or nothing when they are not valid UTF-8.
std::optional<Text> FromUtf8Exactly(std::string_view myBytes);

/// The text in the ANSI code page, or nothing when it holds a character that the code page has not.
std::optional<std::string> ToAnsi(TextView myText);

/// The text of bytes in the ANSI code page; every byte stands for one character.
Text FromAnsi(std::string_view myBytes);

} // namespace qel

/// Converts between Text and other encodings: UTF-8 (files, the terminal, the database) and the ANSI code page (names
/// in archives), which is Windows-1252 with its five unassigned bytes as control characters.
#pragma once

#include "text/text.h"

#include <optional>
#include <string>
#include <string_view>

namespace qel
{

/// Encodes a text as UTF-8. An unpaired surrogate becomes U+FFFD.
std::string ToUtf8(TextView myText);

/// Encodes a text as UTF-8; nothing when it has an unpaired surrogate.
std::optional<std::string> ToUtf8Exactly(TextView myText);

/// Decodes UTF-8. Each byte that is not part of a valid sequence becomes U+FFFD.
Text FromUtf8(std::string_view myBytes);

/// True when the bytes are valid UTF-8.
bool IsUtf8(std::string_view myBytes);

/// Decodes UTF-8; nothing when the bytes are not valid.
std::optional<Text> FromUtf8Exactly(std::string_view myBytes);

/// Encodes a text in the ANSI code page; nothing when the code page lacks one of its characters.
std::optional<std::string> ToAnsi(TextView myText);

/// Decodes text in the ANSI code page; every byte is one character.
Text FromAnsi(std::string_view myBytes);

} // namespace qel

/// Converts between Text and other encodings: UTF-8 (files, the terminal, the database) and Windows-1252 with its five
/// unassigned bytes as control characters (pages of other programs, names in archives on some systems).
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

/// Encodes a text in Windows-1252; nothing when the code page lacks one of its characters.
std::optional<std::string> ToWindows1252(TextView myText);

/// Decodes text in Windows-1252; every byte is one character.
Text FromWindows1252(std::string_view myBytes);

} // namespace qel

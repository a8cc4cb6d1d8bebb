/// Paths between the logic and the system.
#pragma once

#include "text/text.h"

#include <string>
#include <string_view>

namespace qel
{

/// The form of a path that the system takes as it stands: absolute, with "\\?\" or "\\?\UNC\" in front, without "/",
/// "." and "..", and without a closing "\" unless it is a root. So a long path, a name such as "NUL.gif" and a name
/// with a dot or a blank at its end are plain names. A relative path is completed from the current folder; ".." does
/// not lead above the root. Error 52: a name that no file can have: longer than 255 units, or with a control character,
/// an unpaired surrogate or one of `:*?"<>|`. A ":" after the drive would name a stream inside a file. Also a path to a
/// device ("\\.\", or "\\?\" without a drive, "UNC\" or "Volume{" after it), "." or ".." as a server or a share, and
/// a path of more than 32,766 units. Error 53: an empty path.
std::wstring NativePath(TextView myPath);

/// The path without the "\\?\" or "\\?\UNC\" in front, as other programs take it; unchanged without it, and if it
/// begins with neither a drive nor a server.
std::wstring PlainPath(std::wstring_view myNativePath);

/// True when nothing but the root is left of a path of NativePath: a drive or a share, with its closing "\".
bool IsRoot(std::wstring_view myNativePath);

/// The path of a name in a folder, both in the form of NativePath. Only a root ends in "\" already.
std::wstring PathInFolder(std::wstring_view myNativeFolder, std::wstring_view myName);

/// True when a text has a surrogate without its partner, which no name may contain.
bool HasUnpairedSurrogate(std::wstring_view myName);

} // namespace qel

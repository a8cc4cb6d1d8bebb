/// Which file this code has been loaded from.
#pragma once

#include <string>

namespace qel
{

/// The library, or the program that it is linked into: absolute, as it was loaded. Empty if it is unknown.
std::wstring NativeComponentFile();

/// The folder of a file with links resolved, absolute, without "\\?\" in front, and without a closing "\" unless it is
/// a root. Links are left as they are where they cannot be resolved.
std::wstring RealFolderOf(const std::wstring& myFile);

} // namespace qel

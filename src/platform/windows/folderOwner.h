/// Who owns a folder.
#pragma once

#include <string>

namespace qel
{

/// True when a folder belongs to the user of the calling thread, or to the administrators, to whom the system gives
/// what a user makes with their rights. False as well if the owner cannot be read. The path is in the form of
/// NativePath.
bool BelongsToUser(const std::wstring& myNativeFolder);

} // namespace qel

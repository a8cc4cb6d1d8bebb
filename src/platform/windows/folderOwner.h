/// Who owns a folder.
#pragma once

#include <string>

namespace qel
{

/// True when a folder belongs to the user of the calling thread, or to the administrators, to whom the system gives
/// what a user makes with their rights. Also true on a volume that keeps no owners, such as one with FAT: there nobody
/// else owns the folder. False if the owner cannot be read. The path is in the form of NativePath.
bool BelongsToUser(const std::wstring& myNativeFolder);

} // namespace qel

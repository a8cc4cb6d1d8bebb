/// Who owns a folder.
#pragma once

#include <string>

namespace qel
{

/// True when a folder belongs to the user of the calling thread, or to the administrators: the system makes them the
/// owner of what a user creates with administrator rights. Also true on a volume that keeps no owners, such as one with
/// FAT: there nobody else owns the folder. False if the owner cannot be read. The path is in the form of NativePath.
bool BelongsToUser(const std::wstring& myNativeFolder);

} // namespace qel

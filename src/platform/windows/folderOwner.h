/// Who owns a folder.
#pragma once

#include <string>

namespace qel
{

/// True when a folder belongs to the user of the calling thread, or to the administrators: the system makes them the
/// owner of what a user creates with their rights. False as well if the owner cannot be read. The path is in the form
/// of NativePath.
bool BelongsToUser(const std::wstring& myNativeFolder);

} // namespace qel

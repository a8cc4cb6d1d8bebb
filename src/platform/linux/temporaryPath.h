/// Where temporary files may lie safely.
#pragma once

#include <string>

namespace qel
{

/// The temporary folder of this user alone, absolute, in the system's form, without a closing "/"; empty when there is
/// no safe one.
///
/// The first that is safe of $TMPDIR, $XDG_RUNTIME_DIR and the folder `qel` in the user's cache ($XDG_CACHE_HOME, or
/// .cache in the home), which is made if need be. Safe is a folder, not a link, that belongs to this user, that nobody
/// else may enter, and whose path the logic can express. A shared folder such as /tmp is never taken, whatever name
/// would be used in it.
std::string NativeTemporaryPath();

} // namespace qel

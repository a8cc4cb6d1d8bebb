/// Where temporary files are safe.
#pragma once

#include <string>

namespace qel
{

/// The temporary folder of this user alone, absolute, in the system's form, without a closing "/"; empty when there is
/// no safe one.
///
/// The first that is safe of $TMPDIR, $XDG_RUNTIME_DIR and the folder `qel` in the user's cache ($XDG_CACHE_HOME, or
/// .cache in the home), which is created if necessary. A safe folder is not a link, belongs to this user, cannot be
/// entered by anybody else, and has a path that the logic can express. A shared folder such as /tmp is never used.
std::string NativeTemporaryPath();

} // namespace qel

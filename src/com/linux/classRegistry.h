/// The class registry on disk, as qelcom.h documents it.
#pragma once

#include "com/qelcom.h"

#include <optional>
#include <string>

namespace qel
{

/// The absolute path of the library that a class is registered with; nothing if it is not registered. std::bad_alloc.
std::optional<std::string> LibraryOfClass(const CLSID& myClass);

} // namespace qel

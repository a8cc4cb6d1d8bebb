/// The archive that holds a module's imported files.
#pragma once

#include "platform/HostServices.h"
#include "text/text.h"

#include <memory>

namespace qel
{

class Files;

/// Unpacks the archive of that name in the host's data folder into a folder, which ends in "\". Without a name there is
/// nothing to do, and the host is not asked. False: the archive cannot be unpacked whole.
/// Error 91: no database. Throws what the host throws.
bool UnPackModule(Files& myFiles, const std::shared_ptr<Database>& myDatabase, const Text& myFilename,
                  const Text& myFolder);

} // namespace qel

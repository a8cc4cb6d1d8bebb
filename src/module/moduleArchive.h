/// The archive that holds a module's imported files.
#pragma once

#include "platform/hostServices.h"
#include "text/text.h"

#include <memory>

namespace qel
{

class Files;

/// Unpacks the archive with this name in the host's data folder into a folder, which ends in "\". Without a name it
/// does nothing and does not ask the host. False: the archive cannot be unpacked completely.
/// Error 91: no database. Throws what the host throws.
bool UnPackModule(Files& myFiles, const std::shared_ptr<Database>& myDatabase, const Text& myFilename,
                  const Text& myFolder);

} // namespace qel

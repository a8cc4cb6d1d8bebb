/// The persistence script of a module: one tag for the plug-in, one for its archive, one for each setting.
#pragma once

#include "module/ModuleSettings.h"
#include "text/text.h"

namespace qel
{

class classScript;

/// The script of a new module: the first tag alone, without a line end.
Text InitialScript();

/// The script of the settings, each tag followed by a line end. Dates are rounded to whole days. No error.
Text WriteScript(const ModuleSettings& mySettings);

/// Fills settings from the current token of a script and all that follow it; the last of like-named params wins, and
/// what the script does not know stays. False: the script is of another format version, and the rest is unread.
/// Error 6: a date out of range; what was read before it is in force.
bool ReadScript(classScript& myScript, ModuleSettings& theSettings);

} // namespace qel

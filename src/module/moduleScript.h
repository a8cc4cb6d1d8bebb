/// The persistence script of a module: one tag for the plug-in, one for its archive, one for each setting.
#pragma once

#include "module/ModuleSettings.h"
#include "text/text.h"

namespace qel
{

class classScript;

/// The script of a new module: only the first tag, without a line end.
Text InitialScript();

/// The script of the settings, each tag followed by a line end. Dates are rounded to whole days. No error.
Text WriteScript(const ModuleSettings& mySettings);

/// Fills settings from the current token of a script and all after it. Of params with the same name the last wins;
/// settings that the script does not contain stay. False: the script has another format version, and the rest is not
/// read. Error 6: a date out of range; the settings read before it are in force.
bool ReadScript(classScript& myScript, ModuleSettings& theSettings);

} // namespace qel

/// The dialog for choosing a file to import.
#pragma once

#include "dialog/ports/FormMainWindow.h"
#include "resources/stringTable.h"

namespace qel
{

/// Its settings: title and filter by their numbers in the string table, and what all imports share.
inline FileDialogSettings OpenDialog(int32_t myTitle, int32_t myFilter)
{
    return {Text(LoadResString(myFilter)), Text(LoadResString(myTitle)), 30000, 0x80004};
}

} // namespace qel

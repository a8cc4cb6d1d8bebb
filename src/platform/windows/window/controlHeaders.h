/// The headers of the system's controls and common dialogs, which need the main header first.
#pragma once

#include "platform/windows/windowsHeaders.h"

#include <commctrl.h>
#include <commdlg.h>

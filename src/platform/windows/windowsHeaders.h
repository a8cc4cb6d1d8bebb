/// The system's main header, without what this component does not use. Other headers of the system need it first.
///
/// Code calls the functions that take UTF-16 by their own names (MessageBoxW), so names of this component need not give
/// way to the header's macros.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#undef MessageBox

# Builds for 64-bit Windows with mingw-w64.
set(QEL_WINDOWS_MACHINE x86_64)
include("${CMAKE_CURRENT_LIST_DIR}/windows.cmake")

# Builds for 32-bit Windows with mingw-w64. A foreign caller aligns the stack to 4 bytes only, and may have set another
# precision of the x87.
set(QEL_WINDOWS_MACHINE i686)
set(CMAKE_C_FLAGS_INIT "-mstackrealign -msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")
include("${CMAKE_CURRENT_LIST_DIR}/windows.cmake")

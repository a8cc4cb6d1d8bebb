# What both toolchain files of Windows share. The compiler is mingw-w64 with POSIX threads, which std::thread needs.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR "${QEL_WINDOWS_MACHINE}")
set(QEL_WINDOWS_TOOLS "${QEL_WINDOWS_MACHINE}-w64-mingw32")
set(CMAKE_C_COMPILER "${QEL_WINDOWS_TOOLS}-gcc-posix")
set(CMAKE_CXX_COMPILER "${QEL_WINDOWS_TOOLS}-g++-posix")
set(CMAKE_RC_COMPILER "${QEL_WINDOWS_TOOLS}-windres")

# A file that is linked needs no library of the compiler when it runs.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static")
endforeach()

set(CMAKE_FIND_ROOT_PATH "/usr/${QEL_WINDOWS_TOOLS}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../tools/run-under-wine")

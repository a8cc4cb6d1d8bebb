/* A function of a shared library that a test in C loads. */
#ifndef QEL_ENTRY_POINT_H
#define QEL_ENTRY_POINT_H

#include <windows.h>

typedef FARPROC EntryPoint;

/* The function of that name; null if the library cannot be loaded, or has none. The library stays loaded. */
static inline EntryPoint EntryPointOf(const char* myLibrary, const char* myName)
{
    const HMODULE myHandle = LoadLibraryA(myLibrary);
    return myHandle == NULL ? NULL : GetProcAddress(myHandle, myName);
}

#endif

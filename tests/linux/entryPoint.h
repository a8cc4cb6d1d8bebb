/* A function of a shared library that a test in C loads. */
#ifndef QEL_ENTRY_POINT_H
#define QEL_ENTRY_POINT_H

#include <dlfcn.h>
#include <stddef.h>

typedef void* EntryPoint;

/* The function of that name; null if the library cannot be loaded, or has none. The library stays loaded. */
static inline EntryPoint EntryPointOf(const char* myLibrary, const char* myName)
{
    void* const myHandle = dlopen(myLibrary, RTLD_NOW | RTLD_LOCAL);
    return myHandle == NULL ? NULL : dlsym(myHandle, myName);
}

#endif

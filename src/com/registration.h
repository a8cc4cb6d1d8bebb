/// Writes the classes of a component into the class registry. Each system has its own implementation.
#pragma once

#include "com/qelcom.h"

#include <filesystem>
#include <span>

namespace qel
{

/// A class and its program name.
struct RegisteredClass
{
    const CLSID* Identifier;
    const char16_t* ProgramName;
};

/// Registers the classes of a component: DllRegisterServer. `myFile` is the component's absolute path. A failure leaves
/// error information; what was written before it stays. std::bad_alloc.
HRESULT RegisterClasses(std::span<const RegisteredClass> myClasses, const std::filesystem::path& myFile);

/// Removes them: DllUnregisterServer. Goes on after a failure and returns the last one. std::bad_alloc.
HRESULT UnregisterClasses(std::span<const RegisteredClass> myClasses, const std::filesystem::path& myFile);

} // namespace qel

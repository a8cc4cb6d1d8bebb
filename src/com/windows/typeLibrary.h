/// The type library that a component carries as a resource.
#pragma once

#include "com/ComPtr.h"
#include "com/qelcom.h"

#include <string>

namespace qel
{

/// Loads the type library of a file, without registering it. Returns the result of the system.
inline HRESULT LoadTypeLibrary(const std::wstring& myFile, ComPtr<ITypeLib>& theLibrary) noexcept
{
    return LoadTypeLibEx(myFile.c_str(), REGKIND_NONE, theLibrary.Receive());
}

} // namespace qel

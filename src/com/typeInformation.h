/// The descriptions of interfaces that a late-bound client can ask for. Each system has its own implementation.
#pragma once

#include "com/qelcom.h"

namespace qel
{

/// How many descriptions there are of an interface: 1 on Windows, from the type library in the file of this code, else
/// 0.
UINT TypeInfoCount(const IID& myInterface) noexcept;

/// Returns the description of an interface, which the caller releases. DISP_E_BADINDEX: there is none.
HRESULT FindTypeInfo(const IID& myInterface, ITypeInfo** theInfo) noexcept;

} // namespace qel

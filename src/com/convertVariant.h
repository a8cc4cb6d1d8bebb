/// Conversion of the arguments of late-bound calls. Each system has its own implementation.
#pragma once

#include "com/qelcom.h"

namespace qel
{

/// Converts a value to another type as VariantChangeType does. Numbers in texts have a decimal point, whatever the
/// user's locale.
HRESULT ConvertVariant(VARIANT& theTarget, VARIANT& mySource, VARTYPE myType) noexcept;

} // namespace qel

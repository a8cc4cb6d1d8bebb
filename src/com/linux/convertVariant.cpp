#include "com/convertVariant.h"

namespace qel
{

HRESULT ConvertVariant(VARIANT& theTarget, VARIANT& mySource, VARTYPE myType) noexcept
{
    return VariantChangeType(&theTarget, &mySource, 0, myType);
}

} // namespace qel

#include "com/convertVariant.h"

namespace qel
{

HRESULT ConvertVariant(VARIANT& theTarget, VARIANT& mySource, VARTYPE myType) noexcept
{
    constexpr LCID FixedLocale = 0x0409; // English, the language of automation; it has a decimal point
    return VariantChangeTypeEx(&theTarget, &mySource, FixedLocale, 0, myType);
}

} // namespace qel

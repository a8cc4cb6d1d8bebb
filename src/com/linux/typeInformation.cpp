#include "com/typeInformation.h"

namespace qel
{

UINT TypeInfoCount(const IID& /*myInterface*/) noexcept
{
    return 0;
}

HRESULT FindTypeInfo(const IID& /*myInterface*/, ITypeInfo** theInfo) noexcept
{
    *theInfo = nullptr;
    return DISP_E_BADINDEX;
}

} // namespace qel

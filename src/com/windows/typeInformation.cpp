#include "com/typeInformation.h"

#include "com/windows/typeLibrary.h"
#include "platform/windows/componentFile.h"

namespace qel
{

UINT TypeInfoCount(const IID& myInterface) noexcept
{
    ComPtr<ITypeInfo> myInfo;
    return SUCCEEDED(FindTypeInfo(myInterface, myInfo.Receive())) ? 1 : 0;
}

HRESULT FindTypeInfo(const IID& myInterface, ITypeInfo** theInfo) noexcept
{
    // Nothing is kept between calls: the system shares a library that somebody holds, and nothing is left to release
    // when the component is unloaded.
    *theInfo = nullptr;
    try
    {
        ComPtr<ITypeLib> myLibrary;
        const bool hasInfo = SUCCEEDED(LoadTypeLibrary(NativeComponentFile(), myLibrary)) &&
                             SUCCEEDED(myLibrary->GetTypeInfoOfGuid(myInterface, theInfo));
        return hasInfo ? S_OK : DISP_E_BADINDEX;
    }
    catch (...)
    {
        return E_OUTOFMEMORY;
    }
}

} // namespace qel

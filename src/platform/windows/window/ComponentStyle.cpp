#include "platform/windows/window/ComponentStyle.h"

namespace qel
{
namespace
{

constexpr WORD ManifestResource = 2;

HANDLE ContextOfManifest()
{
    HMODULE myModule = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ContextOfManifest), &myModule);
    ACTCTXW mySetting = {};
    mySetting.cbSize = sizeof(mySetting);
    mySetting.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    mySetting.hModule = myModule;
    mySetting.lpResourceName = MAKEINTRESOURCEW(ManifestResource);
    return CreateActCtxW(&mySetting);
}

} // namespace

ComponentStyle::ComponentStyle() : myContext(ContextOfManifest())
{
    if (myContext != INVALID_HANDLE_VALUE && ActivateActCtx(myContext, &myCookie) == 0)
    {
        myCookie = 0;
    }
}

ComponentStyle::~ComponentStyle()
{
    if (myCookie != 0)
    {
        DeactivateActCtx(0, myCookie);
    }
    if (myContext != INVALID_HANDLE_VALUE)
    {
        ReleaseActCtx(myContext);
    }
}

} // namespace qel

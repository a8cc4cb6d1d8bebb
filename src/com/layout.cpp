// The size and layout of every record that crosses the binary interface.
#include "com/qelcom.h"

#include <cstddef>
#include <type_traits>

static_assert(sizeof(void*) == 8);
static_assert(sizeof(HRESULT) == 4 && sizeof(DISPID) == 4 && sizeof(VARIANT_BOOL) == 2 && sizeof(VARTYPE) == 2);
static_assert(sizeof(*BSTR()) == 2 && VARIANT_TRUE == -1 && VARIANT_FALSE == 0);

static_assert(std::is_standard_layout_v<GUID> && sizeof(GUID) == 16 && alignof(GUID) == 4);
static_assert(offsetof(GUID, Data2) == 4 && offsetof(GUID, Data3) == 6 && offsetof(GUID, Data4) == 8);

static_assert(std::is_standard_layout_v<VARIANT> && sizeof(VARIANT) == 24 && alignof(VARIANT) == 8);
static_assert(offsetof(VARIANT, vt) == 0 && offsetof(VARIANT, boolVal) == 8 && offsetof(VARIANT, lVal) == 8 &&
              offsetof(VARIANT, bstrVal) == 8 && offsetof(VARIANT, byref) == 8);

static_assert(std::is_standard_layout_v<DISPPARAMS> && sizeof(DISPPARAMS) == 24);
static_assert(offsetof(DISPPARAMS, rgvarg) == 0 && offsetof(DISPPARAMS, rgdispidNamedArgs) == 8 &&
              offsetof(DISPPARAMS, cArgs) == 16 && offsetof(DISPPARAMS, cNamedArgs) == 20);

static_assert(std::is_standard_layout_v<EXCEPINFO> && sizeof(EXCEPINFO) == 64);
static_assert(offsetof(EXCEPINFO, wCode) == 0 && offsetof(EXCEPINFO, bstrSource) == 8 &&
              offsetof(EXCEPINFO, bstrDescription) == 16 && offsetof(EXCEPINFO, bstrHelpFile) == 24 &&
              offsetof(EXCEPINFO, dwHelpContext) == 32 && offsetof(EXCEPINFO, pvReserved) == 40 &&
              offsetof(EXCEPINFO, pfnDeferredFillIn) == 48 && offsetof(EXCEPINFO, scode) == 56);

// An object is a pointer to its table, and nothing comes before it.
static_assert(sizeof(IUnknown) == sizeof(void*) && sizeof(IDispatch) == sizeof(void*));

// The size and layout of every record that crosses the binary interface.
#include "com/qelcom.h"

#include <cstddef>
#include <type_traits>

static constexpr size_t Place = sizeof(void*); // what a pointer takes up

static_assert(sizeof(HRESULT) == 4 && sizeof(DISPID) == 4 && sizeof(VARIANT_BOOL) == 2 && sizeof(VARTYPE) == 2);
static_assert(sizeof(*BSTR()) == 2 && VARIANT_TRUE == -1 && VARIANT_FALSE == 0);

static_assert(std::is_standard_layout_v<GUID> && sizeof(GUID) == 16 && alignof(GUID) == 4);
static_assert(offsetof(GUID, Data2) == 4 && offsetof(GUID, Data3) == 6 && offsetof(GUID, Data4) == 8);

static_assert(std::is_standard_layout_v<VARIANT> && sizeof(VARIANT) == 8 + 2 * Place && alignof(VARIANT) == 8);
static_assert(offsetof(VARIANT, vt) == 0 && offsetof(VARIANT, boolVal) == 8 && offsetof(VARIANT, lVal) == 8 &&
              offsetof(VARIANT, bstrVal) == 8 && offsetof(VARIANT, byref) == 8);

static_assert(std::is_standard_layout_v<DISPPARAMS> && sizeof(DISPPARAMS) == 2 * Place + 8);
static_assert(offsetof(DISPPARAMS, rgvarg) == 0 && offsetof(DISPPARAMS, rgdispidNamedArgs) == Place &&
              offsetof(DISPPARAMS, cArgs) == 2 * Place && offsetof(DISPPARAMS, cNamedArgs) == 2 * Place + 4);

static_assert(std::is_standard_layout_v<EXCEPINFO> && sizeof(EXCEPINFO) == 8 * Place);
static_assert(offsetof(EXCEPINFO, wCode) == 0 && offsetof(EXCEPINFO, bstrSource) == Place &&
              offsetof(EXCEPINFO, bstrDescription) == 2 * Place && offsetof(EXCEPINFO, bstrHelpFile) == 3 * Place &&
              offsetof(EXCEPINFO, dwHelpContext) == 4 * Place && offsetof(EXCEPINFO, pvReserved) == 5 * Place &&
              offsetof(EXCEPINFO, pfnDeferredFillIn) == 6 * Place && offsetof(EXCEPINFO, scode) == 7 * Place);

// An object is a pointer to its table, and nothing comes before it.
static_assert(sizeof(IUnknown) == sizeof(void*) && sizeof(IDispatch) == sizeof(void*));

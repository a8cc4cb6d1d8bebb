/* The component object model: types, texts, variants, error information, and the creation of objects by class. For C11
 * and C++17. On Windows the system declares and implements all of it, and this header only includes the system's
 * headers and adds the macros that QelHelperInterfaces.h is written with. Elsewhere this header declares it under the
 * same names, and libqelcom.so, which hosts and components share, implements it. What follows describes libqelcom; the
 * system's own documentation describes Windows.
 *
 * Every function may be called on any thread; error information belongs to the thread that set it. Results are 0 or
 * positive for success and negative for failure. The functions on classes, and the members of a component's interfaces,
 * leave error information when they fail, never that of an older call; only when memory runs out there may be none.
 * What a caller uses to find out about a failure (QueryInterface, AddRef, Release, ISupportErrorInfo) and the functions
 * on texts and variants leave the error information as it is. */
#ifndef QEL_QELCOM_H
#define QEL_QELCOM_H

#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif
#ifdef _WIN32
#include <windows.h>

#include <oaidl.h>
#include <oleauto.h>
#include <olectl.h>
#endif

#ifdef __cplusplus
#define QEL_EXTERN_C extern "C"
#define QEL_CONSTANT inline constexpr
#else
#define QEL_EXTERN_C extern
#define QEL_CONSTANT static const
#endif

#define QEL_RESULT(value) ((HRESULT)(value))

/* ---- How interfaces are declared --------------------------------------------------------------------------------- */

/* An interface is declared once, for both languages. In C an object is a pointer to its table of members, lpVtbl, and
 * each member takes the object first; in C++ it is an abstract class, whose table has the same layout.
 * Before a declaration QEL_THIS is defined as the interface's name. Release destroys an object, so its table has no
 * place for a destructor. */
/* NOLINTBEGIN(bugprone-macro-parentheses) */
/* clang-format off */
#ifdef __cplusplus
#define QEL_INTERFACE(name, base) struct name : base {
#define QEL_ROOT_INTERFACE(name) struct name {
#define QEL_MEMBER(name, ...) virtual HRESULT STDMETHODCALLTYPE name(__VA_ARGS__) = 0;
#define QEL_MEMBER0(name) virtual HRESULT STDMETHODCALLTYPE name() = 0;
#define QEL_COUNT_MEMBER(name) virtual ULONG STDMETHODCALLTYPE name() = 0;
#define QEL_C_UNKNOWN_MEMBERS
#define QEL_C_DISPATCH_MEMBERS
#define QEL_END_INTERFACE(name) };
#else
#define QEL_INTERFACE(name, base) QEL_ROOT_INTERFACE(name)
#define QEL_ROOT_INTERFACE(name) \
    typedef struct name name; \
    typedef struct name##Vtbl name##Vtbl; \
    struct name { const name##Vtbl* lpVtbl; }; \
    struct name##Vtbl {
#define QEL_MEMBER(name, ...) HRESULT(STDMETHODCALLTYPE* name)(QEL_THIS* This, __VA_ARGS__);
#define QEL_MEMBER0(name) HRESULT(STDMETHODCALLTYPE* name)(QEL_THIS* This);
#define QEL_COUNT_MEMBER(name) ULONG(STDMETHODCALLTYPE* name)(QEL_THIS* This);
#define QEL_C_UNKNOWN_MEMBERS \
    QEL_MEMBER(QueryInterface, REFIID myInterface, void** theObject) \
    QEL_COUNT_MEMBER(AddRef) \
    QEL_COUNT_MEMBER(Release)
#define QEL_C_DISPATCH_MEMBERS \
    QEL_C_UNKNOWN_MEMBERS \
    QEL_MEMBER(GetTypeInfoCount, UINT* theCount) \
    QEL_MEMBER(GetTypeInfo, UINT myIndex, LCID myLocale, struct ITypeInfo** theInfo) \
    QEL_MEMBER(GetIDsOfNames, REFIID myReserved, LPOLESTR* myNames, UINT myNameCount, LCID myLocale, \
               DISPID* theNumbers) \
    QEL_MEMBER(Invoke, DISPID myMember, REFIID myReserved, LCID myLocale, WORD myFlags, DISPPARAMS* myParams, \
               VARIANT* theResult, EXCEPINFO* theException, UINT* theArgument)
#define QEL_END_INTERFACE(name) };
#endif
/* clang-format on */
/* NOLINTEND(bugprone-macro-parentheses) */

#ifndef _WIN32

#if defined(__GNUC__)
#define QEL_EXPORT __attribute__((visibility("default")))
#else
#define QEL_EXPORT
#endif

/* The calling convention of members and entry points: that of the platform. */
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
/* What the definition of a member and of an entry point of a component begins with. */
#define STDMETHODIMP HRESULT STDMETHODCALLTYPE
#define STDMETHODIMP_(type) type STDMETHODCALLTYPE
#define STDAPI QEL_EXTERN_C QEL_EXPORT HRESULT STDAPICALLTYPE

/* ---- Plain types ------------------------------------------------------------------------------------------------- */

typedef int32_t BOOL; /* not 0 is true; members of interfaces use VARIANT_BOOL */
typedef int32_t LONG;
typedef uint16_t WORD;
typedef uint32_t UINT;
typedef uint32_t ULONG;
typedef uint32_t DWORD;
typedef uint32_t LCID;
typedef int32_t HRESULT;
typedef int32_t DISPID;
typedef int16_t VARIANT_BOOL; /* VARIANT_TRUE or VARIANT_FALSE */
typedef char16_t OLECHAR;     /* a UTF-16 unit */
typedef OLECHAR* LPOLESTR;    /* zero-terminated */
typedef const OLECHAR* LPCOLESTR;
typedef OLECHAR* BSTR; /* see SysAllocString; null is the empty text */

#define VARIANT_TRUE ((VARIANT_BOOL)-1)
#define VARIANT_FALSE ((VARIANT_BOOL)0)

typedef struct GUID
{
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;

typedef GUID IID;
typedef GUID CLSID;

/* An identifier as an argument: a reference in C++, a pointer in C, never null. Both are an address. */
#ifdef __cplusplus
typedef const GUID& REFGUID;
typedef const IID& REFIID;
typedef const CLSID& REFCLSID;
#else
typedef const GUID* REFGUID;
typedef const IID* REFIID;
typedef const CLSID* REFCLSID;
#endif

/* The results. Each function and member documents which ones it returns and why. */

#define S_OK QEL_RESULT(0)
#define S_FALSE QEL_RESULT(1)
#define E_NOTIMPL QEL_RESULT(0x80004001u)
#define E_NOINTERFACE QEL_RESULT(0x80004002u)
#define E_POINTER QEL_RESULT(0x80004003u)
#define E_FAIL QEL_RESULT(0x80004005u)
#define E_UNEXPECTED QEL_RESULT(0x8000FFFFu)
#define E_ACCESSDENIED QEL_RESULT(0x80070005u)
#define E_OUTOFMEMORY QEL_RESULT(0x8007000Eu)
#define E_INVALIDARG QEL_RESULT(0x80070057u)
#define CLASS_E_NOAGGREGATION QEL_RESULT(0x80040110u)
#define CLASS_E_CLASSNOTAVAILABLE QEL_RESULT(0x80040111u)
#define REGDB_E_CLASSNOTREG QEL_RESULT(0x80040154u)
#define CO_E_CLASSSTRING QEL_RESULT(0x800401F3u)
#define CO_E_DLLNOTFOUND QEL_RESULT(0x800401F8u)
#define SELFREG_E_CLASS QEL_RESULT(0x80040201u)
#define DISP_E_UNKNOWNINTERFACE QEL_RESULT(0x80020001u)
#define DISP_E_MEMBERNOTFOUND QEL_RESULT(0x80020003u)
#define DISP_E_TYPEMISMATCH QEL_RESULT(0x80020005u)
#define DISP_E_UNKNOWNNAME QEL_RESULT(0x80020006u)
#define DISP_E_NONAMEDARGS QEL_RESULT(0x80020007u)
#define DISP_E_BADVARTYPE QEL_RESULT(0x80020008u)
#define DISP_E_EXCEPTION QEL_RESULT(0x80020009u)
#define DISP_E_OVERFLOW QEL_RESULT(0x8002000Au)
#define DISP_E_BADINDEX QEL_RESULT(0x8002000Bu)
#define DISP_E_BADPARAMCOUNT QEL_RESULT(0x8002000Eu)
#define DISP_E_PARAMNOTOPTIONAL QEL_RESULT(0x8002000Fu)

#define SUCCEEDED(result) ((HRESULT)(result) >= 0)
#define FAILED(result) ((HRESULT)(result) < 0)

/* ---- Variants ---------------------------------------------------------------------------------------------------- */

typedef uint16_t VARTYPE;

/* The types of values. */
enum
{
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12, /* only together with VT_BYREF */
    VT_UNKNOWN = 13,
    VT_BYREF = 0x4000
};

/* NOLINTBEGIN(cppcoreguidelines-virtual-class-destructor) */
struct IUnknown;
struct IDispatch;

/* A value with its type, which says which member of the union is in use. A member with a "p" belongs to the type
 * together with VT_BYREF; it points to a value of someone else. Make it empty by VariantInit before its first use. */
typedef struct VARIANT
{
    VARTYPE vt;
    uint16_t wReserved1;
    uint16_t wReserved2;
    uint16_t wReserved3;
    union
    {
        void* record[2]; /* not used; sets the size of the record, and as the first member it is what {} makes zero */
        int16_t iVal;
        int32_t lVal;
        float fltVal;
        double dblVal;
        BSTR bstrVal;
        VARIANT_BOOL boolVal;
        HRESULT scode;
        struct IUnknown* punkVal;
        struct IDispatch* pdispVal;
        int16_t* piVal;
        int32_t* plVal;
        float* pfltVal;
        double* pdblVal;
        BSTR* pbstrVal;
        VARIANT_BOOL* pboolVal;
        struct IUnknown** ppunkVal;
        struct IDispatch** ppdispVal;
        struct VARIANT* pvarVal;
        void* byref;
    };
} VARIANT;

/* The kinds of a late-bound call. */
enum
{
    DISPATCH_METHOD = 1,
    DISPATCH_PROPERTYGET = 2,
    DISPATCH_PROPERTYPUT = 4,
    DISPATCH_PROPERTYPUTREF = 8
};

#define DISPID_UNKNOWN ((DISPID)-1)
#define DISPID_PROPERTYPUT ((DISPID)-3)

/* The arguments of a late-bound call: `rgvarg` has `cArgs` values, the last argument first; `rgdispidNamedArgs` has the
 * numbers of the first `cNamedArgs` of them. */
typedef struct DISPPARAMS
{
    VARIANT* rgvarg;
    DISPID* rgdispidNamedArgs;
    UINT cArgs;
    UINT cNamedArgs;
} DISPPARAMS;

/* A failure of a late-bound member: its result is `scode`, and `wCode` is 0. The caller frees the texts. */
typedef struct EXCEPINFO
{
    WORD wCode;
    WORD wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    DWORD dwHelpContext;
    void* pvReserved;
    HRESULT(STDAPICALLTYPE* pfnDeferredFillIn)(struct EXCEPINFO*);
    HRESULT scode;
} EXCEPINFO;

/* ---- Interfaces -------------------------------------------------------------------------------------------------- */

/* clang-format off */
struct ITypeInfo;

#define QEL_THIS IUnknown
QEL_ROOT_INTERFACE(IUnknown)
    /* Returns the object's pointer for an interface, with a reference that the caller releases. For IID_IUnknown an
     * object always returns the same pointer, whichever interface is asked. On any thread.
     * E_NOINTERFACE: the object has no such interface, and the pointer is null. E_POINTER: `theObject` is null. */
#ifdef __cplusplus
    QEL_MEMBER(QueryInterface, REFIID myInterface, void** theObject)
    /* Adds a reference. Returns how many there are, for tests only. On any thread. */
    QEL_COUNT_MEMBER(AddRef)
    /* Removes a reference; with the last one the object is destroyed. Returns how many are left, for tests only. On any
     * thread, but the last one on the thread that created the object. */
    QEL_COUNT_MEMBER(Release)
#else
    QEL_C_UNKNOWN_MEMBERS
#endif
QEL_END_INTERFACE(IUnknown)
#undef QEL_THIS

#define QEL_THIS IDispatch
QEL_INTERFACE(IDispatch, IUnknown)
#ifdef __cplusplus
    /* Returns 0: there are no type descriptions. E_POINTER. */
    QEL_MEMBER(GetTypeInfoCount, UINT* theCount)
    /* Always fails, with null. DISP_E_BADINDEX: there are no type descriptions. E_POINTER. */
    QEL_MEMBER(GetTypeInfo, UINT myIndex, LCID myLocale, struct ITypeInfo** theInfo)
    /* Returns the number of a member, by its name without regard to case. `myNames` and `theNumbers` have `myNameCount`
     * entries; only the first name is a member's, because parameters have no names. `myReserved` is GUID_NULL;
     * `myLocale` is ignored.
     * DISP_E_UNKNOWNNAME: a name is unknown, and its number is DISPID_UNKNOWN. DISP_E_UNKNOWNINTERFACE: `myReserved` is
     * something else. E_INVALIDARG: there is no name. E_POINTER. */
    QEL_MEMBER(GetIDsOfNames, REFIID myReserved, LPOLESTR* myNames, UINT myNameCount, LCID myLocale,
               DISPID* theNumbers)
    /* Calls a member by its number with variants. Arguments by reference and by value are both accepted, and
     * converted where VariantChangeType can; an object is asked for the interface that the member needs. `myFlags`
     * is one of the kinds above, or METHOD and PROPERTYGET together for either; an object is put with PROPERTYPUT or
     * PROPERTYPUTREF. A put names its value DISPID_PROPERTYPUT; no other argument is named. A property that is read
     * and put has two slots and can be called by the number of either. `myReserved` is GUID_NULL; `myLocale` is
     * ignored. `theResult`, which is overwritten and belongs to the caller, `theException` and `theArgument` may be
     * null.
     * Refusals, before the member is called: DISP_E_MEMBERNOTFOUND: no such number, or not of that kind.
     * DISP_E_BADPARAMCOUNT: too many or too few arguments. DISP_E_NONAMEDARGS: an argument is named.
     * DISP_E_PARAMNOTOPTIONAL: the value of a put is not named. DISP_E_UNKNOWNINTERFACE: `myReserved` is something
     * else. E_POINTER: no `myParams`, or no arguments. DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW, DISP_E_BADVARTYPE,
     * E_POINTER (a null reference): an argument does not fit, and `theArgument` is its index in `rgvarg`.
     * DISP_E_EXCEPTION: the member failed. `theException` takes its result and the thread's error information; where
     * it is null, the error information stays in the thread. */
    QEL_MEMBER(Invoke, DISPID myMember, REFIID myReserved, LCID myLocale, WORD myFlags, DISPPARAMS* myParams,
               VARIANT* theResult, EXCEPINFO* theException, UINT* theArgument)
#else
    QEL_C_DISPATCH_MEMBERS
#endif
QEL_END_INTERFACE(IDispatch)
#undef QEL_THIS

/* Creates the objects of one class of a component. On any thread; an object belongs to the thread that created it. */
#define QEL_THIS IClassFactory
QEL_INTERFACE(IClassFactory, IUnknown)
    QEL_C_UNKNOWN_MEMBERS
    /* Creates an object and returns one of its interfaces. `myOuter` is null. On failure `theObject` is null and nothing
     * has changed for other objects. CLASS_E_NOAGGREGATION: there is an outer object. E_NOINTERFACE. E_POINTER.
     * 0x800A0007: there is no memory. */
    QEL_MEMBER(CreateInstance, IUnknown* myOuter, REFIID myInterface, void** theObject)
    /* Keeps the component loaded (not 0) or undoes one such lock (0). Locks belong to the component, not to the
     * factory. Undoing a lock that is not there has no effect. */
    QEL_MEMBER(LockServer, BOOL myLock)
QEL_END_INTERFACE(IClassFactory)
#undef QEL_THIS

/* The reason of the last failure on a thread. The caller frees the texts; one that was not set is null. Each member:
 * E_POINTER; those that return a text: E_OUTOFMEMORY. On any thread. */
#define QEL_THIS IErrorInfo
QEL_INTERFACE(IErrorInfo, IUnknown)
    QEL_C_UNKNOWN_MEMBERS
    /* The interface that failed; GUID_NULL if that was not set, as in failures of this component. */
    QEL_MEMBER(GetGUID, GUID* theInterface)
    /* The name of the component, library or program that failed, such as QelPluginAnimation. */
    QEL_MEMBER(GetSource, BSTR* theSource)
    /* What happened, in words for the user. */
    QEL_MEMBER(GetDescription, BSTR* theDescription)
    /* The full path of a help file. This component sets none. */
    QEL_MEMBER(GetHelpFile, BSTR* theHelpFile)
    /* The number of a topic in that file; 0 if that was not set. */
    QEL_MEMBER(GetHelpContext, DWORD* theContext)
QEL_END_INTERFACE(IErrorInfo)
#undef QEL_THIS

/* Fills in error information. An object of CreateErrorInfo has this interface and IErrorInfo. Texts are zero-terminated
 * and copied; null removes one. Those that take a text: E_OUTOFMEMORY, and the text before stays. To be called before
 * SetErrorInfo hands the object over. */
#define QEL_THIS ICreateErrorInfo
QEL_INTERFACE(ICreateErrorInfo, IUnknown)
    QEL_C_UNKNOWN_MEMBERS
    QEL_MEMBER(SetGUID, REFGUID myInterface)
    QEL_MEMBER(SetSource, LPOLESTR mySource)
    QEL_MEMBER(SetDescription, LPOLESTR myDescription)
    QEL_MEMBER(SetHelpFile, LPOLESTR myHelpFile)
    QEL_MEMBER(SetHelpContext, DWORD myContext)
QEL_END_INTERFACE(ICreateErrorInfo)
#undef QEL_THIS

/* Says for which of its interfaces an object leaves error information. */
#define QEL_THIS ISupportErrorInfo
QEL_INTERFACE(ISupportErrorInfo, IUnknown)
    QEL_C_UNKNOWN_MEMBERS
    /* S_OK: failed members of that interface leave error information. S_FALSE: they do not. */
    QEL_MEMBER(InterfaceSupportsErrorInfo, REFIID myInterface)
QEL_END_INTERFACE(ISupportErrorInfo)
#undef QEL_THIS
/* NOLINTEND(cppcoreguidelines-virtual-class-destructor) */
/* clang-format on */

QEL_CONSTANT GUID GUID_NULL = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
QEL_CONSTANT IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
QEL_CONSTANT IID IID_IClassFactory = {0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
QEL_CONSTANT IID IID_IDispatch = {0x00020400, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
QEL_CONSTANT IID IID_IErrorInfo = {0x1CF2B120, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
QEL_CONSTANT IID IID_ICreateErrorInfo = {0x22F03340, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
QEL_CONSTANT IID IID_ISupportErrorInfo = {0xDF0B3D60, 0x548F, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};

/* ---- Texts ------------------------------------------------------------------------------------------------------- */

/* A BSTR points to UTF-16 units with a zero after them; their length in bytes is the 32-bit number just before them.
 * Whoever receives one from a call frees it; whoever passes one in keeps it. */

/* A copy of a zero-terminated text; null for null, or without memory. */
QEL_EXTERN_C QEL_EXPORT BSTR SysAllocString(LPCOLESTR myText);
/* A text of `myLength` units, copied from `myText` unless that is null; null without memory. */
QEL_EXTERN_C QEL_EXPORT BSTR SysAllocStringLen(LPCOLESTR myText, UINT myLength);
/* Frees a text; nothing for null. */
QEL_EXTERN_C QEL_EXPORT void SysFreeString(BSTR myText);
/* The number of units; 0 for null. */
QEL_EXTERN_C QEL_EXPORT UINT SysStringLen(BSTR myText);

/* ---- Variants ---------------------------------------------------------------------------------------------------- */

/* Makes a variant empty. What it held is neither looked at nor freed. Does nothing for null. */
QEL_EXTERN_C QEL_EXPORT void VariantInit(VARIANT* theVariant);
/* Frees the text or releases the object that a variant holds by value, and makes the variant empty. E_POINTER for null.
 * DISP_E_BADVARTYPE: a type that is not in the list above, and the variant stays. */
QEL_EXTERN_C QEL_EXPORT HRESULT VariantClear(VARIANT* theVariant);
/* Converts a value, by reference or not, to another of the types above, by value; source and target may be the same
 * variant. Empty, numbers and truth values turn into one another (rounded to the nearest, halves to the even neighbour;
 * true is -1) and into text; a text that is a number, blanks around it allowed, turns into one, and the words True and
 * False into a truth value. Numbers in texts know no locale. Objects turn into objects. `myFlags` is 0.
 * DISP_E_TYPEMISMATCH: there is no such conversion. DISP_E_OVERFLOW: out of range. DISP_E_BADVARTYPE: an unknown type.
 * E_POINTER: a null reference. E_OUTOFMEMORY. On failure the target stays. */
QEL_EXTERN_C QEL_EXPORT HRESULT VariantChangeType(VARIANT* theTarget, const VARIANT* mySource, uint16_t myFlags,
                                                  VARTYPE myType);

/* ---- Error information ------------------------------------------------------------------------------------------- */

/* A new, empty error information. E_POINTER, E_OUTOFMEMORY. */
QEL_EXTERN_C QEL_EXPORT HRESULT CreateErrorInfo(ICreateErrorInfo** theInfo);
/* Makes an object this thread's error information, which holds a reference to it; null removes the one that is there.
 * `myReserved` is 0. E_INVALIDARG: it is not. E_OUTOFMEMORY. */
QEL_EXTERN_C QEL_EXPORT HRESULT SetErrorInfo(ULONG myReserved, IErrorInfo* myInfo);
/* Takes this thread's error information: the caller releases it, and the thread has none any more. `myReserved` is 0.
 * S_FALSE and null: there is none. E_INVALIDARG: `myReserved` is not 0. E_POINTER. */
QEL_EXTERN_C QEL_EXPORT HRESULT GetErrorInfo(ULONG myReserved, IErrorInfo** theInfo);

/* ---- Classes ----------------------------------------------------------------------------------------------------- */

#define CLSCTX_INPROC_SERVER 1u

/* The class registry is one small text file per class in the folder qel/classes below $XDG_DATA_HOME (or
 * ~/.local/share), and after it below each folder of $XDG_DATA_DIRS (or /usr/local/share and /usr/share). The first one
 * that names a class counts; folders that are not absolute are ignored. A file is named by its class, in upper
 * case: {4FCC59CA-C869-4963-A843-14D7C29AFA23}.class. It has two lines, in UTF-8, and may have others:
 *
 *     ProgID=QelPluginAnimation.Main
 *     Library=/usr/lib/qel/QelPluginAnimation.so
 *
 * A path of a library that is not absolute starts at the folder of the file, so that a package can be moved as a whole.
 * Files without both lines, above 8,192 bytes or not plain are ignored. The functions fail with E_OUTOFMEMORY when
 * memory runs out; a lookup then says nothing about what is registered. */

/* Writes the user's entry of a class and replaces one that is there. `myProgID` is its program name, `myLibrary` the
 * component's absolute path. E_ACCESSDENIED: the folder or file cannot be written. E_INVALIDARG: an empty name, a path
 * that is not absolute, a control character, too long. E_POINTER. */
QEL_EXTERN_C QEL_EXPORT HRESULT QelRegisterClass(REFCLSID myClass, LPCOLESTR myProgID, const char* myLibrary);
/* Removes the user's entry of a class. S_FALSE: there was none. E_ACCESSDENIED. */
QEL_EXTERN_C QEL_EXPORT HRESULT QelUnregisterClass(REFCLSID myClass);
/* The class of a program name, such as QelPluginAnimation.Main, without regard to case.
 * CO_E_CLASSSTRING: it is not registered, and `theClass` is GUID_NULL. E_POINTER. */
QEL_EXTERN_C QEL_EXPORT HRESULT CLSIDFromProgID(LPCOLESTR myProgID, CLSID* theClass);
/* Creates an object of a registered class and returns one of its interfaces; loads its component if need be. `myOuter`
 * is null, and `myContext` is CLSCTX_INPROC_SERVER. On failure `theObject` is null and what was there before is
 * unchanged. REGDB_E_CLASSNOTREG: the class is not registered, or `myContext` is something else. CO_E_DLLNOTFOUND: its
 * component cannot be loaded, and the error information says why. CLASS_E_NOAGGREGATION: there is an outer object.
 * E_POINTER. Otherwise what DllGetClassObject and CreateInstance of the component return. */
QEL_EXTERN_C QEL_EXPORT HRESULT CoCreateInstance(REFCLSID myClass, IUnknown* myOuter, DWORD myContext,
                                                 REFIID myInterface, void** theObject);
/* Unloads the components loaded by CoCreateInstance whose DllCanUnloadNow returns S_OK. All that such a component keeps
 * for its threads is freed with it. To be called while no other thread is inside a component, not even in its last
 * Release. */
QEL_EXTERN_C QEL_EXPORT void CoFreeUnusedLibraries(void);

#endif

/* ---- Components -------------------------------------------------------------------------------------------------- */

/* A component is a shared object with these four entry points and no others, each under its name without "Function":
 * DllRegisterServer writes its classes into the class registry, with the path as the component was loaded: into the
 * user's, and on Windows into that of all users where it may, unless its file is in the user's own folder. It fails as
 * QelRegisterClass does; on Windows with SELFREG_E_CLASS or SELFREG_E_TYPELIB when the registry cannot be written.
 * DllUnregisterServer removes them; classes that are not there are no failure, nor are those that on Windows another
 * file is registered for, which stay. E_ACCESSDENIED; on Windows the results of DllRegisterServer.
 * DllGetClassObject returns the factory of a class. CLASS_E_CLASSNOTAVAILABLE: the component has no such class.
 * E_NOINTERFACE, E_POINTER; 0x800A0007: there is no memory.
 * DllCanUnloadNow returns S_OK when no object and no lock is left, else S_FALSE. */
typedef HRESULT(STDAPICALLTYPE* DllRegisterServerFunction)(void);
typedef HRESULT(STDAPICALLTYPE* DllUnregisterServerFunction)(void);
typedef HRESULT(STDAPICALLTYPE* DllGetClassObjectFunction)(REFCLSID myClass, REFIID myInterface, void** theObject);
typedef HRESULT(STDAPICALLTYPE* DllCanUnloadNowFunction)(void);

#endif

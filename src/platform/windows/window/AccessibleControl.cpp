#include "platform/windows/window/AccessibleControl.h"

#include "platform/LivingObject.h"
#include "platform/windows/wideText.h"

#include <atomic>
#include <new>
#include <oleacc.h>
#include <string>

namespace qel
{
namespace
{

/// A function of the library that describes controls; null if it cannot be loaded.
template <class Function>
Function SystemFunction(const char* myName)
{
    HMODULE const myLibrary = LoadLibraryExW(L"oleacc.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return myLibrary == nullptr
               ? nullptr
               : reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(myLibrary, myName)));
}

/// The system's description of a control under another name. Its last release deletes it, and nothing else can.
class NamedDescription final : public IAccessible // NOLINT(cppcoreguidelines-virtual-class-destructor)
{
public:
    /// Takes over one reference of the description.
    NamedDescription(IAccessible* mySystemDescription, std::wstring myControlName)
        : mySystems(mySystemDescription), myName(std::move(myControlName))
    {
    }
    NamedDescription(const NamedDescription&) = delete;
    NamedDescription& operator=(const NamedDescription&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID myInterface, void** theObject) override
    {
        if (theObject == nullptr)
        {
            return E_POINTER;
        }
        const bool myIsKnown = IsEqualIID(myInterface, IID_IUnknown) || IsEqualIID(myInterface, IID_IDispatch) ||
                               IsEqualIID(myInterface, IID_IAccessible);
        *theObject = myIsKnown ? this : nullptr;
        myIsKnown ? AddRef() : 0;
        return myIsKnown ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++myReferences; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG theRest = --myReferences;
        if (theRest == 0)
        {
            delete this;
        }
        return theRest;
    }

    HRESULT STDMETHODCALLTYPE get_accName(VARIANT myChild, BSTR* theName) override
    {
        if (myChild.vt != VT_I4 || myChild.lVal != CHILDID_SELF)
        {
            return mySystems->get_accName(myChild, theName);
        }
        if (theName == nullptr)
        {
            return E_POINTER;
        }
        *theName = SysAllocString(myName.c_str());
        return *theName == nullptr ? E_OUTOFMEMORY : S_OK;
    }

    // Everything else is the system's.
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* n) override { return mySystems->GetTypeInfoCount(n); }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT i, LCID l, ITypeInfo** t) override
    {
        return mySystems->GetTypeInfo(i, l, t);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID i, LPOLESTR* n, UINT c, LCID l, DISPID* d) override
    {
        return mySystems->GetIDsOfNames(i, n, c, l, d);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID d, REFIID i, LCID l, WORD f, DISPPARAMS* p, VARIANT* r, EXCEPINFO* e,
                                     UINT* a) override
    {
        return mySystems->Invoke(d, i, l, f, p, r, e, a);
    }
    HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** p) override { return mySystems->get_accParent(p); }
    HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* n) override { return mySystems->get_accChildCount(n); }
    HRESULT STDMETHODCALLTYPE get_accChild(VARIANT c, IDispatch** d) override { return mySystems->get_accChild(c, d); }
    HRESULT STDMETHODCALLTYPE get_accValue(VARIANT c, BSTR* v) override { return mySystems->get_accValue(c, v); }
    HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT c, BSTR* d) override
    {
        return mySystems->get_accDescription(c, d);
    }
    HRESULT STDMETHODCALLTYPE get_accRole(VARIANT c, VARIANT* r) override { return mySystems->get_accRole(c, r); }
    HRESULT STDMETHODCALLTYPE get_accState(VARIANT c, VARIANT* s) override { return mySystems->get_accState(c, s); }
    HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT c, BSTR* h) override { return mySystems->get_accHelp(c, h); }
    HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* f, VARIANT c, LONG* t) override
    {
        return mySystems->get_accHelpTopic(f, c, t);
    }
    HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT c, BSTR* k) override
    {
        return mySystems->get_accKeyboardShortcut(c, k);
    }
    HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* f) override { return mySystems->get_accFocus(f); }
    HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* s) override { return mySystems->get_accSelection(s); }
    HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT c, BSTR* a) override
    {
        return mySystems->get_accDefaultAction(c, a);
    }
    HRESULT STDMETHODCALLTYPE accSelect(LONG f, VARIANT c) override { return mySystems->accSelect(f, c); }
    HRESULT STDMETHODCALLTYPE accLocation(LONG* x, LONG* y, LONG* w, LONG* h, VARIANT c) override
    {
        return mySystems->accLocation(x, y, w, h, c);
    }
    HRESULT STDMETHODCALLTYPE accNavigate(LONG d, VARIANT s, VARIANT* e) override
    {
        return mySystems->accNavigate(d, s, e);
    }
    HRESULT STDMETHODCALLTYPE accHitTest(LONG x, LONG y, VARIANT* c) override { return mySystems->accHitTest(x, y, c); }
    HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT c) override { return mySystems->accDoDefaultAction(c); }
    HRESULT STDMETHODCALLTYPE put_accName(VARIANT c, BSTR n) override { return mySystems->put_accName(c, n); }
    HRESULT STDMETHODCALLTYPE put_accValue(VARIANT c, BSTR v) override { return mySystems->put_accValue(c, v); }

private:
    ~NamedDescription() { mySystems->Release(); }

    std::atomic<ULONG> myReferences = 1;
    IAccessible* mySystems;
    std::wstring myName;
    LivingObject myIsAlive; // a screen reader may hold it longer than the control lives
};

IAccessible* MakeDescription(HWND myControl, TextView myName) noexcept
{
    const auto Create = SystemFunction<decltype(&CreateStdAccessibleObject)>("CreateStdAccessibleObject");
    void* mySystems = nullptr;
    if (Create == nullptr || FAILED(Create(myControl, OBJID_CLIENT, IID_IAccessible, &mySystems)))
    {
        return nullptr;
    }
    auto* const myDescription = static_cast<IAccessible*>(mySystems);
    try
    {
        return new NamedDescription(myDescription, WideText(myName));
    }
    catch (const std::bad_alloc&)
    {
        myDescription->Release();
        return nullptr;
    }
}

} // namespace

LRESULT AccessibleControl::Describe(HWND myControl, TextView myName, WPARAM myFlags)
{
    const auto Send = SystemFunction<decltype(&LresultFromObject)>("LresultFromObject");
    if (myDescription == nullptr)
    {
        myDescription = MakeDescription(myControl, myName);
    }
    return Send == nullptr || myDescription == nullptr ? 0 : Send(IID_IAccessible, myFlags, myDescription);
}

void AccessibleControl::Disconnect()
{
    if (myDescription != nullptr)
    {
        CoDisconnectObject(myDescription, 0);
        myDescription->Release();
        myDescription = nullptr;
    }
}

} // namespace qel

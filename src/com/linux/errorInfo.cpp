// The reason of the last failure on a thread.
#include "com/CountedObject.h"
#include "com/failure.h"
#include "com/qelcom.h"

#include <new>
#include <pthread.h>
#include <utility>

namespace qel
{

const char16_t* const ErrorSource = u"qelcom";

namespace
{

HRESULT GiveCopy(BSTR myText, BSTR* theText)
{
    if (theText == nullptr)
    {
        return E_POINTER;
    }
    *theText = myText == nullptr ? nullptr : SysAllocStringLen(myText, SysStringLen(myText));
    return myText != nullptr && *theText == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT TakeCopy(LPCOLESTR myText, BSTR& theText)
{
    const BSTR myCopy = SysAllocString(myText);
    if (myText != nullptr && myCopy == nullptr)
    {
        return E_OUTOFMEMORY;
    }
    SysFreeString(std::exchange(theText, myCopy));
    return S_OK;
}

class ErrorInformation final : public CountedObject<ICreateErrorInfo, IErrorInfo>
{
public:
    ErrorInformation() = default;
    ~ErrorInformation() override
    {
        SysFreeString(mySource);
        SysFreeString(myDescription);
        SysFreeString(myHelpFile);
    }

    STDMETHODIMP SetGUID(REFGUID myInterface) override { return myGuid = myInterface, S_OK; }
    STDMETHODIMP SetSource(LPOLESTR myText) override { return TakeCopy(myText, mySource); }
    STDMETHODIMP SetDescription(LPOLESTR myText) override { return TakeCopy(myText, myDescription); }
    STDMETHODIMP SetHelpFile(LPOLESTR myText) override { return TakeCopy(myText, myHelpFile); }
    STDMETHODIMP SetHelpContext(DWORD myContext) override { return myHelpContext = myContext, S_OK; }

    STDMETHODIMP GetGUID(GUID* theInterface) override
    {
        return theInterface == nullptr ? E_POINTER : (*theInterface = myGuid, S_OK);
    }
    STDMETHODIMP GetSource(BSTR* theText) override { return GiveCopy(mySource, theText); }
    STDMETHODIMP GetDescription(BSTR* theText) override { return GiveCopy(myDescription, theText); }
    STDMETHODIMP GetHelpFile(BSTR* theText) override { return GiveCopy(myHelpFile, theText); }
    STDMETHODIMP GetHelpContext(DWORD* theContext) override
    {
        return theContext == nullptr ? E_POINTER : (*theContext = myHelpContext, S_OK);
    }

private:
    GUID myGuid{};
    BSTR mySource = nullptr;
    BSTR myDescription = nullptr;
    BSTR myHelpFile = nullptr;
    DWORD myHelpContext = 0;
};

/// Where each thread keeps its error information; released when the thread ends.
struct ThreadSlot
{
    pthread_key_t Key{};
    bool IsMade = pthread_key_create(&Key, [](void* myInfo) { static_cast<IErrorInfo*>(myInfo)->Release(); }) == 0;
};

const ThreadSlot& Slot()
{
    static const ThreadSlot theSlot;
    return theSlot;
}

/// Replaces the thread's error information. The old one is moved to `theOld`.
HRESULT ExchangeErrorInfo(ComPtr<IErrorInfo> myNew, ComPtr<IErrorInfo>& theOld)
{
    const ThreadSlot& mySlot = Slot();
    auto* const myOld = mySlot.IsMade ? static_cast<IErrorInfo*>(pthread_getspecific(mySlot.Key)) : nullptr;
    if (!mySlot.IsMade || (myOld != myNew.Get() && pthread_setspecific(mySlot.Key, myNew.Get()) != 0))
    {
        return E_OUTOFMEMORY;
    }
    myNew.Detach();
    theOld = ComPtr<IErrorInfo>::Adopt(myOld);
    return S_OK;
}

} // namespace
} // namespace qel

HRESULT CreateErrorInfo(ICreateErrorInfo** theInfo)
{
    if (theInfo == nullptr)
    {
        return E_POINTER;
    }
    *theInfo = new (std::nothrow) qel::ErrorInformation();
    return *theInfo == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT SetErrorInfo(ULONG myReserved, IErrorInfo* myInfo)
{
    qel::ComPtr<IErrorInfo> myOld;
    return myReserved != 0 ? E_INVALIDARG : qel::ExchangeErrorInfo(qel::ComPtr<IErrorInfo>(myInfo), myOld);
}

HRESULT GetErrorInfo(ULONG myReserved, IErrorInfo** theInfo)
{
    if (theInfo == nullptr)
    {
        return E_POINTER;
    }
    *theInfo = nullptr;
    if (myReserved != 0)
    {
        return E_INVALIDARG;
    }
    qel::ComPtr<IErrorInfo> myOld;
    if (const HRESULT myFailure = qel::ExchangeErrorInfo({}, myOld); FAILED(myFailure))
    {
        return myFailure;
    }
    *theInfo = myOld.Detach();
    return *theInfo == nullptr ? S_FALSE : S_OK;
}

/// The base of every object that crosses the binary interface.
#pragma once

#include "com/ComPtr.h"
#include "com/DispatchImplementation.h"

#include <atomic>
#include <concepts>
#include <cstdint>
#include <type_traits>

namespace qel
{

/// The base that an object inherits for an interface.
template <class Interface>
using Implementation =
    std::conditional_t<std::derived_from<Interface, IDispatch>, DispatchImplementation<Interface>, Interface>;

/// Implements QueryInterface, the reference count, and late binding for each dual interface of an object. The derived
/// class implements the members of the interfaces. Create it with MakeCounted.
///
/// `Default` comes first: it is the object's IUnknown and, if it is a dual interface, its IDispatch.
template <class Default, class... Others>
class CountedObject : public Implementation<Default>, public Implementation<Others>...
{
public:
    CountedObject(const CountedObject&) = delete;
    CountedObject& operator=(const CountedObject&) = delete;
    virtual ~CountedObject() = default;

    STDMETHODIMP QueryInterface(REFIID myInterface, void** theObject) override
    {
        if (theObject == nullptr)
        {
            return E_POINTER;
        }
        *theObject = Find(myInterface);
        if (*theObject == nullptr)
        {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }

    STDMETHODIMP_(ULONG) AddRef() override { return myHolders.fetch_add(1, std::memory_order_relaxed) + 1; }

    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG theRest = myHolders.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (theRest == 0)
        {
            delete this;
        }
        return theRest;
    }

protected:
    CountedObject() = default;

private:
    void* Find(REFIID myId)
    {
        auto* const myDefault = static_cast<Default*>(this);
        if (SameId(myId, IID_IUnknown) || SameId(myId, *InterfaceId<Default>) ||
            (std::derived_from<Default, IDispatch> && SameId(myId, IID_IDispatch)))
        {
            return myDefault;
        }
        void* theObject = nullptr;
        [[maybe_unused]] const auto Try = [&]<class Interface>(Interface* myCandidate)
        {
            if (SameId(myId, *InterfaceId<Interface>))
            {
                theObject = myCandidate;
            }
        };
        (Try(static_cast<Others*>(this)), ...);
        return theObject;
    }

    std::atomic<ULONG> myHolders = 1;
};

/// Creates a counted object. Throws what its constructor throws, and std::bad_alloc.
template <class Object, class... Arguments>
ComPtr<Object> MakeCounted(Arguments&&... myArguments)
{
    return ComPtr<Object>::Adopt(new Object(std::forward<Arguments>(myArguments)...));
}

} // namespace qel

/// References to counted objects.
#pragma once

#include "com/qelcom.h"

#include <concepts>
#include <cstring>
#include <utility>

namespace qel
{

template <class Interface>
struct UnknownInterface;

/// The identifier of an interface, by its C++ type. interfaceTables.h has those of QelHelperInterfaces.h; others do not
/// compile.
template <class Interface>
inline constexpr const IID* InterfaceId = UnknownInterface<Interface>::Id;
template <>
inline constexpr const IID* InterfaceId<IUnknown> = &IID_IUnknown;
template <>
inline constexpr const IID* InterfaceId<IDispatch> = &IID_IDispatch;
template <>
inline constexpr const IID* InterfaceId<IClassFactory> = &IID_IClassFactory;
template <>
inline constexpr const IID* InterfaceId<IErrorInfo> = &IID_IErrorInfo;
template <>
inline constexpr const IID* InterfaceId<ICreateErrorInfo> = &IID_ICreateErrorInfo;
template <>
inline constexpr const IID* InterfaceId<ISupportErrorInfo> = &IID_ISupportErrorInfo;

inline bool SameId(const GUID& myFirst, const GUID& mySecond) noexcept
{
    return std::memcmp(&myFirst, &mySecond, sizeof(GUID)) == 0;
}

// The analyser does not know that an object lives for as long as it has holders.
// NOLINTBEGIN(clang-analyzer-cplusplus.NewDelete)

/// A reference to a counted object, or null. It releases the object at the end of its life. Nothing here throws.
template <class Interface>
class ComPtr
{
public:
    ComPtr() noexcept = default;

    /// Adds a reference of its own.
    explicit ComPtr(Interface* myPointer) noexcept : myObject(myPointer)
    {
        if (myObject != nullptr)
        {
            myObject->AddRef();
        }
    }

    ComPtr(const ComPtr& myOther) noexcept : ComPtr(myOther.myObject) {}
    ComPtr(ComPtr&& myOther) noexcept : myObject(myOther.Detach()) {}
    ~ComPtr() { Reset(); }

    ComPtr& operator=(ComPtr myOther) noexcept
    {
        std::swap(myObject, myOther.myObject);
        return *this;
    }

    /// Takes over the reference that the caller holds.
    static ComPtr Adopt(Interface* myPointer) noexcept
    {
        ComPtr theResult;
        theResult.myObject = myPointer;
        return theResult;
    }

    Interface* Get() const noexcept { return myObject; }
    Interface* operator->() const noexcept { return myObject; }
    explicit operator bool() const noexcept { return myObject != nullptr; }

    /// The place for a reference that a call returns; what was held is released first.
    Interface** Receive() noexcept
    {
        Reset();
        return &myObject;
    }

    void Reset() noexcept
    {
        if (Interface* myPointer = Detach())
        {
            myPointer->Release();
        }
    }

    /// Returns the reference without releasing it; the caller releases it.
    Interface* Detach() noexcept { return std::exchange(myObject, nullptr); }

    /// The same object's pointer for another interface; null if it has none, or for null.
    template <class Other>
    ComPtr<Other> Query() const noexcept
    {
        void* myPointer = nullptr;
        if (myObject != nullptr && FAILED(myObject->QueryInterface(*InterfaceId<Other>, &myPointer)))
        {
            myPointer = nullptr;
        }
        return ComPtr<Other>::Adopt(static_cast<Other*>(myPointer));
    }

private:
    Interface* myObject = nullptr;
};

// NOLINTEND(clang-analyzer-cplusplus.NewDelete)

} // namespace qel

// CoCreateInstance and the components that it has loaded.
#include "com/ComPtr.h"
#include "com/failure.h"
#include "com/linux/classRegistry.h"
#include "com/linux/contained.h"
#include "com/qelcom.h"
#include "text/encodings.h"

#include <dlfcn.h>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace qel
{
namespace
{

struct LibraryCloser
{
    void operator()(void* myHandle) const noexcept { dlclose(myHandle); }
};

/// A loaded component; unloaded at the end of its life.
struct Library
{
    std::unique_ptr<void, LibraryCloser> Handle;
    DllGetClassObjectFunction GetClassObject = nullptr;
    DllCanUnloadNowFunction CanUnloadNow = nullptr;
};

/// The loaded components, by the path that they are registered with. They stay loaded when the process ends.
///
/// The lock is held while a component is loaded and creates its object, so that no other thread unloads it meanwhile.
/// It is recursive for a component that creates objects of another one.
struct LibraryTable
{
    std::recursive_mutex Lock;
    std::map<std::string, Library> Entries;
};

LibraryTable& Loaded()
{
    static auto& theTable = *new LibraryTable;
    return theTable;
}

/// Stores the loader's reason in the thread's error information.
HRESULT ReportLoader()
{
    const char* const myReason = dlerror();
    return ReportFailure(CO_E_DLLNOTFOUND, FromUtf8(myReason == nullptr ? "" : myReason).c_str());
}

HRESULT Load(const std::string& myPath, Library& theLibrary)
{
    theLibrary.Handle.reset(dlopen(myPath.c_str(), RTLD_NOW | RTLD_LOCAL));
    void* const myHandle = theLibrary.Handle.get();
    if (myHandle == nullptr)
    {
        return ReportLoader();
    }
    theLibrary.GetClassObject = reinterpret_cast<DllGetClassObjectFunction>(dlsym(myHandle, "DllGetClassObject"));
    theLibrary.CanUnloadNow = reinterpret_cast<DllCanUnloadNowFunction>(dlsym(myHandle, "DllCanUnloadNow"));
    return theLibrary.GetClassObject == nullptr || theLibrary.CanUnloadNow == nullptr ? ReportLoader() : S_OK;
}

HRESULT Create(const CLSID& myClass, const IID& myInterface, void** theObject)
{
    const std::optional<std::string> myPath = LibraryOfClass(myClass);
    if (!myPath)
    {
        return Refuse(REGDB_E_CLASSNOTREG);
    }
    LibraryTable& myTable = Loaded();
    const std::lock_guard myGuard(myTable.Lock);
    auto myEntry = myTable.Entries.find(*myPath);
    if (myEntry == myTable.Entries.end())
    {
        Library myLibrary;
        if (const HRESULT myFailure = Load(*myPath, myLibrary); FAILED(myFailure))
        {
            return myFailure;
        }
        myEntry = myTable.Entries.emplace(*myPath, std::move(myLibrary)).first;
    }
    SetErrorInfo(0, nullptr); // what is there afterwards comes from the component
    void* myFactory = nullptr;
    const HRESULT theOutcome = myEntry->second.GetClassObject(myClass, IID_IClassFactory, &myFactory);
    const auto myHold = ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(myFactory));
    return FAILED(theOutcome) ? theOutcome : myHold->CreateInstance(nullptr, myInterface, theObject);
}

} // namespace
} // namespace qel

HRESULT CoCreateInstance(REFCLSID myClass, IUnknown* myOuter, DWORD myContext, REFIID myInterface, void** theObject)
{
    if (theObject == nullptr)
    {
        return qel::Refuse(E_POINTER);
    }
    *theObject = nullptr;
    if (myOuter != nullptr)
    {
        return qel::Refuse(CLASS_E_NOAGGREGATION);
    }
    if ((myContext & CLSCTX_INPROC_SERVER) == 0)
    {
        return qel::Refuse(REGDB_E_CLASSNOTREG);
    }
    return qel::Contained([&] { return qel::Create(myClass, myInterface, theObject); });
}

void CoFreeUnusedLibraries(void)
{
    qel::LibraryTable& myTable = qel::Loaded();
    const std::lock_guard myGuard(myTable.Lock);
    std::erase_if(myTable.Entries, [](const auto& myEntry) { return myEntry.second.CanUnloadNow() == S_OK; });
}

// CoCreateInstance and the components that it has loaded.
#include "com/classRegistry.h"
#include "com/ComPtr.h"
#include "com/qelcom.h"
#include "text/encodings.h"

#include <dlfcn.h>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace qel
{
namespace
{

struct Library
{
    void* Handle = nullptr;
    DllGetClassObjectFunction GetClassObject = nullptr;
    DllCanUnloadNowFunction CanUnloadNow = nullptr;
};

/// The loaded components, by the path that they are registered with. They stay loaded when the process ends.
///
/// The lock is held while a component is loaded and makes its object, so that it is not unloaded under way; it lets the
/// same thread in again, for a component that creates objects of another one.
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

/// Puts the reason of the loader into the thread's error information.
HRESULT ReportLoader()
{
    const char* const myReason = dlerror();
    const Text myText = FromUtf8(myReason == nullptr ? "" : myReason);
    ComPtr<ICreateErrorInfo> myInfo;
    if (SUCCEEDED(CreateErrorInfo(myInfo.Receive())))
    {
        myInfo->SetSource(u"qelcom");
        myInfo->SetDescription(myText.c_str());
        SetErrorInfo(0, myInfo.Query<IErrorInfo>().Get());
    }
    return CO_E_DLLNOTFOUND;
}

HRESULT Load(const std::string& myPath, Library& theLibrary)
{
    theLibrary.Handle = dlopen(myPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (theLibrary.Handle == nullptr)
    {
        return ReportLoader();
    }
    theLibrary.GetClassObject =
        reinterpret_cast<DllGetClassObjectFunction>(dlsym(theLibrary.Handle, "DllGetClassObject"));
    theLibrary.CanUnloadNow = reinterpret_cast<DllCanUnloadNowFunction>(dlsym(theLibrary.Handle, "DllCanUnloadNow"));
    if (theLibrary.GetClassObject == nullptr || theLibrary.CanUnloadNow == nullptr)
    {
        ReportLoader();
        dlclose(theLibrary.Handle);
        return CO_E_DLLNOTFOUND;
    }
    return S_OK;
}

HRESULT Create(const CLSID& myClass, const IID& myInterface, void** theObject)
{
    const std::optional<std::string> myPath = LibraryOfClass(myClass);
    if (!myPath)
    {
        return REGDB_E_CLASSNOTREG;
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
        myEntry = myTable.Entries.emplace(*myPath, myLibrary).first;
    }
    void* myFactory = nullptr;
    const HRESULT theOutcome = myEntry->second.GetClassObject(&myClass, &IID_IClassFactory, &myFactory);
    const auto myHold = ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(myFactory));
    return FAILED(theOutcome) ? theOutcome : myHold->CreateInstance(nullptr, &myInterface, theObject);
}

} // namespace
} // namespace qel

HRESULT CoCreateInstance(const CLSID* myClass, IUnknown* myOuter, uint32_t myContext, const IID* myInterface,
                         void** theObject)
{
    if (theObject == nullptr)
    {
        return E_POINTER;
    }
    *theObject = nullptr;
    if (myClass == nullptr || myInterface == nullptr)
    {
        return E_POINTER;
    }
    if (myOuter != nullptr)
    {
        return CLASS_E_NOAGGREGATION;
    }
    if ((myContext & CLSCTX_INPROC_SERVER) == 0)
    {
        return REGDB_E_CLASSNOTREG;
    }
    try
    {
        return qel::Create(*myClass, *myInterface, theObject);
    }
    catch (...)
    {
        return E_OUTOFMEMORY;
    }
}

void CoFreeUnusedLibraries(void)
{
    qel::LibraryTable& myTable = qel::Loaded();
    const std::lock_guard myGuard(myTable.Lock);
    std::erase_if(myTable.Entries, [](const auto& myEntry)
                  { return myEntry.second.CanUnloadNow() == S_OK && dlclose(myEntry.second.Handle) == 0; });
}

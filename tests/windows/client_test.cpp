/// An early-bound client on the header of the type library, as other hosts of the system are written. The component is
/// registered (see registered_test.py).
#define INITGUID
#include "com/Bstr.h"
#include "com/ComPtr.h"
#include "QelPluginAnimation.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace qel
{
namespace
{

/// The apartment of a thread.
class Apartment
{
public:
    explicit Apartment(DWORD myKind) { CoInitializeEx(nullptr, myKind); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() { CoUninitialize(); }
};

template <class Interface>
HRESULT Create(const CLSID& myClass, ComPtr<Interface>& theObject)
{
    return CoCreateInstance(myClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                            reinterpret_cast<void**>(theObject.Receive()));
}

Text Read(const ComPtr<QelPlugin>& myPlugin, HRESULT (__stdcall QelPlugin::*myMember)(BSTR*))
{
    Bstr theText;
    EXPECT_EQ((myPlugin.Get()->*myMember)(theText.Pointer()), S_OK);
    return theText.Value();
}

/// Writes a script, reads it back, and lets one fail.
void UsePlugin()
{
    ComPtr<QelPlugin> myPlugin;
    ASSERT_EQ(Create(CLSID_Main, myPlugin), S_OK);
    Bstr myScript(Read(myPlugin, &QelPlugin::get_InitialScript) + u"<pg.param name=image value=B\u00FAho.gif>");
    EXPECT_EQ(myPlugin->put_Script(myScript.Pointer()), S_OK);
    EXPECT_NE(Read(myPlugin, &QelPlugin::get_Script).find(u"value=\"B\u00FAho.gif\""), Text::npos);
    Bstr myWrongScript(u"<pg.param name=from value=1e300>");
    EXPECT_EQ(myPlugin->put_Script(myWrongScript.Pointer()), static_cast<HRESULT>(0x800A0006));
    LONG myLink = 1;
    VARIANT_BOOL theAnswer = VARIANT_TRUE;
    EXPECT_EQ(myPlugin->CallBack(&myLink, &theAnswer), S_OK);
    EXPECT_EQ(theAnswer, VARIANT_FALSE);
}

/// How many indexes of thread storage this process can still take.
size_t FreeThreadIndexes()
{
    std::vector<DWORD> myTaken;
    for (DWORD myIndex = TlsAlloc(); myIndex != TLS_OUT_OF_INDEXES; myIndex = TlsAlloc())
    {
        myTaken.push_back(myIndex);
    }
    for (const DWORD myIndex : myTaken)
    {
        TlsFree(myIndex);
    }
    return myTaken.size();
}

TEST(Client, Unload_AfterTheLastObjectAndAgain)
{
    const Apartment myApartment(COINIT_APARTMENTTHREADED);
    size_t myFreeIndexes = 0;
    for (int i = 0; i < 200; ++i)
    {
        {
            ComPtr<QelStringSort> mySort;
            ASSERT_EQ(Create(CLSID_classStringSort, mySort), S_OK);
            UsePlugin();
            CoFreeUnusedLibrariesEx(0, 0);
            ASSERT_NE(GetModuleHandleW(L"QelPluginAnimation.dll"), nullptr) << "an object is left";
        }
        CoFreeUnusedLibrariesEx(0, 0);
        ASSERT_EQ(GetModuleHandleW(L"QelPluginAnimation.dll"), nullptr) << i;
        if (i == 0) // what the system's own libraries take, they may keep
        {
            myFreeIndexes = FreeThreadIndexes();
        }
    }
    EXPECT_EQ(FreeThreadIndexes(), myFreeIndexes);
}

// Last, because the system keeps the component in a thread of its own after that.
TEST(Client, Apartment_OfManyThreads)
{
    std::thread(
        []
        {
            const Apartment myApartment(COINIT_MULTITHREADED);
            UsePlugin();
        })
        .join();
}

} // namespace
} // namespace qel

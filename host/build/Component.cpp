#include "build/Component.h"

#include "com/Bstr.h"
#include "common/Failure.h"
#include "common/programFiles.h"
#include "text/encodings.h"

#include <array>
#include <cstdio>

namespace qel::host
{

namespace
{

constexpr const char16_t* ProgramName = u"QelPluginAnimation.Main";

std::string ReasonOf(HRESULT myResult)
{
    ComPtr<IErrorInfo> myInfo;
    Bstr myDescription;
    if (GetErrorInfo(0, myInfo.Receive()) == S_OK)
    {
        myInfo->GetDescription(myDescription.Pointer());
    }
    std::array<char, 16> myNumber{};
    std::snprintf(myNumber.data(), myNumber.size(), "0x%08X", static_cast<unsigned>(myResult));
    const std::string myText = ToUtf8(myDescription.Value());
    return myText.empty() ? "error " + std::string(myNumber.data()) : myText + " (" + myNumber.data() + ")";
}

void Check(HRESULT myResult, const std::string& myWhat)
{
    if (FAILED(myResult))
    {
        throw CallFailure(myWhat + ": " + ReasonOf(myResult), myResult);
    }
}

SharedLibrary OpenComponent(const std::filesystem::path& myFile)
{
    try
    {
        return SharedLibrary(myFile);
    }
    catch (const Failure& myFailure)
    {
        throw Failure(std::string("the component cannot be opened: ") + myFailure.what() +
                      "; name its file with --plugin, or register it with qelhost register FILE");
    }
}

template <class Function>
Function EntryPoint(const SharedLibrary& myLibrary, const char* myName)
{
    const auto theFunction = myLibrary.Find<Function>(myName);
    if (theFunction == nullptr)
    {
        throw Failure(std::string("the file is not a component: it has no ") + myName + "; give another one");
    }
    return theFunction;
}

/// Calls an entry point without arguments in a component's file.
void CallEntryPoint(const std::filesystem::path& myFile, const char* myName, const std::string& myWhat)
{
    const SharedLibrary myLibrary = OpenComponent(myFile);
    Check(EntryPoint<DllRegisterServerFunction>(myLibrary, myName)(), myWhat);
}

/// False while something of a component is in use, or if it cannot be asked.
bool CanUnload(const SharedLibrary& myLibrary)
{
    const auto myFunction = myLibrary.Find<DllCanUnloadNowFunction>("DllCanUnloadNow");
    return myFunction != nullptr && myFunction() == S_OK;
}

} // namespace

Component::Component(const std::optional<std::filesystem::path>& myFile)
{
    CLSID myClass{};
    if (!myFile && SUCCEEDED(CLSIDFromProgID(ToOle(ProgramName), &myClass)))
    {
        void* myObject = nullptr;
        Check(CoCreateInstance(myClass, nullptr, CLSCTX_INPROC_SERVER, IID_QelPlugin, &myObject),
              "the registered component cannot be opened; register it again with qelhost register, or give --plugin");
        myPlugin = ComPtr<QelPlugin>::Adopt(static_cast<QelPlugin*>(myObject));
        return;
    }
    myLibrary = OpenComponent(myFile ? *myFile : ComponentBesideProgram());
    const auto myGetClass = EntryPoint<DllGetClassObjectFunction>(myLibrary, "DllGetClassObject");
    void* myObject = nullptr;
    Check(myGetClass(CLSID_Main, IID_IClassFactory, &myObject), "the file has no such component");
    const auto myFactory = ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(myObject));
    Check(myFactory->CreateInstance(nullptr, IID_QelPlugin, &myObject), "the component cannot be started");
    myPlugin = ComPtr<QelPlugin>::Adopt(static_cast<QelPlugin*>(myObject));
}

Component::~Component()
{
    if (myBuildService)
    {
        QelDatabase* myNoDatabase = nullptr;
        QelBuildHelper* myNoBuildHelper = nullptr;
        myPlugin->putref_QelDatabase(&myNoDatabase);
        myPlugin->putref_QelBuildHelper(&myNoBuildHelper);
    }
    myPlugin.Reset();
    CoFreeUnusedLibraries();
    if (myLibrary.IsOpen() && !CanUnload(myLibrary))
    {
        myLibrary.StayOpen(); // something of it is still in use
    }
}

void Component::Serve(Site& theSite)
{
    const auto myDatabaseService = MakeCounted<DatabaseService>(theSite);
    myBuildService = MakeCounted<BuildService>(theSite);
    QelDatabase* myDatabase = myDatabaseService.Get();
    QelBuildHelper* myBuildHelper = myBuildService.Get();
    Check(myPlugin->putref_QelDatabase(&myDatabase), "the component refuses the database");
    Check(myPlugin->putref_QelBuildHelper(&myBuildHelper), "the component refuses the build service");
}

void Component::PutInHand(int64_t myModule, std::string_view myScript)
{
    myBuildService->SetModule(myModule);
    Bstr myText(FromUtf8(myScript));
    Check(myPlugin->put_Script(myText.Pointer()), "the component refuses the script");
}

bool Component::Edit() const
{
    int32_t mySettingsDialog = 0; // the one window that the component has
    VARIANT_BOOL theAnswer = VARIANT_FALSE;
    Check(myPlugin->CallBack(&mySettingsDialog, &theAnswer), "the settings dialog failed");
    return theAnswer != VARIANT_FALSE;
}

Text Component::Read(HRESULT (STDMETHODCALLTYPE QelPlugin::*myMember)(BSTR*)) const
{
    Bstr theText;
    Check((myPlugin.Get()->*myMember)(theText.Pointer()), "the component failed");
    return theText.Value();
}

bool Component::RequiresPHP() const
{
    VARIANT_BOOL theAnswer = VARIANT_FALSE;
    Check(myPlugin->get_RequiresPHP(&theAnswer), "the component failed");
    return theAnswer != VARIANT_FALSE;
}

Text Component::Version() const
{
    const ComPtr<QelInfo> myInfo = myPlugin.Query<QelInfo>();
    Bstr theText;
    if (myInfo)
    {
        Check(myInfo->get_Version(theText.Pointer()), "the component failed");
    }
    return theText.Value();
}

std::filesystem::path Component::LibraryFolder() const
{
    const std::filesystem::path myFile = FileOfAddress(*reinterpret_cast<void**>(myPlugin.Get())); // one of its members
    return std::filesystem::weakly_canonical(myFile).parent_path() / "QelPluginAnimationDesigns";
}

void RegisterComponent(const std::filesystem::path& myFile)
{
    CallEntryPoint(myFile, "DllRegisterServer", "the component cannot be registered");
}

void UnregisterComponent(const std::filesystem::path& myFile)
{
    CallEntryPoint(myFile, "DllUnregisterServer", "the component cannot be removed from the registry");
}

} // namespace qel::host

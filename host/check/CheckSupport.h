/// What checks are made of: expectations, the component opened by its entry points, and a host that counts and fails.
#pragma once

#include "build/Component.h"
#include "check/Checker.h"
#include "com/Bstr.h"
#include "com/CountedObject.h"
#include "com/Failure.h"
#include "com/InterfaceTables.h"

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace qel::host
{

// ---- Expectations: each throws an Outcome that fails the check, or notes what went well ----

[[noreturn]] void FailCheck(std::string myExpected, std::string myGot);
/// Results are shown with their names, as far as they have one.
void ExpectResult(const std::string& myWhat, HRESULT myExpected, HRESULT myGot);
void ExpectNumber(const std::string& myWhat, int64_t myExpected, int64_t myGot);
/// Texts are shown from a little before the place where they part.
void ExpectText(const std::string& myWhat, TextView myExpected, TextView myGot);
void ExpectPart(const std::string& myWhat, TextView myPart, TextView myGot);
/// `myWhat` is a whole sentence.
void Expect(const std::string& myWhat, bool myHolds);

/// A text in UTF-8, shortened, with escapes for what does not show.
std::string Shown(TextView myText);

/// The source and the description of the thread's last failure, which is taken away; empty without one.
struct FailureTexts
{
    FailureTexts();
    Text Source;
    Text Description;
};

/// The number of references to an object.
template <class Interface>
int64_t HoldersOf(Interface& myObject)
{
    myObject.AddRef();
    return myObject.Release();
}

/// The component of a trial, opened as a host opens it and closed when it goes.
class OpenedComponent
{
public:
    static constexpr const char* Opens = "the file opens as a shared object"; ///< what is expected of the file

    explicit OpenedComponent(const Trial& myTrial);

    template <class Function>
    Function EntryPoint(const char* myName) const
    {
        return reinterpret_cast<Function>(AddressOf(myName));
    }
    HRESULT ClassObject(const CLSID* myClass, const IID* myInterface, void** theObject) const
    {
        return EntryPoint<DllGetClassObjectFunction>("DllGetClassObject")(myClass, myInterface, theObject);
    }
    HRESULT CanUnloadNow() const { return EntryPoint<DllCanUnloadNowFunction>("DllCanUnloadNow")(); }
    ComPtr<IClassFactory> Factory(const CLSID& myClass) const;

    template <class Interface>
    ComPtr<Interface> Create(const CLSID& myClass) const
    {
        void* theObject = nullptr;
        ExpectResult("CreateInstance", S_OK,
                     Factory(myClass)->CreateInstance(nullptr, InterfaceId<Interface>, &theObject));
        Expect("CreateInstance gives an object", theObject != nullptr);
        return ComPtr<Interface>::Adopt(static_cast<Interface*>(theObject));
    }
    ComPtr<QelPlugin> Plugin() const { return Create<QelPlugin>(CLSID_Main); }

private:
    void* AddressOf(const char* myName) const;

    Library myLibrary;
};

/// What the host's objects answer, and what they have been asked.
struct HostState
{
    template <class Value, class Given>
    HRESULT Tell(const char* myName, Value* theValue, const Given& myGiven)
    {
        return Answer(theValue,
                      [&]
                      {
                          Note(myName);
                          return myGiven;
                      });
    }
    /// Counts a call. Throws the failure if it is this call's turn.
    void Note(const char* myName);

    Text Root; ///< the folder of the build's and the site's folders; ends in "/"
    int32_t Instance = 3;
    int32_t Kind = 5;
    bool AtEnd = false;
    std::vector<std::string> Calls;
    size_t FailingCall = 0; ///< from 1; 0: none
    Error Reason{};
};

class CheckedHelper final : public CountedObject<QelBuildHelper>
{
public:
    explicit CheckedHelper(HostState& theState) : myState(theState) {}

    HRESULT get_UniqueName(BSTR* theName) override { return myState.Tell("UniqueName", theName, u"17"); }
    HRESULT get_InstanceNumber(int32_t* theNumber) override
    {
        return myState.Tell("InstanceNumber", theNumber, myState.Instance);
    }
    HRESULT get_MediaFolder(BSTR* theFolder) override { return Folder("MediaFolder", theFolder, u"media/"); }
    HRESULT get_MediaURL(BSTR* theURL) override { return myState.Tell("MediaURL", theURL, u"media/"); }
    HRESULT get_ImageFolder(BSTR* theFolder) override { return Folder("ImageFolder", theFolder, u"images/"); }
    HRESULT get_ImageURL(BSTR* theURL) override { return myState.Tell("ImageURL", theURL, u"images/"); }
    HRESULT get_FileFolder(BSTR* theFolder) override { return Folder("FileFolder", theFolder, u"files/"); }
    HRESULT get_FileURL(BSTR* theURL) override { return myState.Tell("FileURL", theURL, u"files/"); }
    HRESULT get_ArchiveName(BSTR* theName) override { return myState.Tell("ArchiveName", theName, u"archivo.dat"); }

private:
    HRESULT Folder(const char* myName, BSTR* theFolder, TextView myFolder)
    {
        return myState.Tell(myName, theFolder, JoinTexts({myState.Root, myFolder}));
    }

    HostState& myState;
};

/// Services that a component takes and has no use for.
class Thumbnails final : public CountedObject<QelThumbnails>
{
};
class Topic final : public CountedObject<QelTopic>
{
};

class CheckedDatabase final : public CountedObject<QelDatabase>
{
public:
    explicit CheckedDatabase(HostState& theState) : myState(theState) {}

    HRESULT get_RecordType(int32_t* theType) override { return myState.Tell("RecordType", theType, myState.Kind); }
    HRESULT get_EOF(VARIANT_BOOL* theEnd) override { return myState.Tell("EOF", theEnd, myState.AtEnd); }
    HRESULT get_RecordFilename(BSTR* theName) override { return myState.Tell("RecordFilename", theName, u"nota.pdf"); }
    HRESULT SeekUID(BSTR* myUID, int32_t* myFirst, int32_t* mySecond) override;
    HRESULT get_RecordURL(BSTR* theURL) override { return myState.Tell("RecordURL", theURL, u"otra.html"); }
    HRESULT get_DataFolder(BSTR* theFolder) override
    {
        return myState.Tell("DataFolder", theFolder, JoinTexts({myState.Root, u"data/"}));
    }
    HRESULT ChooseLink(BSTR* /*myPresentLink*/, BSTR* theLink) override
    {
        return myState.Tell("ChooseLink", theLink, u"URL:x");
    }

private:
    HostState& myState;
};

/// A plug-in object with services, on the thread that makes it. The site holds an archive, archivo.dat, with a picture
/// of 3 by 2 pixels and a tune, and a file, nota.pdf. The services are taken back when it goes.
class ServedPlugin
{
public:
    ServedPlugin(const OpenedComponent& myComponent, const Trial& myTrial);
    ServedPlugin(const ServedPlugin&) = delete;
    ServedPlugin& operator=(const ServedPlugin&) = delete;
    ~ServedPlugin();

    /// Writes a script and reads the page text. Both calls have to succeed.
    Text Output(TextView myScript) const;

    HostState State;
    ComPtr<CheckedHelper> Helper;
    ComPtr<CheckedDatabase> Database;
    ComPtr<QelPlugin> Plugin;
};

/// A picture of 3 by 2 pixels, and what stands for a tune.
std::string_view PictureBytes();
constexpr std::string_view TuneBytes = "MThd";

/// A script that asks for everything: archive, picture, tune, period, and a link to a record.
constexpr TextView FullScript = u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n"
                                u"<pg.file filename=\"archivo.dat\">\r\n"
                                u"<pg.param name=\"image\" value=\"qelspr.gif\">\r\n"
                                u"<pg.param name=\"imagefolder\" value=\"(USER)\">\r\n"
                                u"<pg.param name=\"midi\" value=\"qelmid.mid\">\r\n"
                                u"<pg.param name=\"midifolder\" value=\"(USER)\">\r\n"
                                u"<pg.param name=\"imagemode\" value=\"gif\">\r\n"
                                u"<pg.param name=\"midimode\" value=\"1\">\r\n"
                                u"<pg.param name=\"showimage\" value=\"1\">\r\n"
                                u"<pg.param name=\"playmidi\" value=\"1\">\r\n"
                                u"<pg.param name=\"from\" value=\"38353\">\r\n"
                                u"<pg.param name=\"to\" value=\"38383\">\r\n"
                                u"<pg.param name=\"link\" value=\"UID:4711\">\r\n";

using TextMember = HRESULT (QelPlugin::*)(BSTR*);

/// The members that give texts, in the order of their slots.
inline constexpr struct
{
    TextView Name;
    TextMember Read;
} TextMembers[] = {
    {u"InitialScript", &QelPlugin::get_InitialScript},
    {u"Output", &QelPlugin::get_Output},
    {u"TextFunction", &QelPlugin::get_TextFunction},
    {u"TextRequirementsServer", &QelPlugin::get_TextRequirementsServer},
    {u"TextRequirementsClient", &QelPlugin::get_TextRequirementsClient},
    {u"TextSettings", &QelPlugin::get_TextSettings},
    {u"TextConfig", &QelPlugin::get_TextConfig},
    {u"Description", &QelPlugin::get_Description},
    {u"PreviewImageFilename", &QelPlugin::get_PreviewImageFilename},
    {u"LogoFilename", &QelPlugin::get_LogoFilename},
    {u"Script", &QelPlugin::get_Script},
    {u"ErrorText", &QelPlugin::get_ErrorText},
};

/// Reads a text, with one of the members above. The call has to succeed.
Text Read(QelPlugin& myPlugin, TextMember myMember);
HRESULT Write(QelPlugin& myPlugin, TextView myScript);

/// Fails the check if runs of the operation keep memory or open files, or leave more and more temporary files.
void ExpectNoGrowth(const std::string& myWhat, const std::function<void()>& myOperation);

} // namespace qel::host

#include "check/CheckSupport.h"

#include "site/siteFiles.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include <dlfcn.h>
#include <malloc.h>

namespace qel::host
{

namespace
{

constexpr size_t ShownLength = 160;

std::string Hexadecimal(uint32_t myNumber)
{
    std::array<char, 16> theText{};
    std::snprintf(theText.data(), theText.size(), "0x%08X", static_cast<unsigned>(myNumber));
    return theText.data();
}

constexpr std::pair<HRESULT, const char*> ResultNames[] = {
    {S_OK, "S_OK"},
    {S_FALSE, "S_FALSE"},
    {E_POINTER, "E_POINTER"},
    {E_NOINTERFACE, "E_NOINTERFACE"},
    {E_FAIL, "E_FAIL"},
    {CLASS_E_CLASSNOTAVAILABLE, "CLASS_E_CLASSNOTAVAILABLE"},
    {CLASS_E_NOAGGREGATION, "CLASS_E_NOAGGREGATION"},
    {CO_E_CLASSSTRING, "CO_E_CLASSSTRING"},
    {DISP_E_UNKNOWNINTERFACE, "DISP_E_UNKNOWNINTERFACE"},
    {DISP_E_MEMBERNOTFOUND, "DISP_E_MEMBERNOTFOUND"},
    {DISP_E_TYPEMISMATCH, "DISP_E_TYPEMISMATCH"},
    {DISP_E_UNKNOWNNAME, "DISP_E_UNKNOWNNAME"},
    {DISP_E_EXCEPTION, "DISP_E_EXCEPTION"},
    {DISP_E_BADINDEX, "DISP_E_BADINDEX"},
    {DISP_E_BADPARAMCOUNT, "DISP_E_BADPARAMCOUNT"},
    {DISP_E_PARAMNOTOPTIONAL, "DISP_E_PARAMNOTOPTIONAL"},
    {QEL_RESULT(0x800A0006U), "error 6"},
    {QEL_RESULT(0x800A0009U), "error 9"},
};

std::string NameOfResult(HRESULT myResult)
{
    const auto* const myNamed = std::ranges::find(ResultNames, myResult, &std::pair<HRESULT, const char*>::first);
    const std::string theNumber = Hexadecimal(static_cast<uint32_t>(myResult));
    return myNamed == std::end(ResultNames) ? theNumber : theNumber + " (" + myNamed->second + ")";
}

void ExpectShown(const std::string& myWhat, bool myHolds, const std::string& myExpected, const std::string& myGot)
{
    if (!myHolds)
    {
        FailCheck(myWhat + ": " + myExpected, myGot);
    }
    NoteStep(myWhat);
}

std::string FourBytes(size_t myNumber)
{
    std::string theBytes;
    for (int i = 0; i < 4; ++i)
    {
        theBytes += static_cast<char>(myNumber >> (8 * i) & 0xFF);
    }
    return theBytes;
}

std::string ArchiveEntry(std::string_view myName, std::string_view myBytes)
{
    return FourBytes(myName.size()).append(myName) + FourBytes(myBytes.size()).append(myBytes);
}

/// The memory that is in use in this process.
size_t BytesInUse()
{
    // A sanitizer's own allocator does not show in the system's figures.
    using Counter = size_t (*)();
    static const auto myCounter =
        reinterpret_cast<Counter>(dlsym(RTLD_DEFAULT, "__sanitizer_get_current_allocated_bytes"));
    const struct mallinfo2 myMemory = mallinfo2();
    return myCounter != nullptr ? myCounter() : myMemory.uordblks + myMemory.hblkhd;
}

/// The open files and the temporary files of this process.
std::array<int64_t, 2> FilesInUse()
{
    return {std::distance(fs::directory_iterator("/proc/self/fd"), {}),
            std::distance(fs::recursive_directory_iterator(fs::temp_directory_path()), {})};
}

} // namespace

void FailCheck(std::string myExpected, std::string myGot)
{
    throw Outcome{CheckResult::Failed, std::move(myExpected), std::move(myGot)};
}

void ExpectResult(const std::string& myWhat, HRESULT myExpected, HRESULT myGot)
{
    ExpectShown(myWhat, myExpected == myGot, NameOfResult(myExpected), NameOfResult(myGot));
}

void ExpectNumber(const std::string& myWhat, int64_t myExpected, int64_t myGot)
{
    ExpectShown(myWhat, myExpected == myGot, std::to_string(myExpected), std::to_string(myGot));
}

void ExpectText(const std::string& myWhat, TextView myExpected, TextView myGot)
{
    const auto myParting = std::ranges::mismatch(myExpected, myGot).in1 - myExpected.begin();
    const size_t myStart = static_cast<size_t>(std::max<std::ptrdiff_t>(myParting - 20, 0));
    const std::string myPlace = myStart == 0 ? "" : "from character " + std::to_string(myStart + 1) + " ";
    ExpectShown(myWhat, myExpected == myGot, myPlace + Shown(myExpected.substr(myStart)), Shown(myGot.substr(myStart)));
}

void ExpectPart(const std::string& myWhat, TextView myPart, TextView myGot)
{
    ExpectShown(myWhat, myGot.find(myPart) != TextView::npos, "a text with " + Shown(myPart), Shown(myGot));
}

void Expect(const std::string& myWhat, bool myHolds)
{
    if (!myHolds)
    {
        FailCheck(myWhat, "this does not hold");
    }
    NoteStep(myWhat);
}

std::string Shown(TextView myText)
{
    std::string theText = "\"";
    for (const char16_t myUnit : myText.substr(0, ShownLength))
    {
        std::array<char, 8> myEscape{};
        std::snprintf(myEscape.data(), myEscape.size(), "\\u%04x", static_cast<unsigned>(myUnit));
        const bool isControl = myUnit < u' ' || (myUnit >= 0x7F && myUnit < 0xA0);
        const bool isPlain = !isControl && (myUnit < 0xD800 || myUnit > 0xDFFF);
        theText += myUnit == u'\r' ? "\\r" : myUnit == u'\n' ? "\\n" : isPlain ? ToUtf8({&myUnit, 1}) : myEscape.data();
    }
    return theText + (myText.size() > ShownLength ? "\"..." : "\"");
}

FailureTexts::FailureTexts()
{
    ComPtr<IErrorInfo> myInfo;
    if (GetErrorInfo(0, myInfo.Receive()) == S_OK)
    {
        Bstr mySource;
        Bstr myDescription;
        myInfo->GetSource(mySource.Pointer());
        myInfo->GetDescription(myDescription.Pointer());
        Source = mySource.Value();
        Description = myDescription.Value();
    }
}

OpenedComponent::OpenedComponent(const Trial& myTrial) : myLibrary(dlopen(myTrial.File.c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (!myLibrary)
    {
        FailCheck(Opens, dlerror());
    }
}

void* OpenedComponent::AddressOf(const char* myName) const
{
    void* const theAddress = dlsym(myLibrary.get(), myName);
    Expect(std::string("the component exports ") + myName, theAddress != nullptr);
    return theAddress;
}

ComPtr<IClassFactory> OpenedComponent::Factory(const CLSID& myClass) const
{
    void* theFactory = nullptr;
    ExpectResult("DllGetClassObject", S_OK, ClassObject(&myClass, &IID_IClassFactory, &theFactory));
    Expect("DllGetClassObject gives an object", theFactory != nullptr);
    return ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(theFactory));
}

void HostState::Note(const char* myName)
{
    Calls.emplace_back(myName);
    if (Calls.size() == FailingCall)
    {
        throw Reason;
    }
}

HRESULT CheckedDatabase::SeekUID(BSTR* myUID, int32_t* myFirst, int32_t* mySecond)
{
    const bool isRight = myFirst != nullptr && mySecond != nullptr && *myFirst == 0 && *mySecond == 0;
    return Accept(myUID, [&](const Text& myText)
                  { myState.Note(isRight && myText == u"4711" ? "SeekUID" : "SeekUID of something else"); });
}

ServedPlugin::ServedPlugin(const OpenedComponent& myComponent, const Trial& myTrial)
    : Helper(MakeCounted<CheckedHelper>(State)), Database(MakeCounted<CheckedDatabase>(State)),
      Plugin(myComponent.Plugin())
{
    const fs::path& myRoot = myTrial.Folder;
    State.Root = FromUtf8(myRoot.string()) + u"/";
    for (const char* myFolder : {"media", "images", "files", "data"})
    {
        fs::create_directory(myRoot / myFolder);
    }
    WriteWholeFile(myRoot / "data/archivo.dat", "qelarchive1.0" + ArchiveEntry("\\qelspr.gif", PictureBytes()) +
                                                    ArchiveEntry("\\qelmid.mid", TuneBytes) + FourBytes(0));
    WriteWholeFile(myRoot / "data/nota.pdf", "paper");
    QelBuildHelper* myHelper = Helper.Get();
    QelDatabase* myDatabase = Database.Get();
    ExpectResult("QelBuildHelper", S_OK, Plugin->putref_QelBuildHelper(&myHelper));
    ExpectResult("QelDatabase", S_OK, Plugin->putref_QelDatabase(&myDatabase));
}

ServedPlugin::~ServedPlugin()
{
    QelBuildHelper* myNoHelper = nullptr;
    QelDatabase* myNoDatabase = nullptr;
    Plugin->putref_QelBuildHelper(&myNoHelper);
    Plugin->putref_QelDatabase(&myNoDatabase);
}

Text ServedPlugin::Output(TextView myScript) const
{
    ExpectResult("writing Script", S_OK, Write(*Plugin.Get(), myScript));
    return Read(*Plugin.Get(), &QelPlugin::get_Output);
}

std::string_view PictureBytes()
{
    static constexpr auto myBytes =
        std::to_array<unsigned char>({0x47, 0x49, 0x46, 0x38, 0x39, 0x61, 0x03, 0x00, 0x02, 0x00, 0x80, 0x00, 0x00,
                                      0x00, 0x00, 0x00, 0xff, 0xff, 0xff, 0x2c, 0x00, 0x00, 0x00, 0x00, 0x03, 0x00,
                                      0x02, 0x00, 0x00, 0x02, 0x05, 0x04, 0x41, 0x10, 0x04, 0x51, 0x00, 0x3b});
    return {reinterpret_cast<const char*>(myBytes.data()), myBytes.size()};
}

Text Read(QelPlugin& myPlugin, TextMember myMember)
{
    Bstr theText;
    const auto* const myNamed =
        std::ranges::find_if(TextMembers, [&](const auto& myOne) { return myOne.Read == myMember; });
    ExpectResult("reading " + ToUtf8(myNamed->Name), S_OK, (myPlugin.*myMember)(theText.Pointer()));
    return theText.Value();
}

HRESULT Write(QelPlugin& myPlugin, TextView myScript)
{
    Bstr myText(myScript);
    return myPlugin.put_Script(myText.Pointer());
}

void ExpectNoGrowth(const std::string& myWhat, const std::function<void()>& myOperation)
{
    constexpr size_t WarmUp = 20; // tables and caches have their size by then
    constexpr size_t Rounds = 100;
    constexpr size_t SmallestBlock = 16;
    for (size_t i = 0; i < WarmUp; ++i)
    {
        myOperation();
    }
    const auto myFirstFiles = FilesInUse(); // takes memory itself
    const size_t myStart = BytesInUse();
    for (size_t i = 0; i < Rounds; ++i)
    {
        myOperation();
    }
    const size_t myEnd = BytesInUse();
    const auto myLastFiles = FilesInUse();
    const size_t myGrowth = myEnd > myStart ? myEnd - myStart : 0;
    ExpectShown(myWhat, myGrowth < Rounds * SmallestBlock, "no memory kept",
                std::to_string(myGrowth) + " bytes after " + std::to_string(Rounds) + " rounds");
    ExpectNumber("open files after " + myWhat, myFirstFiles[0], myLastFiles[0]);
    ExpectNumber("temporary files after " + myWhat, myFirstFiles[1], myLastFiles[1]);
}

} // namespace qel::host

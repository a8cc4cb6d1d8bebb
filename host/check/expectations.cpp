#include "check/expectations.h"

#include "check/runCheck.h"
#include "check/system.h"
#include "com/Bstr.h"
#include "common/paths.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

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

/// The open files and the temporary files of this process.
std::array<int64_t, 2> FilesInUse()
{
    return {OpenFileCount(), std::distance(fs::recursive_directory_iterator(fs::temp_directory_path()), {})};
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
    const size_t myStart = MemoryInUse();
    for (size_t i = 0; i < Rounds; ++i)
    {
        myOperation();
    }
    const size_t myEnd = MemoryInUse();
    const auto myLastFiles = FilesInUse();
    const size_t myGrowth = myEnd > myStart ? myEnd - myStart : 0;
    ExpectShown(myWhat, myGrowth < Rounds * SmallestBlock, "no memory kept",
                std::to_string(myGrowth) + " bytes after " + std::to_string(Rounds) + " rounds");
    ExpectNumber("open files after " + myWhat, myFirstFiles[0], myLastFiles[0]);
    ExpectNumber("temporary files after " + myWhat, myFirstFiles[1], myLastFiles[1]);
}

std::string ReadFile(const fs::path& myFile)
{
    std::ifstream myStream(myFile, std::ios::binary);
    Expect("the file " + TextOf(myFile.filename()) + " can be read", myStream.is_open());
    return {std::istreambuf_iterator<char>(myStream), {}};
}

void WriteFile(const fs::path& myFile, std::string_view myBytes)
{
    std::ofstream myStream(myFile, std::ios::binary);
    myStream.write(myBytes.data(), static_cast<std::streamsize>(myBytes.size()));
    myStream.close();
    Expect("the file " + TextOf(myFile.filename()) + " can be written", myStream.good());
}

void ExpectFile(const std::string& myWhat, std::string_view myBytes, const fs::path& myFile)
{
    ExpectText(myWhat, FromWindows1252(myBytes), FromWindows1252(ReadFile(myFile)));
}

} // namespace qel::host

/// What checks are made of: each expectation throws an Outcome that fails the check, or notes what went well.
#pragma once

#include "check/Check.h"
#include "com/ComPtr.h"
#include "text/text.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace qel::host
{

[[noreturn]] void FailCheck(std::string myExpected, std::string myGot);
/// Results are shown with their names, as far as they have one.
void ExpectResult(const std::string& myWhat, HRESULT myExpected, HRESULT myGot);
void ExpectNumber(const std::string& myWhat, int64_t myExpected, int64_t myGot);
/// Texts are shown from a little before their first difference.
void ExpectText(const std::string& myWhat, TextView myExpected, TextView myGot);
void ExpectPart(const std::string& myWhat, TextView myPart, TextView myGot);
/// `myWhat` is a whole sentence.
void Expect(const std::string& myWhat, bool myHolds);

/// A text in UTF-8, shortened, with escapes for what does not show.
std::string Shown(TextView myText);

/// The source and the description of the thread's last failure, which is removed; empty without one.
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

/// Fails the check if runs of the operation keep memory or open files, or leave more and more temporary files.
void ExpectNoGrowth(const std::string& myWhat, const std::function<void()>& myOperation);

// ---- Files of a check; they throw an Outcome that fails it ----

std::string ReadFile(const std::filesystem::path& myFile);
void WriteFile(const std::filesystem::path& myFile, std::string_view myBytes);
/// The file has these bytes.
void ExpectFile(const std::string& myWhat, std::string_view myBytes, const std::filesystem::path& myFile);

} // namespace qel::host

/// What the fuzzers share. Each reads one made-up input and ends the process where a promise is not kept.
#pragma once

#include "text/text.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

/// Called by the fuzzer for each input.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* myBytes, size_t mySize);

namespace qel
{

/// Ends the process unless the condition holds; the fuzzer then keeps the input.
inline void Demand(bool myCondition, const char* myPromise)
{
    if (!myCondition)
    {
        std::fprintf(stderr, "Not kept: %s\n", myPromise);
        std::abort();
    }
}

inline std::string_view Characters(const uint8_t* myBytes, size_t mySize)
{
    return {reinterpret_cast<const char*>(myBytes), mySize};
}

/// A folder of this process alone, in $TMPDIR, which goes at its end.
class WorkFolder
{
public:
    WorkFolder() : myPath((std::filesystem::temp_directory_path() / "fuzz-XXXXXX").string())
    {
        Demand(mkdtemp(myPath.data()) != nullptr, "there is a temporary folder");
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    ~WorkFolder()
    {
        std::error_code myIgnored;
        std::filesystem::remove_all(myPath, myIgnored);
    }

    /// The path of a name in it, for the system.
    std::string Native(std::string_view myName) const { return myPath + "/" + std::string(myName); }

    /// The same for the logic.
    Text Logical(std::string_view myName) const
    {
        const std::string myNative = Native(myName); // of plain characters alone
        Text thePath(myNative.begin(), myNative.end());
        return ReplaceAll(thePath, u"/", u"\\");
    }

    void Write(std::string_view myName, std::string_view myContent) const
    {
        std::ofstream(Native(myName), std::ios::binary)
            .write(myContent.data(), static_cast<std::streamsize>(myContent.size()));
    }

private:
    std::string myPath;
};

inline std::string ContentOf(const std::filesystem::path& myPath)
{
    std::ifstream myFile(myPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(myFile), {}};
}

} // namespace qel

/// What the fuzzers share. Each reads one generated input and ends the process if a promise is broken.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
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

/// The smallest GIF picture: one pixel.
inline constexpr std::string_view
    SmallestPicture("GIF89a\1\0\1\0\x80\0\0\0\0\0\xff\xff\xff,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 35);

} // namespace qel

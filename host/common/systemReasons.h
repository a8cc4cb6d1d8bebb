/// Why an operation of the system failed, in words for the user that say what to do next.
#pragma once

#include <string>
#include <system_error>

namespace qel::host
{

inline constexpr const char* DiskIsFull = "the disk is full; make room and try again";

/// The reason for an error of the system; the system's own text for one that is not expected.
std::string ReasonOf(const std::error_code& myError);

} // namespace qel::host

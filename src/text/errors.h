/// The one type that a failing operation throws, and the numbers that it carries.
#pragma once

#include "text/text.h"

namespace qel
{

/// A failure. `Description` is for the site author: in Spanish unless it comes from the host.
struct Error
{
    int32_t Number;
    Text Description;
};

/// The numbers of this component's own failures. A failed call into the host carries the host's number instead: the
/// low 16 bits of a result of the form 0x800A...., else the result itself, which is negative.
namespace ErrorNumber
{
inline constexpr int32_t InvalidArgument = 5;
inline constexpr int32_t Overflow = 6;
inline constexpr int32_t OutOfMemory = 7;
inline constexpr int32_t SubscriptOutOfRange = 9;
inline constexpr int32_t TypeMismatch = 13;
inline constexpr int32_t BadFileName = 52;
inline constexpr int32_t FileNotFound = 53;
inline constexpr int32_t FileAlreadyOpen = 55;
inline constexpr int32_t DeviceError = 57;
inline constexpr int32_t FileAlreadyExists = 58;
inline constexpr int32_t DiskFull = 61;
inline constexpr int32_t InputPastEnd = 62;
inline constexpr int32_t PermissionDenied = 70;
inline constexpr int32_t PathAccess = 75;
inline constexpr int32_t PathNotFound = 76;
inline constexpr int32_t ObjectNotSet = 91;
inline constexpr int32_t InvalidPicture = 481;
} // namespace ErrorNumber

/// The Spanish description of one of the numbers above; for any other number a general one.
TextView ErrorDescription(int32_t myNumber);

/// For a catch clause: the current exception as an Error. Running out of memory is error 7; any exception that is not
/// an Error is error 5. Throws std::bad_alloc if there is no memory for the description.
Error CurrentError();

/// Throws the Error with this number and its description.
[[noreturn]] void Raise(int32_t myNumber);

} // namespace qel

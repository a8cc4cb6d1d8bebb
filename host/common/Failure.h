/// What ends a command of qelhost: `what()` says what is wrong and what to do next, in UTF-8, without a full stop.
#pragma once

#include <stdexcept>

namespace qel::host
{

/// Something failed; the program ends with 1.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The command was used in a way that cannot work; the program ends with 2.
class UsageFailure : public Failure
{
public:
    using Failure::Failure;
};

} // namespace qel::host

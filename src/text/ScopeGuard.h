/// Runs an operation at the end of a scope, however the scope is left.
#pragma once

#include <utility>

namespace qel
{

/// `const ScopeGuard myGuard([&] { Undo(); });` The operation must not throw.
template <class Operation>
class ScopeGuard
{
public:
    explicit ScopeGuard(Operation myEndOfScope) : myOperation(std::move(myEndOfScope)) {}
    ScopeGuard(const ScopeGuard&) = delete;
    ScopeGuard& operator=(const ScopeGuard&) = delete;
    ~ScopeGuard() { myOperation(); }

private:
    Operation myOperation;
};

} // namespace qel

/// Keeps two programs of one user from working with the component at the same time: it works in one temporary folder
/// per user.
#pragma once

#include <memory>
#include <ostream>

namespace qel::host
{

/// The message before a wait for the lock.
inline constexpr const char* AnotherIsWorking =
    "Another qelhost of yours is building, or has a dialog open; waiting until it has finished.";

/// Holds the user's lock while it lives. The system releases it if the program dies.
class UserLock
{
public:
    /// Waits for the lock, and says so if it has to. Failure: the lock file cannot be created or locked.
    explicit UserLock(std::ostream& theMessages);

private:
    std::shared_ptr<const void> myFile; ///< the system's
};

} // namespace qel::host

#include "platform/linux/environment.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <string_view>
#include <unistd.h>

namespace qel
{

std::string PathFromEnvironment(const char* myVariable)
{
    const char* const myValue = secure_getenv(myVariable);
    const std::string_view myPath = myValue == nullptr ? "" : myValue;
    return myPath.starts_with('/') ? std::string(myPath.substr(0, myPath.find_last_not_of('/') + 1)) : std::string();
}

std::string HomeFolder()
{
    std::string theHome = PathFromEnvironment("HOME");
    if (theHome.empty())
    {
        std::array<char, 16384> myTexts{};
        passwd myRecord{};
        passwd* myUser = nullptr;
        getpwuid_r(geteuid(), &myRecord, myTexts.data(), myTexts.size(), &myUser);
        theHome = myUser != nullptr && *myUser->pw_dir == '/' ? myUser->pw_dir : "";
    }
    return theHome;
}

} // namespace qel

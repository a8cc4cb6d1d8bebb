#include "common/SharedLibrary.h"

#include "common/Failure.h"

#include <utility>

#include <dlfcn.h>

namespace qel::host
{

SharedLibrary::SharedLibrary(const std::filesystem::path& myFile)
    // The system would search for a name without a folder in its library folders.
    : myHandle(dlopen(std::filesystem::absolute(myFile).c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (myHandle == nullptr)
    {
        throw Failure(dlerror());
    }
}

SharedLibrary::SharedLibrary(SharedLibrary&& myOther) noexcept : myHandle(std::exchange(myOther.myHandle, nullptr)) {}

SharedLibrary& SharedLibrary::operator=(SharedLibrary&& myOther) noexcept
{
    std::swap(myHandle, myOther.myHandle);
    return *this;
}

SharedLibrary::~SharedLibrary()
{
    if (myHandle != nullptr)
    {
        dlclose(myHandle);
    }
}

void* SharedLibrary::AddressOf(const char* myName) const
{
    return dlsym(myHandle, myName);
}

std::filesystem::path FileOfAddress(const void* myAddress)
{
    Dl_info myInfo{};
    return dladdr(myAddress, &myInfo) != 0 ? myInfo.dli_fname : std::filesystem::path();
}

} // namespace qel::host

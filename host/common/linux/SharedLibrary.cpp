#include "common/SharedLibrary.h"

#include "common/Failure.h"
#include "common/printable.h"

#include <fstream>
#include <string>
#include <system_error>

#include <dlfcn.h>

namespace qel::host
{

namespace
{

/// Why the system does not open a file as a shared library. `myReason` is what the loader says.
std::string LoadingProblem(const std::filesystem::path& myFile, const std::string& myReason)
{
    constexpr std::size_t HeaderSize = 64; // of the smallest file that the loader looks at
    const std::string myName = Printable(myFile.native());
    std::error_code myError;
    const auto myType = std::filesystem::status(myFile, myError).type();
    if (myType == std::filesystem::file_type::not_found)
    {
        return "there is no file " + myName;
    }
    if (myType == std::filesystem::file_type::directory)
    {
        return myName + " is a folder, not a shared library";
    }
    std::ifstream myContent(myFile, std::ios::binary);
    if (!myContent)
    {
        return "there is no permission to read " + myName;
    }
    std::string myHeader(HeaderSize, '\0');
    myContent.read(myHeader.data(), HeaderSize);
    if (!myContent || !myHeader.starts_with("\177ELF"))
    {
        return myName + " is not a shared library";
    }
    return "the system cannot load " + myName + " (" + Printable(myReason) + ")";
}

} // namespace

SharedLibrary::SharedLibrary(const std::filesystem::path& myFile)
    // The system would search for a name without a folder in its library folders.
    : myHandle(dlopen(std::filesystem::absolute(myFile).c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (myHandle == nullptr)
    {
        throw Failure(LoadingProblem(myFile, dlerror()));
    }
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

#include "platform/linux/componentFile.h"

#include "platform/linux/nativePath.h"

#include <cstdint>
#include <dlfcn.h>
#include <fstream>
#include <sstream>
#include <string_view>

namespace qel
{
namespace
{

/// The file that an address was mapped from, as the system recorded it; empty if it is unknown.
std::string MappedFile(uintptr_t myAddress)
{
    constexpr std::string_view Deleted = " (deleted)";
    std::ifstream myMappings("/proc/self/maps");
    for (std::string myLine; std::getline(myMappings, myLine);)
    {
        std::istringstream myFields(myLine);
        uintptr_t myStart = 0;
        uintptr_t myEnd = 0;
        char myDash = 0;
        myFields >> std::hex >> myStart >> myDash >> myEnd;
        const size_t myPath = myLine.find('/');
        if (myAddress >= myStart && myAddress < myEnd && myPath != std::string::npos)
        {
            const size_t myTail = myLine.ends_with(Deleted) ? Deleted.size() : 0;
            return myLine.substr(myPath, myLine.size() - myPath - myTail);
        }
    }
    return {};
}

} // namespace

std::string NativeComponentFile()
{
    // The loader knows the name by which the library was requested; for a program that is the name on its command line.
    Dl_info myLibrary = {};
    if (dladdr(reinterpret_cast<const void*>(&NativeComponentFile), &myLibrary) != 0 && *myLibrary.dli_fname == '/')
    {
        return myLibrary.dli_fname;
    }
    std::string theFile = MappedFile(reinterpret_cast<uintptr_t>(&NativeComponentFile));
    return theFile.empty() && myLibrary.dli_fname != nullptr ? RealPath(myLibrary.dli_fname) : theFile;
}

} // namespace qel

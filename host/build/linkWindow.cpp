#include "build/linkWindow.h"

#include "text/encodings.h"
#include "text/errors.h"

#include <filesystem>

#include <dlfcn.h>

namespace qel::host
{

namespace
{

LinkWindowEntry* LoadEntry()
{
    const auto myFile = std::filesystem::read_symlink("/proc/self/exe").parent_path() / LinkWindowFile;
    // Never closed: the toolkit stays once it is there.
    void* const myLibrary = dlopen(myFile.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const theEntry = myLibrary == nullptr ? nullptr : dlsym(myLibrary, LinkWindowEntryName);
    if (theEntry == nullptr)
    {
        const char* const myReason = dlerror();
        throw Error{ErrorNumber::FileNotFound,
                    u"qelhost has no window to choose a link in: " + FromUtf8(myReason == nullptr ? "" : myReason)};
    }
    return reinterpret_cast<LinkWindowEntry*>(theEntry);
}

} // namespace

bool ShowLinkWindow(LinkChoice& theChoice)
{
    static LinkWindowEntry* const theEntry = LoadEntry(); // tried again the next time if it fails
    return theEntry(theChoice);
}

} // namespace qel::host

#include "site/fileOperations.h"

#include "platform/linux/Descriptor.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace qel::host
{

namespace fs = std::filesystem;

const bool HoldsAllNames = true;

fs::file_type EntryType(const fs::path& myPath, std::error_code& theError)
{
    const fs::file_type theType = fs::symlink_status(myPath, theError).type();
    if (theType == fs::file_type::not_found)
    {
        theError.clear();
    }
    return theType;
}

std::vector<fs::path> EntryNames(const fs::path& myFolder, std::error_code& theError)
{
    std::vector<fs::path> theNames;
    for (fs::directory_iterator myEntry(myFolder, theError), myEnd; !theError && myEntry != myEnd;
         myEntry.increment(theError))
    {
        theNames.push_back(myEntry->path().filename());
    }
    return theNames;
}

fs::path RealFolderPath(const fs::path& myFolder, std::error_code& theError)
{
    return fs::canonical(myFolder, theError);
}

void CopyContent(const fs::path& mySource, const fs::path& myTarget, std::error_code& theError)
{
    fs::copy_file(mySource, myTarget, fs::copy_options::overwrite_existing, theError);
}

void RenameEntry(const fs::path& myFile, const fs::path& myTarget, std::error_code& theError)
{
    fs::rename(myFile, myTarget, theError);
}

namespace
{

void Flush(const fs::path& myPath, std::error_code& theError)
{
    theError.clear();
    const Descriptor myEntry(open(myPath.c_str(), O_RDONLY | O_CLOEXEC));
    const bool myIsFlushed = myEntry.IsOpen() && Retrying([&] { return fsync(myEntry.Handle()); }) == 0;
    // Some file systems cannot flush a folder.
    if (!myIsFlushed && (!myEntry.IsOpen() || errno != EINVAL))
    {
        theError = std::error_code(errno, std::generic_category());
    }
}

} // namespace

void FlushFile(const fs::path& myFile, std::error_code& theError)
{
    Flush(myFile, theError);
}

void FlushFolder(const fs::path& myFolder, std::error_code& theError)
{
    Flush(myFolder, theError);
}

uintmax_t FreeSpace(const fs::path& myFolder, std::error_code& theError)
{
    return fs::space(myFolder, theError).available;
}

bool IsHidden(const fs::path& myPath)
{
    return myPath.filename().native().starts_with('.');
}

} // namespace qel::host

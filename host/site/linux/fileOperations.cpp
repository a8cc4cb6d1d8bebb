#include "site/fileOperations.h"

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

bool IsHidden(const fs::path& myPath)
{
    return myPath.filename().native().starts_with('.');
}

} // namespace qel::host

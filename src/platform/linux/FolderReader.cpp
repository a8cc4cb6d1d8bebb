#include "platform/linux/FolderReader.h"

#include "platform/linux/SystemErrors.h"

#include <cerrno>
#include <sys/stat.h>

namespace qel
{

FolderReader::FolderReader(const std::string& myFolder) : myStream(opendir(myFolder.empty() ? "." : myFolder.c_str()))
{
}

const dirent* FolderReader::Next()
{
    errno = 0;
    const dirent* const theEntry = readdir(myStream.get());
    if (theEntry == nullptr && errno != 0 && errno != ENOENT) // ENOENT: the folder was removed meanwhile
    {
        RaiseSystemError(errno);
    }
    return theEntry;
}

EntryKind FolderReader::KindOf(const dirent& myEntry) const
{
    if (myEntry.d_type != DT_LNK && myEntry.d_type != DT_UNKNOWN)
    {
        return myEntry.d_type == DT_REG   ? EntryKind::File
               : myEntry.d_type == DT_DIR ? EntryKind::Folder
                                          : EntryKind::Other;
    }
    struct stat myFacts = {};
    if (fstatat(Handle(), myEntry.d_name, &myFacts, 0) != 0)
    {
        return EntryKind::Other;
    }
    return S_ISREG(myFacts.st_mode) ? EntryKind::File : S_ISDIR(myFacts.st_mode) ? EntryKind::Folder : EntryKind::Other;
}

} // namespace qel

#include "platform/linux/FolderReader.h"

#include "platform/linux/systemErrors.h"

#include <cerrno>
#include <sys/stat.h>

namespace qel
{

EntryKind KindOfMode(mode_t myMode)
{
    switch (myMode & S_IFMT)
    {
    case S_IFREG:
        return EntryKind::File;
    case S_IFDIR:
        return EntryKind::Folder;
    case S_IFLNK:
        return EntryKind::Link;
    default:
        return EntryKind::Other;
    }
}

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
        return KindOfMode(static_cast<mode_t>(DTTOIF(myEntry.d_type)));
    }
    struct stat myFacts = {};
    return fstatat(dirfd(myStream.get()), myEntry.d_name, &myFacts, 0) == 0 ? KindOfMode(myFacts.st_mode)
                                                                            : EntryKind::Other;
}

} // namespace qel

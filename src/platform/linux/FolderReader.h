/// Reads the entries of a folder one after the other, in the file system's order, "." and ".." among them.
#pragma once

#include "platform/Files.h"

#include <dirent.h>
#include <memory>
#include <string>
#include <sys/types.h>

namespace qel
{

/// What a file's mode says that it is.
EntryKind KindOfMode(mode_t myMode);

class FolderReader
{
public:
    /// Opens a folder; the empty text is the current one. When that fails IsOpen is false and errno says why.
    explicit FolderReader(const std::string& myFolder);

    bool IsOpen() const { return myStream != nullptr; }

    /// The next entry, or null after the last one. It stays valid until the next call. Error 57: reading failed.
    const dirent* Next();

    /// What an entry is, or what it leads to; never a link.
    EntryKind KindOf(const dirent& myEntry) const;

private:
    struct Closer
    {
        void operator()(DIR* myOpenStream) const { closedir(myOpenStream); }
    };
    std::unique_ptr<DIR, Closer> myStream;
};

} // namespace qel

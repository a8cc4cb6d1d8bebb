/// Reads the entries of a folder one after the other, in the file system's order, "." and ".." among them.
#pragma once

#include "platform/Files.h"

#include <dirent.h>
#include <memory>
#include <string>
#include <sys/types.h>

namespace qel
{

/// The kind of entry that a file's mode describes.
EntryKind KindOfMode(mode_t myMode);

class FolderReader
{
public:
    /// Opens a folder; the empty text is the current one. If that fails, IsOpen is false and errno has the reason.
    explicit FolderReader(const std::string& myFolder);

    bool IsOpen() const { return myStream != nullptr; }

    /// The next entry, or null after the last one. It is valid until the next call. Error 57: reading failed.
    const dirent* Next();

    /// The kind of an entry, or of its target if it is a link; never Link.
    EntryKind KindOf(const dirent& myEntry) const;

private:
    struct Closer
    {
        void operator()(DIR* myOpenStream) const { closedir(myOpenStream); }
    };
    std::unique_ptr<DIR, Closer> myStream;
};

} // namespace qel

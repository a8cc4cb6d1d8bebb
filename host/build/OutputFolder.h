/// The folder that a build writes: the pages, flat, and a subfolder each for pictures, tunes and other files.
///
/// It is the site's own from when qelhost made it or found it empty: a list of the pages that were written, `.qelhost`,
/// marks it. Nothing is removed from a folder that is not marked, from a link, or below a folder that somebody put in.
#pragma once

#include "site/Site.h"

#include <filesystem>
#include <set>
#include <string>
#include <string_view>

namespace qel::host
{

class OutputFolder
{
public:
    /// Makes the folder and its subfolders if they are not there. Failure: one of them is not the site's own.
    explicit OutputFolder(const std::filesystem::path& myFolder);

    /// Empties the subfolders and removes the pages that `myPages` no longer holds.
    void Empty(const std::set<std::string>& myPages);

    /// Brings the copies of the records' files up to date, for a build that leaves the other pages as they are.
    void Refresh(const std::vector<Record>& myRecords, const std::filesystem::path& myDataFolder) const;

    /// Writes a page.
    void Write(const std::string& myPage, std::string_view myBytes);

private:
    void StoreList() const;

    std::filesystem::path myFolder;
    std::set<std::string> myWritten;
};

} // namespace qel::host

/// The folder that a build writes: the pages, flat, a subfolder each for pictures, tunes and other files, and what the
/// site's folder `static` contains.
///
/// It belongs to the site once qelhost has made it or found it empty: a list of what was written, `.qelhost`, marks it.
/// Nothing is replaced or removed in a folder that is not marked, through a link, or below a folder that somebody put
/// in; a file that somebody put in stays unless it has the name of a page.
///
/// Each line of the list is `:unfinished`, while a build runs, so that an interrupted one is recognised; the name of a
/// page; a static file, such as `/css/style.css`; or a folder that was made for one, such as `/css/`.
///
/// Order of calls: Empty in a build of all pages; ClaimStatic, CopyStatic and Write as often as needed; Finish.
#pragma once

#include "build/staticFiles.h"
#include "site/Site.h"
#include "site/siteFiles.h"

#include <array>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qel::host
{

/// The subfolders for the files of modules and records.
inline constexpr std::array OutputSubfolders{"images", "media", "files"};

class OutputFolder
{
public:
    /// Makes the folder and its subfolders if they are not there, and removes what an interrupted build could not
    /// complete. Failure: one of them does not belong to the site.
    explicit OutputFolder(const std::filesystem::path& myFolder);

    /// True when the last build was not completed: files of any page may be missing or incomplete.
    bool WasInterrupted() const { return myWasInterrupted; }

    /// Empties the subfolders, removes the pages that `myPages` no longer contains, and lists those that it contains as
    /// written. To write the list again for each page would take time in the square of their number.
    void Empty(const std::set<std::string>& myPages);

    /// Removes the static files of earlier builds that are not among these, and returns those of these that may be
    /// written. The reasons for the others are added to the problems.
    std::vector<StaticFile> ClaimStatic(const std::vector<StaticFile>& myFiles, std::vector<std::string>& theProblems);

    /// Copies a static file that may be written, unless it is there with the same bytes.
    void CopyStatic(const StaticFile& myFile) const;

    /// Brings the copies of the records' files up to date, for a build that leaves the other pages as they are.
    void Refresh(const std::vector<Record>& myRecords, const std::filesystem::path& myDataFolder) const;

    /// Writes a page.
    void Write(const std::string& myPage, std::string_view myBytes);

    /// Marks the build as completed.
    void Finish();

private:
    void ReadList();
    void StoreList(OnDisk myTime = OnDisk::Later) const;
    void RemoveUnfinished() const;
    void RemoveStaleStatic(const std::set<std::string>& myWanted);
    /// True when no folder on the way to a path is a link or a file; folders may be missing.
    bool IsReachable(const std::string& myPath) const;
    /// The reason why a static file cannot be written; the empty text if it can.
    std::string ObstacleTo(const StaticFile& myFile) const;

    std::filesystem::path myFolder;
    std::set<std::string> myWritten; ///< the lines of the list
    bool myWasInterrupted = false;
    bool myIsFinished = false;
};

} // namespace qel::host

/// A site: the folder with its database, the files of its records and modules, and its output.
///
/// The database knows the site's pages, each with the HTML text that its author wrote, the modules on them, each with
/// its script, and the records that links can lead to. Positions count from 1 and stay without gaps. An operation that
/// fails throws Failure and has changed nothing. A site is used on one thread.
#pragma once

#include "site/Connection.h"
#include "site/Records.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::host
{

struct Page
{
    int64_t Id;
    int64_t Position;
    std::string Name;  ///< file name in the output
    std::string Title; ///< what a menu calls it
    int64_t Modules;   ///< how many stand on it
};

struct Module
{
    int64_t Id;
    std::string Page;
    std::string Place; ///< the empty text is the page's unnamed place
    int64_t Position;  ///< among the modules of that place
    std::string Script;
};

class Site
{
public:
    /// Makes a new site. Failure: there is one already, or something stands where its folders go.
    static void Create(const std::filesystem::path& myFolder, std::string_view myTitle);

    /// Opens a site and brings its database up to this program's format. Failure: it is none, or of a newer format.
    explicit Site(const std::filesystem::path& myFolder);

    /// Absolute, without a closing "/".
    std::filesystem::path DataFolder() const { return myFolder / "data"; }
    std::filesystem::path BuildFolder() const { return myFolder / "build"; }
    /// Files of the author's that belong to the pages.
    std::filesystem::path StaticFolder() const { return myFolder / "static"; }

    std::string Title();
    void SetTitle(std::string_view myTitle);

    /// One state of the site is read until the result goes.
    Transaction Snapshot() { return {myConnection, Transaction::Kind::Reading}; }

    // ---- Pages ----

    /// Adds a page behind the others.
    void AddPage(std::string_view myName, std::string_view myTitle, std::string_view myContent);
    /// Gives a page another name; records and modules stay with it. Failure: another page has that name.
    void RenamePage(std::string_view myName, std::string_view myNewName);
    /// Changes what is given.
    void SetPage(std::string_view myName, const std::optional<std::string>& myTitle,
                 const std::optional<std::string>& myContent);
    void MovePage(std::string_view myName, int64_t myPosition);
    /// Removes a page; its modules go with it if `myWithModules` says so. Failure: records lead to it, or modules stand
    /// on it.
    void RemovePage(std::string_view myName, bool myWithModules);
    std::vector<Page> Pages();
    Page PageOf(std::string_view myName);
    std::string PageContent(int64_t myPage);

    // ---- Modules ----

    /// Adds a module behind the others of its place and gives its id. `myArchive` is copied into the data folder.
    int64_t AddModule(std::string_view myPage, std::string_view myPlace, std::string_view myScript,
                      const std::optional<std::filesystem::path>& myArchive);
    /// Without a page or place the module stays on its own one.
    void MoveModule(int64_t myId, int64_t myPosition, const std::optional<std::string>& myPage,
                    const std::optional<std::string>& myPlace);
    void SetScript(int64_t myId, std::string_view myScript);
    /// Gives the module an archive of imported files, in the place of an earlier one.
    void SetArchive(int64_t myId, const std::filesystem::path& myArchive);
    /// Removes a module and its archive.
    void RemoveModule(int64_t myId);
    Module ModuleOf(int64_t myId);

    // ---- The editing of a module in the component's dialog, which may write the module's archive ----
    //
    // Order of calls: BeginEdit, the dialog, then EndEdit or UndoEdit. The caller holds the user's lock throughout, and
    // has called UndoInterruptedEdits after it took the lock.

    /// Keeps a copy of the module's archive, and marks in the database that the module is being edited.
    void BeginEdit(int64_t myId);
    /// Stores the confirmed script and ends the editing, both in one transaction.
    void EndEdit(int64_t myId, std::string_view myScript);
    /// Gives the module back the archive that it had, or none. Does nothing for a module that is not being edited.
    void UndoEdit(int64_t myId);
    /// Undoes the edits of programs that ended before they could; gives the ids of their modules.
    std::vector<int64_t> UndoInterruptedEdits();

    // ---- More of the modules ----

    /// In the order of pages, places and positions; only those of one page if its id is given.
    std::vector<Module> Modules(std::optional<int64_t> myPage = {});

    /// The file name of a module's archive below the data folder.
    static std::string ArchiveName(int64_t myModule);

    // ---- Records ----

    /// Adds a record and gives its uid. UsageFailure: what is given does not suit the kind.
    int64_t AddRecord(RecordKind myKind, const RecordChange& myRecord);
    void SetRecord(int64_t myUid, const RecordChange& myChange);
    /// Removes a record and its file.
    void RemoveRecord(int64_t myUid);
    std::vector<Record> Records();
    /// Nothing when no record has that uid.
    std::optional<Record> FindRecord(int64_t myUid);

private:
    void Migrate();
    int64_t PageId(std::string_view myName);
    /// Passes when the page has that place. Failure: it has not.
    void DemandPlace(int64_t myPage, std::string_view myPlace);
    Record RecordOf(int64_t myUid);
    /// The name that a file gets below the data folder. Failure: another file than `myOwnName` has it.
    std::string DataName(const std::filesystem::path& mySource, std::string_view myOwnName) const;
    void RemoveDataFile(const std::string& myName) const;
    /// Removes the archive of a module that is gone, and the copy of an edit.
    void RemoveArchives(int64_t myModule) const;
    /// Writes the record with the change applied, copies its new file and commits; gives its uid.
    int64_t StoreRecord(Transaction& myTransaction, Record theRecord, const RecordChange& myChange);

    std::filesystem::path myFolder;
    Connection myConnection;
};

/// Passes when a position is one of 1 to `myLast`. Failure: it is not.
void DemandPosition(int64_t myPosition, int64_t myLast);

} // namespace qel::host

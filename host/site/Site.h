/// A site: the folder with its database, the files of its records and modules, and its output.
///
/// The database knows the site's pages, each with the HTML text that its author wrote, the modules on them, each with
/// its script, and the records that links can lead to. Positions count from 1 and stay without gaps. An operation that
/// fails throws Failure and has changed nothing. A site is used on one thread.
#pragma once

#include "site/Connection.h"
#include "site/records.h"

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

/// The HTML of a page, and where it comes from.
struct PageInput
{
    std::string Content;
    std::optional<std::filesystem::path> Source; ///< none for the standard input and whatever else is no plain file
};

/// Reads what a page is to be; "-" is the standard input. Failure: it cannot be read, or is larger than 16 MB.
PageInput ReadPage(const std::filesystem::path& myFile);

/// What happened with the file that a page came from.
struct SourceNews
{
    std::string Page;
    std::string Text;
    bool IsFailure; ///< the file is there and cannot be taken
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

    /// Opens a site and brings its database up to this program's format. On a disk that is full or can only be read, a
    /// site is opened for reading. Failure: it is none, or of a newer format.
    explicit Site(const std::filesystem::path& myFolder);

    /// Absolute, without a closing "/".
    std::filesystem::path DataFolder() const { return myFolder / "data"; }
    std::filesystem::path BuildFolder() const { return myFolder / "build"; }
    /// The files that a build copies unchanged. The folder need not exist.
    std::filesystem::path StaticFolder() const { return myFolder / "static"; }

    std::string Title();
    void SetTitle(std::string_view myTitle);

    /// All reads see one state of the site until the result is destroyed.
    Transaction Snapshot() { return {myConnection, Transaction::Kind::Reading}; }

    // ---- Pages ----

    /// Adds a page after the others.
    void AddPage(std::string_view myName, std::string_view myTitle, const PageInput& myInput);
    /// Gives a page another name; records and modules stay with it. Failure: another page has that name.
    void RenamePage(std::string_view myName, std::string_view myNewName);
    /// Changes what is given.
    void SetPage(std::string_view myName, const std::optional<std::string>& myTitle,
                 const std::optional<PageInput>& myInput);
    /// Takes pages, or the one that is given, from the files that they came from again where those have changed. A file
    /// that is gone or cannot be taken leaves the stored page in force; that one is gone is reported once.
    std::vector<SourceNews> RefreshPages(const std::optional<std::string>& myOnlyPage);
    void MovePage(std::string_view myName, int64_t myPosition);
    /// Removes a page; its modules go with it if `myWithModules` says so. Failure: records lead to it, or modules stand
    /// on it.
    void RemovePage(std::string_view myName, bool myWithModules);
    std::vector<Page> Pages();
    Page PageOf(std::string_view myName);
    std::string PageContent(int64_t myPage);

    // ---- Modules ----

    /// Adds a module after the others of its place and returns its id. `myArchive` is copied into the data folder.
    int64_t AddModule(std::string_view myPage, std::string_view myPlace, std::string_view myScript,
                      const std::optional<std::filesystem::path>& myArchive);
    /// Without a page or place the module keeps its own.
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
    /// Undoes the edits of programs that ended before they could do so, and removes what they left; returns the ids of
    /// their modules.
    std::vector<int64_t> UndoInterruptedEdits();

    // ---- More of the modules ----

    /// In the order of pages, places and positions; only those of one page if its id is given.
    std::vector<Module> Modules(std::optional<int64_t> myPage = {});

    /// The file name of a module's archive below the data folder.
    static std::string ArchiveName(int64_t myModule);

    // ---- Records ----

    /// Adds a record and returns its uid. UsageFailure: what is given does not fit the kind.
    int64_t AddRecord(RecordKind myKind, const RecordChange& myRecord);
    void SetRecord(int64_t myUid, const RecordChange& myChange);
    /// Removes a record and its file. Failure: modules link to it, and `myWithLinks` does not permit that.
    void RemoveRecord(int64_t myUid, bool myWithLinks);
    std::vector<Record> Records();
    /// Nothing when no record has that uid.
    std::optional<Record> FindRecord(int64_t myUid);

private:
    Site(std::filesystem::path myFolder, const std::filesystem::path& myDatabase);
    void Migrate();
    /// The page with this name, without regard to case; 0 if there is none.
    int64_t FindPage(std::string_view myName);
    /// The same. Failure: there is none.
    int64_t PageId(std::string_view myName);
    void StoreContent(int64_t myPage, const PageInput& myInput);
    /// Remembers the file that a page came from, and the hash of its content.
    void StoreSource(int64_t myPage, const PageInput& myInput);
    /// Nothing where the file has not changed.
    std::optional<SourceNews> RefreshPage(int64_t myPage, const std::string& myName, const std::string& mySource,
                                          const std::string& myOldHash);
    /// Passes when no module links to a record. Failure: some do; it names them.
    void DemandUnlinked(int64_t myUid);
    /// Passes when the page has that place. Failure: it has not.
    void DemandPlace(int64_t myPage, std::string_view myPlace);
    Record RecordOf(int64_t myUid);
    /// The name that a file gets below the data folder. Failure: the file of another record has it.
    std::string DataName(const std::filesystem::path& mySource, std::string_view myOwnName);
    void RemoveDataFile(const std::string& myName) const;
    /// Removes the archive of a module that is gone, and the copy of an edit.
    void RemoveArchives(int64_t myModule) const;
    /// Writes the record with the change applied, copies its new file and commits; returns its uid.
    int64_t StoreRecord(Transaction& myTransaction, Record theRecord, const RecordChange& myChange);

    std::filesystem::path myFolder;
    Connection myConnection;
};

/// Passes when a position is one of 1 to `myLast`. Failure: it is not.
void DemandPosition(int64_t myPosition, int64_t myLast);

} // namespace qel::host

#include "site/Site.h"

#include "common/Failure.h"
#include "common/paths.h"
#include "site/fileOperations.h"
#include "site/PageText.h"
#include "site/siteFiles.h"
#include "text/encodings.h"
#include "text/ScopeGuard.h"
#include "text/succeeds.h"

#include <algorithm>
#include <array>
#include <utility>

#include <sqlite3.h>

namespace qel::host
{

static_assert(SQLITE_VERSION_NUMBER >= 3037000, "The schema uses strict tables.");

namespace
{

constexpr int64_t ApplicationId = 0x51454C53; // "QELS" in the file's header

/// The schema's history: entry N leads from format N to N + 1. Entries are never changed, only added.
constexpr std::array Migrations{
    R"(
    CREATE TABLE site (
        only INTEGER PRIMARY KEY CHECK (only = 1),
        title TEXT NOT NULL
    ) STRICT;
    CREATE TABLE page (
        id INTEGER PRIMARY KEY AUTOINCREMENT,
        name TEXT NOT NULL COLLATE NOCASE UNIQUE,
        title TEXT NOT NULL,
        position INTEGER NOT NULL,
        content BLOB NOT NULL
    ) STRICT;
    CREATE TABLE module (
        id INTEGER PRIMARY KEY AUTOINCREMENT,
        page INTEGER NOT NULL REFERENCES page ON DELETE CASCADE,
        place TEXT NOT NULL,
        position INTEGER NOT NULL,
        script TEXT NOT NULL
    ) STRICT;
    CREATE INDEX module_order ON module (page, place, position);
    CREATE TABLE record (
        uid INTEGER PRIMARY KEY AUTOINCREMENT,
        kind INTEGER NOT NULL CHECK (kind BETWEEN 0 AND 6),
        title TEXT NOT NULL,
        page INTEGER REFERENCES page ON DELETE RESTRICT,
        address TEXT NOT NULL,
        filename TEXT NOT NULL,
        CHECK ((kind IN (4, 5)) = (filename <> ''))
    ) STRICT;
    CREATE INDEX record_page ON record (page) WHERE page IS NOT NULL;
    )",
    // The modules whose dialog is open. The file that a page came from, and the hash of its content then. A script
    // without a link would leave the link of the module before it in force.
    R"(
    CREATE TABLE edit (
        module INTEGER PRIMARY KEY REFERENCES module ON DELETE CASCADE,
        had_archive INTEGER NOT NULL CHECK (had_archive IN (0, 1))
    ) STRICT;
    ALTER TABLE page ADD COLUMN source TEXT;
    ALTER TABLE page ADD COLUMN source_hash TEXT;
    UPDATE module SET script = '<pg.param name="link">' || char(13, 10) || script
        WHERE instr(script, 'name="link"') = 0;
    )",
};

void DemandPageName(std::string_view myName)
{
    std::string myProblem = NameProblem(myName);
    const Text myLowerName = LowerCase(FromUtf8(myName));
    if (myProblem.empty() && !myLowerName.ends_with(u".html") && !myLowerName.ends_with(u".htm"))
    {
        myProblem = "it does not end in .html";
    }
    if (!myProblem.empty())
    {
        throw Failure("\"" + std::string(myName) + "\" cannot be the name of a page: " + myProblem +
                      "; give another one with --name");
    }
}

void DemandFolderName(const fs::path& myFolder)
{
    if (myFolder.empty())
    {
        throw UsageFailure("an empty name is not a folder; give the site's folder, such as \".\" for this one");
    }
}

void DemandTitle(std::string_view myTitle)
{
    if (!IsUtf8(myTitle))
    {
        throw UsageFailure("the title is not valid UTF-8; check the terminal's encoding");
    }
}

} // namespace

void DemandPosition(int64_t myPosition, int64_t myLast)
{
    if (myPosition < 1 || myPosition > myLast)
    {
        throw Failure("there is no position " + std::to_string(myPosition) + "; give one from 1 to " +
                      std::to_string(myLast));
    }
}

void Site::Create(const fs::path& myFolder, std::string_view myTitle)
{
    DemandTitle(myTitle);
    DemandFolderName(myFolder);
    if (TypeOfEntry(myFolder / "site.db") != fs::file_type::not_found)
    {
        throw Failure(TextOf(myFolder) + " is a site already; work on it, or give another folder");
    }
    for (const char* mySubfolder : {"data", "build"})
    {
        // An empty folder may be left from a program that was killed.
        const fs::file_type myType = TypeOfEntry(myFolder / mySubfolder);
        if (myType != fs::file_type::not_found &&
            (myType != fs::file_type::directory || !NamesInFolder(myFolder / mySubfolder).empty()))
        {
            throw Failure(TextOf(myFolder / mySubfolder) + " is there already; give another folder for the site");
        }
    }
    MakeFolder(myFolder / "data");
    MakeFolder(myFolder / "static"); // an author may have filled it already
    RemoveUnfinishedFiles(myFolder, Unfinished::OfEndedPrograms);
    const fs::path myDatabase = UnfinishedName(myFolder / "site.db");
    const ScopeGuard myRemoval([&] { Succeeds([&] { RemoveFile(myDatabase); }); });
    Connection(myDatabase, Connection::Mode::Create).RunAll("PRAGMA application_id = " + std::to_string(ApplicationId));
    Site(myFolder, myDatabase.filename()).myConnection.Run("INSERT INTO site VALUES (1, ?)", {myTitle});
    RenameFile(myDatabase, myFolder / "site.db"); // it is a site from now on
}

namespace
{

/// The folder of a site, absolute and with all links followed. Failure: it is none.
fs::path RealFolder(const fs::path& myFolder)
{
    DemandFolderName(myFolder);
    if (TypeOfEntry(myFolder / "site.db") == fs::file_type::not_found)
    {
        throw Failure(TextOf(myFolder) + " is not a site: run qelhost init " + TextOf(myFolder));
    }
    std::error_code myError;
    fs::path theFolder = RealFolderPath(myFolder, myError);
    if (myError)
    {
        FailWithSystemError("cannot open the site " + TextOf(myFolder), myError);
    }
    return theFolder;
}

} // namespace

Site::Site(const fs::path& theFolder) : Site(RealFolder(theFolder), "site.db") {}

Site::Site(fs::path theFolder, const fs::path& theDatabase)
    : myFolder(std::move(theFolder)), myConnection(myFolder / theDatabase, Connection::Mode::Existing)
{
    Migrate();
}

void Site::Migrate()
{
    if (myConnection.Number("PRAGMA application_id") != ApplicationId)
    {
        throw Failure(TextOf(myFolder / "site.db") + " was not made by qelhost; give another folder");
    }
    const int64_t myNewest = Migrations.size();
    const auto myVersion = [&]
    {
        return myConnection.Number("PRAGMA user_version");
    };
    if (myVersion() > myNewest)
    {
        throw Failure(TextOf(myFolder) + " has the format " + std::to_string(myVersion()) +
                      " of a newer qelhost, and this one knows " + std::to_string(myNewest) + "; use the newer one");
    }
    try
    {
        while (myVersion() < myNewest)
        {
            Transaction myTransaction(myConnection, Transaction::Kind::Writing);
            const int64_t myOld = myVersion();
            if (myOld < myNewest)
            {
                myConnection.RunAll(Migrations[static_cast<std::size_t>(myOld)]);
                myConnection.RunAll("PRAGMA user_version = " + std::to_string(myOld + 1));
            }
            myTransaction.Commit();
        }
    }
    catch (const Failure& myFailure)
    {
        // If the new format cannot be written, an old site can still be listed and shown.
        if (myVersion() == 0)
        {
            throw;
        }
        myConnection.RefuseWriting(myFailure.what());
    }
}

std::string Site::Title()
{
    Statement myStatement(myConnection, "SELECT title FROM site");
    return myStatement.Next() ? myStatement.Text(0) : std::string();
}

void Site::SetTitle(std::string_view myTitle)
{
    DemandTitle(myTitle);
    myConnection.Run("UPDATE site SET title = ?", {myTitle});
}

int64_t Site::FindPage(std::string_view myName)
{
    if (const int64_t theId = myConnection.Number("SELECT id FROM page WHERE name = ?", {myName}); theId != 0)
    {
        return theId;
    }
    // The database tells case apart beyond ASCII.
    const Text myWanted = FromUtf8(myName);
    Statement myStatement(myConnection, "SELECT id, name FROM page");
    while (myStatement.Next())
    {
        if (EqualInLowerCase(FromUtf8(myStatement.Text(1)), myWanted))
        {
            return myStatement.Number(0);
        }
    }
    return 0;
}

int64_t Site::PageId(std::string_view myName)
{
    const int64_t theId = FindPage(myName);
    if (theId == 0)
    {
        throw Failure("the site has no page \"" + std::string(myName) + "\"; qelhost page list shows those it has");
    }
    return theId;
}

void Site::AddPage(std::string_view myName, std::string_view myTitle, const PageInput& myInput)
{
    DemandPageName(myName);
    DemandTitle(myTitle);
    DemandPageContent(myInput.Content);
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    if (FindPage(myName) != 0)
    {
        throw Failure("the site has a page \"" + std::string(myName) +
                      "\" already; replace it with qelhost page set, or give another --name");
    }
    myConnection.Run(
        "INSERT INTO page (name, title, position, content) VALUES (?, ?, (SELECT count(*) + 1 FROM page), ?)",
        {myName, myTitle, Blob{myInput.Content}});
    StoreSource(myConnection.LastKey(), myInput);
    myTransaction.Commit();
}

void Site::RenamePage(std::string_view myName, std::string_view myNewName)
{
    DemandPageName(myNewName);
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    const int64_t myId = PageId(myName);
    if (const int64_t myOther = FindPage(myNewName); myOther != 0 && myOther != myId)
    {
        throw Failure("the site has a page \"" + std::string(myNewName) + "\" already; give another name");
    }
    myConnection.Run("UPDATE page SET name = ? WHERE id = ?", {myNewName, myId});
    myTransaction.Commit();
}

void Site::SetPage(std::string_view myName, const std::optional<std::string>& myTitle,
                   const std::optional<PageInput>& myInput)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    const int64_t myId = PageId(myName);
    if (myTitle)
    {
        DemandTitle(*myTitle);
        myConnection.Run("UPDATE page SET title = ? WHERE id = ?", {*myTitle, myId});
    }
    if (myInput)
    {
        StoreContent(myId, *myInput);
    }
    myTransaction.Commit();
}

void Site::MovePage(std::string_view myName, int64_t myPosition)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    const int64_t myId = PageId(myName);
    const int64_t myOld = myConnection.Number("SELECT position FROM page WHERE id = ?", {myId});
    DemandPosition(myPosition, myConnection.Number("SELECT count(*) FROM page"));
    myConnection.Run("UPDATE page SET position = position - 1 WHERE position > ?", {myOld});
    myConnection.Run("UPDATE page SET position = position + 1 WHERE position >= ?", {myPosition});
    myConnection.Run("UPDATE page SET position = ? WHERE id = ?", {myPosition, myId});
    myTransaction.Commit();
}

void Site::RemovePage(std::string_view myName, bool myWithModules)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    const int64_t myId = PageId(myName);
    if (const int64_t myUid = myConnection.Number("SELECT min(uid) FROM record WHERE page = ?", {myId}); myUid != 0)
    {
        throw Failure("record " + std::to_string(myUid) + " leads to \"" + std::string(myName) +
                      "\"; change it with qelhost record set, or remove it");
    }
    const std::vector<Module> myModules = Modules(myId);
    if (!myModules.empty() && !myWithModules)
    {
        throw Failure("\"" + std::string(myName) + "\" has " + std::to_string(myModules.size()) +
                      " modules; move or remove them, or give --with-modules to remove them too");
    }
    const int64_t myPosition = myConnection.Number("SELECT position FROM page WHERE id = ?", {myId});
    myConnection.Run("DELETE FROM page WHERE id = ?", {myId});
    myConnection.Run("UPDATE page SET position = position - 1 WHERE position > ?", {myPosition});
    myTransaction.Commit();
    for (const Module& myModule : myModules)
    {
        RemoveArchives(myModule.Id);
    }
}

std::vector<Page> Site::Pages()
{
    Statement myStatement(myConnection,
                          "SELECT id, position, name, title, (SELECT count(*) FROM module WHERE page = page.id)"
                          " FROM page ORDER BY position");
    std::vector<Page> thePages;
    while (myStatement.Next())
    {
        thePages.push_back({myStatement.Number(0), myStatement.Number(1), myStatement.Text(2), myStatement.Text(3),
                            myStatement.Number(4)});
    }
    return thePages;
}

Page Site::PageOf(std::string_view myName)
{
    const int64_t myId = PageId(myName);
    const std::vector<Page> myPages = Pages();
    return *std::find_if(myPages.begin(), myPages.end(), [&](const Page& myPage) { return myPage.Id == myId; });
}

std::string Site::PageContent(int64_t myPage)
{
    Statement myStatement(myConnection, "SELECT content FROM page WHERE id = ?", {myPage});
    return myStatement.Next() ? myStatement.Text(0) : std::string();
}

} // namespace qel::host

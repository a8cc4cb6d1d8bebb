#include "common/Failure.h"
#include "site/PageText.h"
#include "site/Site.h"
#include "site/siteFiles.h"

namespace qel::host
{

std::string Site::ArchiveName(int64_t myModule)
{
    return "module" + std::to_string(myModule) + ".dat";
}

void Site::DemandPlace(int64_t myPage, std::string_view myPlace)
{
    if (!PageText(PageContent(myPage)).HasPlace(myPlace))
    {
        throw Failure("the page has no place \"" + std::string(myPlace) + "\"; write <!-- qel:modules " +
                      std::string(myPlace) + " --> where it is to be and give the page again with qelhost page set");
    }
}

int64_t Site::AddModule(std::string_view myPage, std::string_view myPlace, std::string_view myScript,
                        const std::optional<fs::path>& myArchive)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    const int64_t myPageId = PageId(myPage);
    DemandPlace(myPageId, myPlace);
    myConnection.Run("INSERT INTO module (page, place, position, script) VALUES (?1, ?2,"
                     " (SELECT count(*) + 1 FROM module WHERE page = ?1 AND place = ?2), ?3)",
                     {myPageId, myPlace, myScript});
    const int64_t theId = myConnection.LastKey();
    if (myArchive)
    {
        CopyWholeFile(*myArchive, DataFolder() / ArchiveName(theId), OnDisk::Now);
    }
    else
    {
        RemoveArchives(theId); // of a program that ended before it could store the module
    }
    myTransaction.Commit();
    return theId;
}

void Site::MoveModule(int64_t myId, int64_t myPosition, const std::optional<std::string>& myPage,
                      const std::optional<std::string>& myPlace)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    const Module myOld = ModuleOf(myId);
    const int64_t myOldPage = PageId(myOld.Page);
    const int64_t myNewPage = myPage ? PageId(*myPage) : myOldPage;
    const std::string myNewPlace = myPlace ? *myPlace : myPage ? std::string() : myOld.Place;
    DemandPlace(myNewPage, myNewPlace);
    DemandPosition(myPosition,
                   1 + myConnection.Number("SELECT count(*) FROM module WHERE page = ? AND place = ? AND id <> ?",
                                           {myNewPage, myNewPlace, myId}));
    myConnection.Run("UPDATE module SET position = position - 1 WHERE page = ? AND place = ? AND position > ?",
                     {myOldPage, myOld.Place, myOld.Position});
    myConnection.Run("UPDATE module SET position = position + 1 WHERE page = ? AND place = ? AND position >= ?",
                     {myNewPage, myNewPlace, myPosition});
    myConnection.Run("UPDATE module SET page = ?, place = ?, position = ? WHERE id = ?",
                     {myNewPage, myNewPlace, myPosition, myId});
    myTransaction.Commit();
}

void Site::SetScript(int64_t myId, std::string_view myScript)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    ModuleOf(myId);
    myConnection.Run("UPDATE module SET script = ? WHERE id = ?", {myScript, myId});
    myTransaction.Commit();
}

void Site::SetArchive(int64_t myId, const fs::path& myArchive)
{
    ModuleOf(myId);
    CopyWholeFile(myArchive, DataFolder() / ArchiveName(myId), OnDisk::Now);
}

void Site::RemoveModule(int64_t myId)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    const Module myOld = ModuleOf(myId);
    myConnection.Run("DELETE FROM module WHERE id = ?", {myId});
    myConnection.Run("UPDATE module SET position = position - 1 WHERE page = ? AND place = ? AND position > ?",
                     {PageId(myOld.Page), myOld.Place, myOld.Position});
    myTransaction.Commit();
    RemoveArchives(myId);
}

namespace
{

Module ReadModule(const Statement& myStatement)
{
    return {myStatement.Number(0), myStatement.Text(1), myStatement.Text(2), myStatement.Number(3),
            myStatement.Text(4)};
}

const std::string SelectModules =
    "SELECT module.id, page.name, place, module.position, script FROM module JOIN page ON page.id = module.page ";

} // namespace

Module Site::ModuleOf(int64_t myId)
{
    Statement myStatement(myConnection, SelectModules + "WHERE module.id = ?", {myId});
    if (!myStatement.Next())
    {
        throw Failure("the site has no module " + std::to_string(myId) + "; qelhost module list shows those it has");
    }
    return ReadModule(myStatement);
}

std::vector<Module> Site::Modules(std::optional<int64_t> myPage)
{
    Statement myStatement(myConnection, myPage ? SelectModules + "WHERE module.page = ? ORDER BY place, module.position"
                                               : SelectModules + "ORDER BY page.position, place, module.position");
    if (myPage)
    {
        myStatement.Bind({*myPage});
    }
    std::vector<Module> theModules;
    while (myStatement.Next())
    {
        theModules.push_back(ReadModule(myStatement));
    }
    return theModules;
}

} // namespace qel::host

// A dialog may write the module's archive before its author cancels. To keep script and archive in one state, a copy of
// the archive and a mark in the database exist from before the dialog opens until it is known how it ended.
#include "common/Failure.h"
#include "site/Site.h"
#include "site/siteFiles.h"

namespace qel::host
{

namespace
{

constexpr std::string_view CopyEnd = ".before-edit";

/// The copy's name. No record's file can have it, since it begins with a full stop.
std::string CopyName(int64_t myModule)
{
    return (".module" + std::to_string(myModule)).append(CopyEnd);
}

} // namespace

void Site::BeginEdit(int64_t myId)
{
    ModuleOf(myId);
    const fs::path myArchive = DataFolder() / ArchiveName(myId);
    const bool myHasArchive = TypeOfEntry(myArchive) != fs::file_type::not_found;
    if (myHasArchive)
    {
        CopyWholeFile(myArchive, DataFolder() / CopyName(myId), OnDisk::Now);
    }
    myConnection.Run("INSERT INTO edit (module, had_archive) VALUES (?, ?)", {myId, int64_t{myHasArchive}});
}

void Site::EndEdit(int64_t myId, std::string_view myScript)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    ModuleOf(myId);
    myConnection.Run("UPDATE module SET script = ? WHERE id = ?", {myScript, myId});
    myConnection.Run("DELETE FROM edit WHERE module = ?", {myId});
    myTransaction.Commit();
    RemoveDataFile(CopyName(myId));
}

void Site::UndoEdit(int64_t myId)
{
    Statement myMark(myConnection, "SELECT had_archive FROM edit WHERE module = ?", {myId});
    if (!myMark.Next())
    {
        return;
    }
    const fs::path myArchive = DataFolder() / ArchiveName(myId);
    const fs::path myCopy = DataFolder() / CopyName(myId);
    if (myMark.Number(0) == 0)
    {
        RemoveFile(myArchive);
    }
    else if (TypeOfEntry(myCopy) != fs::file_type::not_found) // else it has been put back already
    {
        RenameFile(myCopy, myArchive);
    }
    myConnection.Run("DELETE FROM edit WHERE module = ?", {myId});
}

std::vector<int64_t> Site::UndoInterruptedEdits()
{
    myConnection.DemandWritable();
    std::vector<int64_t> theModules;
    {
        Statement myMarks(myConnection, "SELECT module FROM edit ORDER BY module");
        while (myMarks.Next())
        {
            theModules.push_back(myMarks.Number(0));
        }
    }
    for (const int64_t myModule : theModules)
    {
        UndoEdit(myModule);
    }
    // Copies without a mark: a program ended before it set the mark, or after it had removed it.
    for (const std::string& myName : NamesInFolder(DataFolder()))
    {
        if (myName.starts_with(".module") && myName.ends_with(CopyEnd))
        {
            RemoveDataFile(myName);
        }
    }
    return theModules;
}

void Site::RemoveArchives(int64_t myModule) const
{
    RemoveDataFile(ArchiveName(myModule));
    RemoveDataFile(CopyName(myModule));
}

} // namespace qel::host

#include "common/Failure.h"
#include "common/paths.h"
#include "site/scriptTags.h"
#include "site/Site.h"
#include "site/siteFiles.h"
#include "text/encodings.h"

namespace qel::host
{

namespace
{

/// True for the names that other files have in the folders that a record's file is copied to.
bool IsReserved(TextView myLowerName)
{
    return myLowerName.starts_with(u"qelspr") || myLowerName.starts_with(u"qelmid") ||
           (myLowerName.starts_with(u"module") && myLowerName.ends_with(u".dat"));
}

Record ReadRecord(const Statement& myStatement)
{
    return {myStatement.Number(0), static_cast<RecordKind>(myStatement.Number(1)),
            myStatement.Text(2),   myStatement.Text(3),
            myStatement.Text(4),   myStatement.Text(5)};
}

const std::string SelectRecords = "SELECT uid, kind, record.title, coalesce(page.name, ''), address, filename"
                                  " FROM record LEFT JOIN page ON page.id = record.page ";

} // namespace

std::string Site::DataName(const fs::path& mySource, std::string_view myOwnName)
{
    std::string theName = SafeFileName(TextOf(mySource.filename()));
    const Text myLowerName = LowerCase(FromUtf8(theName));
    const std::string myProblem = NameProblem(theName);
    if (!myProblem.empty() || IsReserved(myLowerName))
    {
        throw Failure("a record's file cannot be named \"" + theName +
                      "\": " + (myProblem.empty() ? "it is a name of the site's own" : myProblem) +
                      "; give the file another name");
    }
    // A file there that no record names is left from a command that was interrupted, and may be replaced.
    for (const Record& myRecord : Records())
    {
        if (myRecord.Filename != myOwnName && LowerCase(FromUtf8(myRecord.Filename)) == myLowerName)
        {
            throw Failure("the site has a file \"" + myRecord.Filename +
                          "\" already; change its record with qelhost record set, or give the file another name");
        }
    }
    return theName;
}

void Site::RemoveDataFile(const std::string& myName) const
{
    std::error_code myIgnored;
    if (!myName.empty())
    {
        fs::remove(DataFolder() / PathOf(myName), myIgnored);
    }
}

int64_t Site::StoreRecord(Transaction& myTransaction, Record theRecord, const RecordChange& myChange)
{
    DemandSuited(theRecord.Kind, myChange);
    const std::string myOldName = theRecord.Filename;
    theRecord.Title = myChange.Title.value_or(theRecord.Title);
    theRecord.Page = myChange.Page.value_or(theRecord.Page);
    theRecord.Address = myChange.Address.value_or(theRecord.Address);
    if (myChange.File)
    {
        theRecord.Filename = DataName(*myChange.File, myOldName);
    }
    DemandComplete(theRecord);
    myConnection.Run(
        "INSERT OR REPLACE INTO record (uid, kind, title, page, address, filename) VALUES (?, ?, ?, ?, ?, ?)",
        {theRecord.Uid == 0 ? Value() : Value(theRecord.Uid), static_cast<int64_t>(theRecord.Kind), theRecord.Title,
         theRecord.Page.empty() ? Value() : Value(PageId(theRecord.Page)), theRecord.Address, theRecord.Filename});
    const int64_t theUid = myConnection.LastKey();
    if (myChange.File)
    {
        CopyWholeFile(*myChange.File, DataFolder() / PathOf(theRecord.Filename), OnDisk::Now);
    }
    myTransaction.Commit();
    if (myOldName != theRecord.Filename)
    {
        RemoveDataFile(myOldName);
    }
    return theUid;
}

int64_t Site::AddRecord(RecordKind myKind, const RecordChange& myRecord)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    return StoreRecord(myTransaction, {0, myKind, {}, {}, {}, {}}, myRecord);
}

void Site::SetRecord(int64_t myUid, const RecordChange& myChange)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    StoreRecord(myTransaction, RecordOf(myUid), myChange);
}

void Site::DemandUnlinked(int64_t myUid)
{
    std::string myModules;
    int myCount = 0;
    for (const Module& myModule : Modules())
    {
        if (NamesRecord(myModule.Script, myUid))
        {
            myModules += (++myCount == 1 ? "" : ", ") + std::to_string(myModule.Id);
        }
    }
    if (myCount > 0)
    {
        throw Failure((myCount == 1 ? "module " + myModules + " links" : "modules " + myModules + " link") +
                      " to record " + std::to_string(myUid) +
                      "; change that with qelhost module edit, or give --force to remove the record nevertheless");
    }
}

void Site::RemoveRecord(int64_t myUid, bool myWithLinks)
{
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    const Record myOld = RecordOf(myUid);
    if (!myWithLinks)
    {
        DemandUnlinked(myUid);
    }
    myConnection.Run("DELETE FROM record WHERE uid = ?", {myUid});
    myTransaction.Commit();
    RemoveDataFile(myOld.Filename);
}

Record Site::RecordOf(int64_t myUid)
{
    std::optional<Record> theRecord = FindRecord(myUid);
    if (!theRecord)
    {
        throw Failure("the site has no record " + std::to_string(myUid) + "; qelhost record list shows those it has");
    }
    return *theRecord;
}

std::optional<Record> Site::FindRecord(int64_t myUid)
{
    Statement myStatement(myConnection, SelectRecords + "WHERE uid = ?", {myUid});
    if (!myStatement.Next())
    {
        return {};
    }
    return ReadRecord(myStatement);
}

std::vector<Record> Site::Records()
{
    Statement myStatement(myConnection, SelectRecords + "ORDER BY uid");
    std::vector<Record> theRecords;
    while (myStatement.Next())
    {
        theRecords.push_back(ReadRecord(myStatement));
    }
    return theRecords;
}

} // namespace qel::host

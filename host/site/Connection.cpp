#include "site/Connection.h"

#include "common/Failure.h"
#include "common/paths.h"
#include "common/systemReasons.h"
#include "site/fileOperations.h"

#include <algorithm>
#include <array>

#include <sqlite3.h>

namespace qel::host
{

namespace
{

constexpr int WaitInMilliseconds = 10'000;

/// True if the disk of a file has no room for the index of SQLite's write-ahead log, of 32 KB.
bool IsDiskFull(const std::filesystem::path& myFilename)
{
    std::error_code myError;
    const uintmax_t mySpace = FreeSpace(std::filesystem::absolute(myFilename).parent_path(), myError);
    return !myError && mySpace < 0x8000;
}

/// What to do about an error of a database.
std::string Advice(int myCode, const std::filesystem::path& myFilename)
{
    switch (myCode & 0xFF)
    {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return "another program is working on it; try again when that has ended";
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
        return "it cannot be opened; check its permissions and those of its folder";
    case SQLITE_READONLY:
        return "it is read-only; check its permissions and those of its folder, or copy the site to another disk";
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return "it is damaged or not a SQLite database; replace it by a backup copy";
    case SQLITE_FULL:
        return DiskIsFull;
    case SQLITE_IOERR:
        // An index that has no room is an error of its own kind only where SQLite can see why.
        return myCode == SQLITE_IOERR_SHMSIZE || IsDiskFull(myFilename)
                   ? DiskIsFull
                   : "the disk reports an error; check it and try again";
    default:
        return {};
    }
}

/// True for an error that prevents writing a database that may still be readable.
bool KeepsFromWriting(int myCode)
{
    constexpr std::array Codes{SQLITE_CANTOPEN, SQLITE_PERM, SQLITE_READONLY, SQLITE_FULL, SQLITE_IOERR};
    return std::ranges::find(Codes, myCode & 0xFF) != Codes.end();
}

/// The address of a file, by its absolute path, by which SQLite opens it as one that nothing changes meanwhile.
std::string UnchangingAddress(const std::filesystem::path& myFilename)
{
    const std::string myPath = PortableTextOf(myFilename);
    std::string theAddress = myPath.starts_with('/') ? "file://" : "file:///";
    for (const char myCharacter : myPath)
    {
        const bool myIsSpecial = std::string_view("%?#").find(myCharacter) != std::string_view::npos;
        theAddress += !myIsSpecial         ? std::string(1, myCharacter)
                      : myCharacter == '%' ? "%25"
                      : myCharacter == '?' ? "%3f"
                                           : "%23";
    }
    return theAddress + "?immutable=1";
}

void BindValue(sqlite3_stmt* myStatement, int myIndex, const Value& myValue)
{
    if (const auto* myNumber = std::get_if<int64_t>(&myValue))
    {
        sqlite3_bind_int64(myStatement, myIndex, *myNumber);
    }
    else if (const auto* myText = std::get_if<std::string_view>(&myValue))
    {
        sqlite3_bind_text64(myStatement, myIndex, myText->data() != nullptr ? myText->data() : "", myText->size(),
                            SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    else if (const auto* myBlob = std::get_if<Blob>(&myValue))
    {
        sqlite3_bind_blob64(myStatement, myIndex, myBlob->Bytes.data() != nullptr ? myBlob->Bytes.data() : "",
                            myBlob->Bytes.size(), SQLITE_TRANSIENT);
    }
    else
    {
        sqlite3_bind_null(myStatement, myIndex);
    }
}

} // namespace

void Connection::Closer::operator()(sqlite3* theHandle) const
{
    sqlite3_close_v2(theHandle);
}

void Connection::Open(const std::string& myAddress, int myFlags)
{
    myIdleStatements.clear();
    sqlite3* theHandle = nullptr;
    const int myResult = sqlite3_open_v2(myAddress.c_str(), &theHandle, myFlags, nullptr);
    myHandle.reset(theHandle);
    if (myResult != SQLITE_OK)
    {
        Fail(myResult);
    }
    sqlite3_busy_timeout(myHandle.get(), WaitInMilliseconds);
    Run("PRAGMA foreign_keys = ON");
}

Connection::Connection(const std::filesystem::path& theFilename, Mode myMode) : myFilename(theFilename)
{
    if (myMode == Mode::Create)
    {
        Open(TextOf(myFilename), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        Run("PRAGMA journal_mode = WAL"); // it stays in this mode: a build reads for long, and others may write
                                          // meanwhile
        return;
    }
    try
    {
        Open(TextOf(myFilename), SQLITE_OPEN_READWRITE);
        Number("SELECT count(*) FROM sqlite_schema"); // needs the files of the write-ahead log
        if (sqlite3_db_readonly(myHandle.get(), "main") != 0)
        {
            RefuseWriting(Advice(SQLITE_READONLY, myFilename));
        }
    }
    catch (const Failure&)
    {
        const int myCode = myHandle ? sqlite3_extended_errcode(myHandle.get()) : SQLITE_CANTOPEN;
        if (!KeepsFromWriting(myCode))
        {
            throw;
        }
        OpenForReading();
        RefuseWriting(Advice((myCode & 0xFF) == SQLITE_CANTOPEN ? SQLITE_READONLY : myCode, myFilename));
    }
}

void Connection::OpenForReading()
{
    try
    {
        Open(TextOf(myFilename), SQLITE_OPEN_READONLY);
        Number("SELECT count(*) FROM sqlite_schema");
    }
    catch (const Failure&)
    {
        // Without its write-ahead log the file alone is the whole database. With one it is not.
        std::error_code myError;
        const auto myLength = std::filesystem::file_size(std::filesystem::path(myFilename) += "-wal", myError);
        if (!myError && myLength > 0)
        {
            throw Failure(TextOf(myFilename) +
                          ": a program that wrote to it was interrupted, and its disk cannot be written to complete "
                          "that; make room, or copy the site to another disk");
        }
        Open(UnchangingAddress(myFilename), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    }
}

void Connection::DemandWritable() const
{
    if (!myRefusal.empty())
    {
        throw Failure(TextOf(myFilename) + ": " + myRefusal);
    }
}

void Connection::RefuseWriting(const std::string& myReason)
{
    Run("PRAGMA query_only = ON");
    myRefusal = myReason;
}

void Connection::Run(std::string_view mySQL, std::initializer_list<Value> myValues)
{
    Statement myStatement(*this, mySQL, myValues);
    while (myStatement.Next())
    {
    }
}

void Connection::RunAll(const std::string& mySQL)
{
    if (const int myResult = sqlite3_exec(myHandle.get(), mySQL.c_str(), nullptr, nullptr, nullptr);
        myResult != SQLITE_OK)
    {
        Fail(myResult);
    }
}

int64_t Connection::Number(std::string_view mySQL, std::initializer_list<Value> myValues)
{
    Statement myStatement(*this, mySQL, myValues);
    return myStatement.Next() ? myStatement.Number(0) : 0;
}

int64_t Connection::LastKey() const
{
    return sqlite3_last_insert_rowid(myHandle.get());
}

void Connection::Fail(int myCode) const
{
    if ((myCode & 0xFF) == SQLITE_READONLY)
    {
        DemandWritable();
    }
    const std::string myAdvice = Advice(myHandle ? sqlite3_extended_errcode(myHandle.get()) : myCode, myFilename);
    const std::string myReason = myHandle ? sqlite3_errmsg(myHandle.get()) : sqlite3_errstr(myCode);
    throw Failure(
        TextOf(myFilename) + ": " +
        (myAdvice.empty() ? "the database fails with \"" + myReason + "\"; replace it by a backup copy" : myAdvice));
}

void Connection::Finisher::operator()(sqlite3_stmt* theStatement) const
{
    sqlite3_finalize(theStatement);
}

Connection::Statements::node_type Connection::Prepared(std::string_view mySQL)
{
    if (const auto myIdle = myIdleStatements.find(mySQL); myIdle != myIdleStatements.end())
    {
        return myIdleStatements.extract(myIdle);
    }
    sqlite3_stmt* theHandle = nullptr;
    const int myResult =
        sqlite3_prepare_v2(myHandle.get(), mySQL.data(), static_cast<int>(mySQL.size()), &theHandle, nullptr);
    if (myResult != SQLITE_OK)
    {
        Fail(myResult);
    }
    Statements::mapped_type theStatement(theHandle);
    return myIdleStatements.extract(myIdleStatements.emplace(mySQL, std::move(theStatement)));
}

Statement::Statement(Connection& theConnection, std::string_view mySQL, std::initializer_list<Value> myValues)
    : myConnection(theConnection), myStatement(theConnection.Prepared(mySQL))
{
    Bind(myValues);
}

Statement::~Statement()
{
    sqlite3_reset(Handle());
    sqlite3_clear_bindings(Handle());
    myConnection.myIdleStatements.insert(std::move(myStatement));
}

void Statement::Bind(std::initializer_list<Value> myValues)
{
    sqlite3_reset(Handle());
    int myIndex = 0;
    for (const Value& myValue : myValues)
    {
        BindValue(Handle(), ++myIndex, myValue);
    }
}

bool Statement::Next()
{
    const int myResult = sqlite3_step(Handle());
    if (myResult != SQLITE_ROW && myResult != SQLITE_DONE)
    {
        myConnection.Fail(myResult);
    }
    return myResult == SQLITE_ROW;
}

int64_t Statement::Number(int myColumn) const
{
    return sqlite3_column_int64(Handle(), myColumn);
}

std::string Statement::Text(int myColumn) const
{
    const void* myBytes = sqlite3_column_blob(Handle(), myColumn);
    const auto mySize = static_cast<std::size_t>(sqlite3_column_bytes(Handle(), myColumn));
    return myBytes == nullptr ? std::string() : std::string(static_cast<const char*>(myBytes), mySize);
}

Transaction::Transaction(Connection& theConnection, Kind myKind) : myConnection(theConnection)
{
    if (myKind == Kind::Writing)
    {
        myConnection.DemandWritable();
    }
    myConnection.Run(myKind == Kind::Writing ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction()
{
    if (!myIsOpen)
    {
        return;
    }
    try
    {
        myConnection.Run("ROLLBACK");
    }
    catch (const Failure&)
    {
        // The database has rolled back by itself, or will when it is opened next.
    }
}

void Transaction::Commit()
{
    myConnection.Run("COMMIT");
    myIsOpen = false;
}

} // namespace qel::host

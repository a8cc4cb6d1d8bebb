/// SQLite in three small classes. A failure of the database is a Failure that says what to do.
#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

namespace qel::host
{

/// Bytes that are not text.
struct Blob
{
    std::string_view Bytes;
};

/// What is bound to a parameter of a statement; std::monostate is NULL.
using Value = std::variant<std::monostate, int64_t, std::string_view, Blob>;

/// An open database: foreign keys are enforced, and it waits some seconds for other programs that have locked it. It
/// and its statements take no locks of their own and are used on one thread.
///
/// An existing database that cannot be opened for writing, because its disk is full or read-only, is opened for
/// reading. Each attempt to write to it is a Failure with that reason.
class Connection
{
public:
    enum class Mode
    {
        Existing,
        Create
    };

    Connection(const std::filesystem::path& myFilename, Mode myMode);

    /// Passes when the database can be written. Failure: it is open for reading only.
    void DemandWritable() const;

    /// Makes the database read-only from now on; attempts to write fail with the reason.
    void RefuseWriting(const std::string& myReason);

    /// Runs one statement to its end.
    void Run(std::string_view mySQL, std::initializer_list<Value> myValues = {});

    /// Runs several statements without parameters.
    void RunAll(const std::string& mySQL);

    /// The number in the first column of the first row; 0 when there is no row.
    int64_t Number(std::string_view mySQL, std::initializer_list<Value> myValues = {});

    /// The key of the row that was inserted last.
    int64_t LastKey() const;

private:
    friend class Statement;

    struct Closer
    {
        void operator()(sqlite3* myHandle) const;
    };

    struct Finisher
    {
        void operator()(sqlite3_stmt* myStatement) const;
    };
    using Statements = std::multimap<std::string, std::unique_ptr<sqlite3_stmt, Finisher>, std::less<>>;

    [[noreturn]] void Fail(int myCode) const;
    /// Opens the file, or closes it and opens it in another way.
    void Open(const std::string& myAddress, int myFlags);
    void OpenForReading();
    Statements::node_type Prepared(std::string_view mySQL);

    std::filesystem::path myFilename;
    std::unique_ptr<sqlite3, Closer> myHandle;
    std::string myRefusal;       ///< why nothing can be written, or empty
    Statements myIdleStatements; ///< prepared and not in use, by their text
};

/// A prepared statement with its values. Order of calls: Next, and while it returns true the columns, from 0. It is
/// prepared once for all that use the same text on one connection, which must outlive them.
class Statement
{
public:
    Statement(Connection& myConnection, std::string_view mySQL, std::initializer_list<Value> myValues = {});
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    /// Starts the statement again with other values.
    void Bind(std::initializer_list<Value> myValues);

    /// Goes to the next row; false when there is none.
    bool Next();

    int64_t Number(int myColumn) const;
    /// Text or bytes; the empty text for NULL.
    std::string Text(int myColumn) const;

private:
    sqlite3_stmt* Handle() const { return myStatement.mapped().get(); }

    Connection& myConnection;
    Connection::Statements::node_type myStatement;
};

/// What runs between its creation and Commit takes effect as a whole or, without Commit, not at all.
class Transaction
{
public:
    enum class Kind
    {
        Reading, ///< sees one state of the database throughout
        Writing  ///< has the right to write from the start
    };

    Transaction(Connection& myConnection, Kind myKind);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();

    void Commit();

private:
    Connection& myConnection;
    bool myIsOpen = true;
};

} // namespace qel::host

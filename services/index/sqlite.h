#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "ground/Outcome.h"

struct sqlite3;
struct sqlite3_stmt;

/// A thin wrapper around SQLite: handles close themselves, texts are copied, errors become a Failure. Values reach a
/// statement only through bind(); no function here pastes a value into SQL.
namespace quarrynet::services {

/// One prepared statement. Must not outlive its Database.
class Statement
{
public:
    enum class Step : std::uint8_t
    {
        Row,
        Finished,
        Failed,
    };

    explicit Statement(sqlite3_stmt* handle);

    /// Parameters count from 1; a parameter that the statement does not have is ignored. Texts are copied, including
    /// NULs. When there is no memory for a value, the next step fails.
    void bind(int parameter, std::string_view text);
    void bind(int parameter, std::int64_t number);
    void bind(int parameter, const std::optional<std::int64_t>& number); // nullopt binds NULL
    /// For SQL functions that return a C interface; `type` is the name in SQLite's documentation.
    void bindPointer(int parameter, void* pointer, const char* type);

    Step step();

    /// Runs a statement that returns no rows, and resets it.
    Outcome<Done> run();

    /// Prepares the statement for other parameters and another run.
    void reset();

    /// Columns count from 0. The view is valid until the next step() or reset().
    std::string_view text(int column) const;
    std::int64_t number(int column) const;
    bool isNull(int column) const;

    Failure failure() const;

private:
    struct Finalize
    {
        void operator()(sqlite3_stmt* handle) const;
    };
    void take(int code);

    std::unique_ptr<sqlite3_stmt, Finalize> handle_;
    int bindFault_ = 0; ///< of the first value that SQLite did not accept
};

class Database
{
public:
    enum class Access : std::uint8_t
    {
        Read,
        Create,
    };

    /// Opens the file at `path`. Access::Create opens it for writing, and creates it when it is missing. SQLite does
    /// not read the file yet, so one that is not a database fails at the first statement.
    static Outcome<Database> open(const std::string& path, Access access);

    Outcome<Statement> prepare(std::string_view sql);

    /// Runs one or more statements without parameters or result rows.
    Outcome<Done> execute(const char* sql);

    std::int64_t lastRowId() const;

    /// Returns whether the last call failed because the file is not a database.
    bool isNoDatabase() const;

    /// Returns whether the last call failed because a part of the file is missing or wrong.
    bool isDamaged() const;

    /// From now on calls `stop` repeatedly while a statement of this connection runs, on the same thread; once it
    /// returns true, the statement fails. An empty function ends this.
    void stopWhen(std::function<bool()> stop);

private:
    struct Close
    {
        void operator()(sqlite3* handle) const;
    };
    using Handle = std::unique_ptr<sqlite3, Close>;
    explicit Database(Handle handle) : handle_(std::move(handle)) {}

    std::unique_ptr<std::function<bool()>> stop_ = std::make_unique<std::function<bool()>>();
    Handle handle_;
};

} // namespace quarrynet::services

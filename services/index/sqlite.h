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

/// A thin cover over SQLite: handles that close themselves, texts by value, faults as Failure. Values reach a statement
/// through bind() only; no function here pastes a value into SQL.
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

    /// Parameters count from 1; one that the statement does not have is left out. Texts are copied; NULs inside are
    /// kept. When memory is short for a value, the next step fails.
    void bind(int parameter, std::string_view text);
    void bind(int parameter, std::int64_t number);
    void bind(int parameter, const std::optional<std::int64_t>& number); // nothing is NULL
    /// For SQL functions that hand out an interface of C; `type` is what SQLite's documentation names.
    void bindPointer(int parameter, void* pointer, const char* type);

    Step step();

    /// Runs a statement that gives no rows and makes it ready for the next run.
    Outcome<Done> run();

    /// Ready for other parameters and another run.
    void reset();

    /// Columns count from 0. The view lives until the next step() or reset().
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
    int bindFault_ = 0; ///< of the first value that SQLite did not take
};

class Database
{
public:
    enum class Access : std::uint8_t
    {
        Read,
        Create,
    };

    /// Opens the file at `path`; for Create makes it when it is missing, and opens it for writing. SQLite itself reads
    /// nothing yet, so a file that is no database fails at the first statement.
    static Outcome<Database> open(const std::string& path, Access access);

    Outcome<Statement> prepare(std::string_view sql);

    /// Runs one or more statements without parameters or rows.
    Outcome<Done> execute(const char* sql);

    std::int64_t lastRowId() const;

    /// Whether the last call failed because the file is no database at all.
    bool isNoDatabase() const;

    /// From now on `stop` is asked again and again while a statement of this connection runs, on the thread that runs
    /// it; once it returns true, the statement fails. Without a function nothing is asked.
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

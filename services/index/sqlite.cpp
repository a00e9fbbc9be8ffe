#include "index/sqlite.h"

#include <new>

#include <sqlite3.h>

namespace quarrynet::services {

namespace {

// Nobody writes to an index in use; if another program does, SQLite waits this long.
constexpr int kBusyMilliseconds = 5000;

// Instructions of SQLite's virtual machine between two calls of the stop function. One of them can process a long
// document, so the number is small.
constexpr int kStepsBetweenQuestions = 16;

Failure describeFault(sqlite3* handle)
{
    if (sqlite3_errcode(handle) == SQLITE_INTERRUPT)
        return Failure{"it took too long"};
    if (sqlite3_errcode(handle) == SQLITE_FULL)
        return Failure{"the disk is full; make room, or choose a folder on another one with --data"};
    return Failure{std::string("the index database reports: ") + sqlite3_errmsg(handle)};
}

/// Returns a file's path unchanged. SQLite itself would resolve all links in it, which requires the right to read every
/// folder on the way, and would lead root out of the folder of a user whom it need not trust. A link in place of the
/// file itself is refused then.
int nameAsGiven(sqlite3_vfs*, const char* name, int size, char* full)
{
    const std::string_view text(name);
    if (text.size() >= static_cast<std::size_t>(size))
        return SQLITE_CANTOPEN;
    full[text.copy(full, text.size())] = '\0';
    return SQLITE_OK;
}

/// Returns the name of a VFS that opens files by the given names. Throws std::bad_alloc; the next call retries then.
const char* filesAsNamed()
{
    static sqlite3_vfs files = [] {
        const sqlite3_vfs* const found = sqlite3_vfs_find(nullptr);
        if (found == nullptr)
            throw std::bad_alloc();
        sqlite3_vfs usual = *found;
        usual.zName = "quarrynet-as-named";
        usual.xFullPathname = nameAsGiven;
        return usual;
    }();
    static const char* const name = [] {
        if (sqlite3_vfs_register(&files, 0) != SQLITE_OK)
            throw std::bad_alloc();
        return files.zName;
    }();
    return name;
}

} // namespace

void Statement::Finalize::operator()(sqlite3_stmt* handle) const
{
    sqlite3_finalize(handle);
}

Statement::Statement(sqlite3_stmt* handle) : handle_(handle) {}

void Statement::bind(int parameter, std::string_view text)
{
    // A null pointer would bind NULL instead of an empty text.
    take(sqlite3_bind_text64(handle_.get(), parameter, text.empty() ? "" : text.data(), text.size(), SQLITE_TRANSIENT,
                             SQLITE_UTF8));
}

void Statement::bind(int parameter, std::int64_t number)
{
    take(sqlite3_bind_int64(handle_.get(), parameter, number));
}

void Statement::bind(int parameter, const std::optional<std::int64_t>& number)
{
    if (number)
        bind(parameter, *number);
    else
        take(sqlite3_bind_null(handle_.get(), parameter));
}

void Statement::bindPointer(int parameter, void* pointer, const char* type)
{
    take(sqlite3_bind_pointer(handle_.get(), parameter, pointer, type, nullptr));
}

/// SQLite binds NULL for a text that it cannot allocate, and a row with it would look valid.
void Statement::take(int code)
{
    if (bindFault_ == SQLITE_OK && code != SQLITE_RANGE)
        bindFault_ = code;
}

Statement::Step Statement::step()
{
    if (bindFault_ != SQLITE_OK)
        return Step::Failed;
    switch (sqlite3_step(handle_.get())) {
    case SQLITE_ROW:
        return Step::Row;
    case SQLITE_DONE:
        return Step::Finished;
    default:
        return Step::Failed;
    }
}

Outcome<Done> Statement::run()
{
    Step result = step();
    while (result == Step::Row)
        result = step();
    if (result == Step::Failed) {
        Failure fault = failure();
        reset();
        return fault;
    }
    reset();
    return Done{};
}

void Statement::reset()
{
    sqlite3_reset(handle_.get());
    sqlite3_clear_bindings(handle_.get());
    bindFault_ = SQLITE_OK;
}

std::string_view Statement::text(int column) const
{
    const unsigned char* bytes = sqlite3_column_text(handle_.get(), column);
    if (bytes == nullptr)
        return {};
    return {reinterpret_cast<const char*>(bytes),
            static_cast<std::size_t>(sqlite3_column_bytes(handle_.get(), column))};
}

std::int64_t Statement::number(int column) const
{
    return sqlite3_column_int64(handle_.get(), column);
}

bool Statement::isNull(int column) const
{
    return sqlite3_column_type(handle_.get(), column) == SQLITE_NULL;
}

Failure Statement::failure() const
{
    if (bindFault_ != SQLITE_OK)
        return Failure{std::string("the index database reports: ") + sqlite3_errstr(bindFault_)};
    return describeFault(sqlite3_db_handle(handle_.get()));
}

void Database::Close::operator()(sqlite3* handle) const
{
    sqlite3_close_v2(handle);
}

Outcome<Database> Database::open(const std::string& path, Access access)
{
    const int flags = SQLITE_OPEN_NOMUTEX |
                      (access == Access::Read ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    sqlite3* handle = nullptr;
    const int code = sqlite3_open_v2(path.c_str(), &handle, flags, filesAsNamed());
    Handle owned(handle);
    if (handle == nullptr)
        return Failure{"out of memory while opening " + path};
    if (code != SQLITE_OK)
        return Failure{"cannot open " + path + ": " + sqlite3_errmsg(handle)};
    sqlite3_busy_timeout(handle, kBusyMilliseconds);
    return Database(std::move(owned));
}

Outcome<Statement> Database::prepare(std::string_view sql)
{
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(handle_.get(), sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
    if (code != SQLITE_OK)
        return describeFault(handle_.get());
    return Statement(statement);
}

Outcome<Done> Database::execute(const char* sql)
{
    if (sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        return describeFault(handle_.get());
    return Done{};
}

std::int64_t Database::lastRowId() const
{
    return sqlite3_last_insert_rowid(handle_.get());
}

bool Database::isNoDatabase() const
{
    return sqlite3_errcode(handle_.get()) == SQLITE_NOTADB;
}

bool Database::isDamaged() const
{
    return sqlite3_errcode(handle_.get()) == SQLITE_CORRUPT;
}

void Database::stopWhen(std::function<bool()> stop)
{
    *stop_ = std::move(stop);
    const auto ask = [](void* question) { return (*static_cast<std::function<bool()>*>(question))() ? 1 : 0; };
    if (*stop_)
        sqlite3_progress_handler(handle_.get(), kStepsBetweenQuestions, ask, stop_.get());
    else
        sqlite3_progress_handler(handle_.get(), 0, nullptr, nullptr);
}

} // namespace quarrynet::services

#include "index/database.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

#include "ground/CurrentTask.h"
#include "index/excerpt.h"

namespace quarrynet::services {

namespace {

// Ordinary tables hold the texts, and full-text tables only the search data. Rows of file_entry are numbered in the
// order in which searches show them, so that a search with many matches need not sort them; those of program, in the
// order of the matches whose names begin with the typed text. The names of a page are its packages. file_site.crawled
// is in seconds since 1970, or 0 when the files come from package lists. The listed files are those in packages;
// name_blocks.h describes them.
constexpr const char* kTables = R"(
CREATE TABLE folder(id INTEGER PRIMARY KEY, path TEXT NOT NULL);
CREATE TABLE document(folder INTEGER NOT NULL, path TEXT NOT NULL, PRIMARY KEY(folder, path)) WITHOUT ROWID;
CREATE TABLE shown_picture(folder INTEGER NOT NULL, path TEXT NOT NULL, PRIMARY KEY(folder, path)) WITHOUT ROWID;

CREATE TABLE web_page(id INTEGER PRIMARY KEY, address TEXT NOT NULL, title TEXT NOT NULL, description TEXT NOT NULL);
CREATE VIRTUAL TABLE web_page_text USING fts5(title, description, content='web_page', content_rowid='id',
    tokenize='porter unicode61 remove_diacritics 2');
CREATE TABLE page_name(name TEXT NOT NULL COLLATE NOCASE, page INTEGER NOT NULL, PRIMARY KEY(name, page)) WITHOUT ROWID;

CREATE TABLE mirror(id INTEGER PRIMARY KEY, base TEXT NOT NULL UNIQUE);
CREATE TABLE program(id INTEGER PRIMARY KEY, name TEXT NOT NULL COLLATE NOCASE, description TEXT NOT NULL, system TEXT NOT NULL,
    size INTEGER NOT NULL, licence TEXT NOT NULL, mirror INTEGER NOT NULL, file TEXT NOT NULL, title TEXT NOT NULL,
    alias TEXT NOT NULL COLLATE NOCASE, words TEXT NOT NULL);
CREATE INDEX program_file ON program(file);
CREATE INDEX program_name ON program(name);
CREATE INDEX program_alias ON program(alias);
CREATE VIRTUAL TABLE program_text USING fts5(name, title, description, words, content='program', content_rowid='id',
    tokenize='porter unicode61 remove_diacritics 2');

CREATE TABLE file_site(id INTEGER PRIMARY KEY, base TEXT NOT NULL UNIQUE, crawled INTEGER NOT NULL);
CREATE TABLE file_folder(id INTEGER PRIMARY KEY, site INTEGER NOT NULL, path TEXT NOT NULL);
CREATE TABLE file_entry(id INTEGER PRIMARY KEY, folder INTEGER NOT NULL, name TEXT NOT NULL COLLATE NOCASE,
    size INTEGER, directory INTEGER NOT NULL);
CREATE INDEX file_folder_path ON file_folder(path);
CREATE INDEX file_entry_folder ON file_entry(folder);
CREATE INDEX file_entry_name ON file_entry(name);
CREATE VIRTUAL TABLE file_name USING fts5(name, content='file_entry', content_rowid='id', tokenize='trigram');

CREATE TABLE listed_folder(id INTEGER PRIMARY KEY, path TEXT NOT NULL);
CREATE TABLE listed_package(id INTEGER PRIMARY KEY, program INTEGER NOT NULL);
CREATE TABLE listed_block(id INTEGER PRIMARY KEY, names BLOB NOT NULL, places BLOB NOT NULL);
CREATE TABLE listed_trigram(id INTEGER PRIMARY KEY, blocks BLOB NOT NULL);

CREATE TABLE picture_folder(id INTEGER PRIMARY KEY, path TEXT NOT NULL);
CREATE TABLE picture(id INTEGER PRIMARY KEY, folder INTEGER NOT NULL, path TEXT NOT NULL, name TEXT NOT NULL,
    place TEXT NOT NULL, stem TEXT NOT NULL, version INTEGER NOT NULL);
CREATE UNIQUE INDEX picture_path ON picture(folder, path);
CREATE VIRTUAL TABLE picture_text USING fts5(name, place, content='picture', content_rowid='id',
    tokenize='porter unicode61 remove_diacritics 2');
)";

std::function<bool()> timeIsUp(std::chrono::milliseconds time)
{
    return [deadline = std::chrono::steady_clock::now() + time] {
        return CurrentTask::abandoned() || std::chrono::steady_clock::now() >= deadline;
    };
}

} // namespace

std::string indexPath(const std::string& dataFolder)
{
    return (std::filesystem::path(dataFolder) / "index.sqlite").string();
}

Outcome<std::int64_t> indexLayout(Database& database)
{
    Outcome<Statement> statement = database.prepare("PRAGMA user_version");
    if (!statement)
        return statement.error();
    if (statement->step() != Statement::Step::Row)
        return statement->failure();
    return statement->number(0);
}

Outcome<std::optional<Database>> openToTakeOver(const std::string& dataFolder)
{
    const std::string path = indexPath(dataFolder);
    struct stat status
    {};
    if (::stat(path.c_str(), &status) != 0) {
        if (errno == ENOENT)
            return std::optional<Database>();
        return keepOld(dataFolder, Failure{std::strerror(errno)});
    }
    Outcome<Database> old = Database::open(path, Database::Access::Read);
    if (!old)
        return keepOld(dataFolder, old.error());
    const Outcome<std::int64_t> layout = indexLayout(*old);
    if (!layout && !old->isNoDatabase())
        return keepOld(dataFolder, layout.error());
    if (!layout || *layout != kIndexLayout)
        return std::optional<Database>();
    return std::optional<Database>(std::move(*old));
}

Outcome<Done> refuseNewerIndex(const std::string& dataFolder)
{
    Outcome<Database> old = Database::open(indexPath(dataFolder), Database::Access::Read);
    const Outcome<std::int64_t> layout = old ? indexLayout(*old) : Outcome<std::int64_t>(old.error());
    if (!layout || *layout <= kIndexLayout)
        return Done{};
    return Failure{"the index in " + dataFolder + " is from a newer version of this program, and is kept; " +
                   newerIndexRemedy(indexCommands(dataFolder, Reader::Owner))};
}

Failure keepOld(const std::string& dataFolder, const Failure& fault)
{
    return Failure{"the index in use cannot be read, and is kept (" + fault.message +
                   "); if the error persists, remove " + indexPath(dataFolder)};
}

Outcome<Done> createTables(Database& database)
{
    const std::string version = "PRAGMA user_version = " + std::to_string(kIndexLayout);
    Outcome<Done> result = database.execute(version.c_str());
    return result ? database.execute(kTables) : result;
}

IndexPool::Lease::~Lease()
{
    if (database_ != nullptr)
        pool_->giveBack(std::move(database_), generation_);
}

void IndexPool::keepFolder()
{
#ifdef __linux__
    const std::string folder = std::filesystem::path(path_).parent_path().string();
    folder_ = Descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::string held = "/proc/self/fd/" + std::to_string(folder_.number());
    if (folder_ && ::access(held.c_str(), X_OK) == 0)
        path_ = indexPath(held);
#endif
}

void IndexPool::closeIdle()
{
    const std::lock_guard lock(mutex_);
    idle_.clear();
}

Outcome<IndexPool::Lease> IndexPool::borrow() &
{
    struct stat status
    {};
    if (::stat(path_.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return Failure{"there is no index yet; run \"" + commands_.make + "\" to make one"};
        return Failure{std::string("the index cannot be read: ") + std::strerror(errno)};
    }
    std::uint64_t generation = 0;
    {
        const std::lock_guard lock(mutex_);
        const auto device = static_cast<std::uint64_t>(status.st_dev);
        const auto inode = static_cast<std::uint64_t>(status.st_ino);
        if (device != device_ || inode != inode_) {
            device_ = device;
            inode_ = inode;
            idle_.clear();
            ++generation_;
        }
        generation = generation_;
        if (!idle_.empty()) {
            Lease lease(*this, std::move(idle_.back()), generation);
            idle_.pop_back();
            lease->stopWhen(timeIsUp(queryTime_));
            return lease;
        }
    }
    Outcome<std::unique_ptr<Database>> made = connect();
    if (!made)
        return made.error();
    Lease lease(*this, std::move(*made), generation);
    lease->stopWhen(timeIsUp(queryTime_));
    return lease;
}

Outcome<std::unique_ptr<Database>> IndexPool::connect()
{
    Outcome<Database> opened = Database::open(path_, Database::Access::Read);
    if (!opened)
        return opened.error();
    const Outcome<std::int64_t> layout = indexLayout(*opened);
    const std::string remedy = "; run \"" + commands_.make + "\" to make a new one";
    if (!layout && opened->isDamaged())
        return Failure{layout.error().message + "; if this persists, remove " + removable_ + ", then run \"" +
                       commands_.make + "\""};
    if (!layout)
        return opened->isNoDatabase() ? Failure{layout.error().message + remedy} : layout.error();
    if (*layout > kIndexLayout)
        return Failure{"the index is from a newer version of this program; " + newerIndexRemedy(commands_)};
    if (*layout != kIndexLayout)
        return Failure{"the index has another version" + remedy};
    const Outcome<Done> added = addExcerpt(*opened);
    if (!added)
        return added.error();
    return std::make_unique<Database>(std::move(*opened));
}

void IndexPool::giveBack(std::unique_ptr<Database> database, std::uint64_t generation)
{
    database->stopWhen(nullptr);
    const std::lock_guard lock(mutex_);
    try {
        if (generation == generation_)
            idle_.push_back(std::move(database));
    } catch (const std::bad_alloc&) {
        database.reset(); // the next borrow() connects again
    }
}

} // namespace quarrynet::services

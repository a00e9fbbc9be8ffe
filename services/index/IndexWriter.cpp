#include "index/IndexWriter.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include "ground/durable_file.h"
#include "ground/utf8.h"
#include "index/database.h"

namespace quarrynet::services {

namespace {

/// Files that root creates in a user's data folder go to that user, who, like services that gave up root's rights, must
/// be able to read them.
void giveToOwnerOf(const std::string& folder, const Descriptor& file)
{
    struct stat status
    {};
    if (::geteuid() != 0 || ::stat(folder.c_str(), &status) != 0 || status.st_uid == 0)
        return;
    struct stat own
    {};
    // Another name of the file may be in a folder that this user cannot write to.
    if (::fstat(file.number(), &own) != 0 || !S_ISREG(own.st_mode) || own.st_nlink != 1)
        return;
    if (::fchown(file.number(), status.st_uid, status.st_gid) != 0)
        return; // the first to read the file reports the error
}

} // namespace

Outcome<IndexLock> IndexLock::take(const std::string& dataFolder, const std::function<bool()>& again)
{
    const std::string path = (std::filesystem::path(dataFolder) / "index.lock").string();
    Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (!file)
        return Failure{"cannot write to " + dataFolder + ": " + std::strerror(errno)};
    giveToOwnerOf(dataFolder, file);
    while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR)
            continue;
        if (errno != EWOULDBLOCK)
            return Failure{"cannot lock the index in " + dataFolder + ": " + std::strerror(errno)};
        if (!again || !again())
            return Failure{"another quarrynet-services is writing the index in " + dataFolder};
    }
    return IndexLock(std::move(file));
}

struct IndexWriter::Parts
{
    enum Insert : std::size_t
    {
        FolderRow,
        DocumentRow,
        ShownPictureRow,
        PageRow,
        PageTextRow,
        PageNameRow,
        MirrorRow,
        ProgramRow,
        ProgramTextRow,
        SiteRow,
        FileFolderRow,
        FileRow,
        FileNameRow,
        ListedFolderRow,
        ListedPackageRow,
        ListedBlockRow,
        ListedTrigramRow,
        PictureFolderRow,
        PictureRow,
        PictureTextRow,
        InsertCount,
    };

    std::string folder;
    std::string path;
    IndexLock lock;
    std::optional<Database> database = std::nullopt;
    std::vector<Statement> inserts = {};
    bool extending = false; ///< the database is a copy of the old index
    timespec asOf = {};     ///< what changed later is not in this index
    bool committed = false;

    Parts(std::string dataFolder, IndexLock taken)
        : folder(std::move(dataFolder)), path(indexPath(folder) + ".new"), lock(std::move(taken))
    {}
    ~Parts()
    {
        if (committed)
            return;
        close();
        std::remove(path.c_str());
    }
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    Outcome<Done> open(bool fromOld);
    Outcome<bool> copyOld() const;
    Outcome<Done> takeOverCrawls(IndexWriter& writer) const;
    void close()
    {
        inserts.clear();
        database.reset();
    }

    /// Runs one of the inserts with these texts and numbers.
    template <class... Values>
    Outcome<Done> insert(Insert which, const Values&... values)
    {
        Statement& statement = inserts[which];
        int parameter = 0;
        (statement.bind(++parameter, values), ...);
        return statement.run();
    }

    /// Runs insert() and returns the number of the new row.
    template <class... Values>
    Outcome<std::int64_t> insertRow(Insert which, const Values&... values)
    {
        const Outcome<Done> result = insert(which, values...);
        if (!result)
            return result.error();
        return database->lastRowId();
    }
};

/// Copies the index in use. Returns false when there is none to continue from.
Outcome<bool> IndexWriter::Parts::copyOld() const
{
    const Outcome<std::optional<Database>> old = openToTakeOver(folder);
    if (!old)
        return old.error();
    if (!*old)
        return false;
    std::error_code error;
    if (!std::filesystem::copy_file(indexPath(folder), path, error))
        return Failure{"cannot copy the index in " + folder + ": " + error.message()};
    return true;
}

Outcome<Done> IndexWriter::Parts::open(bool fromOld)
{
    // Leftover of an interrupted run.
    std::remove(path.c_str());
    ::clock_gettime(CLOCK_REALTIME, &asOf);
    if (fromOld) {
        const Outcome<bool> copied = copyOld();
        if (!copied)
            return copied.error();
        extending = *copied;
    } else if (const Outcome<std::optional<Database>> old = openToTakeOver(folder); !old) {
        return old.error(); // commit() would find it after minutes of work
    }
    struct stat status
    {};
    if (extending && ::stat(indexPath(folder).c_str(), &status) == 0)
        asOf = status.st_mtim;
    Outcome<Database> opened = Database::open(path, Database::Access::Create);
    if (!opened)
        return opened.error();
    database.emplace(std::move(*opened));
    // An incomplete file is discarded, so it needs no journal, and is flushed once at the end.
    Outcome<Done> result = database->execute("PRAGMA page_size = 8192; PRAGMA journal_mode = OFF;"
                                             "PRAGMA synchronous = OFF; PRAGMA cache_size = -65536;");
    if (result && !extending)
        result = createTables(*database);
    if (result)
        result = database->execute("BEGIN");
    if (!result)
        return result;
    constexpr std::array<std::string_view, InsertCount> kInserts{
        "INSERT INTO folder(path) VALUES (?1)",
        "INSERT INTO document(folder, path) VALUES (?1, ?2)",
        "INSERT OR IGNORE INTO shown_picture(folder, path) VALUES (?1, ?2)",
        "INSERT INTO web_page(address, title, description) VALUES (?1, ?2, ?3)",
        "INSERT INTO web_page_text(rowid, title, description) VALUES (?1, ?2, ?3)",
        "INSERT OR IGNORE INTO page_name(name, page) VALUES (?1, ?2)",
        "INSERT INTO mirror(base) VALUES (?1)",
        "INSERT INTO program(id, name, description, system, size, licence, mirror, file, title, alias, words) "
        "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)",
        "INSERT INTO program_text(rowid, name, title, description, words) VALUES (?1, ?2, ?3, ?4, ?5)",
        "INSERT INTO file_site(base, crawled) VALUES (?1, ?2)",
        "INSERT INTO file_folder(site, path) VALUES (?1, ?2)",
        "INSERT INTO file_entry(id, folder, name, size, directory) VALUES (?1, ?2, ?3, ?4, ?5)",
        "INSERT INTO file_name(rowid, name) VALUES (?1, ?2)",
        "INSERT INTO listed_folder(id, path) VALUES (?1, ?2)",
        "INSERT INTO listed_package(id, program) VALUES (?1, ?2)",
        "INSERT INTO listed_block(id, names, places) VALUES (?1, ?2, ?3)",
        "INSERT INTO listed_trigram(id, blocks) VALUES (?1, ?2)",
        "INSERT INTO picture_folder(path) VALUES (?1)",
        "INSERT INTO picture(folder, path, name, place, stem, version) VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
        "INSERT INTO picture_text(rowid, name, place) VALUES (?1, ?2, ?3)",
    };
    for (const std::string_view sql : kInserts) {
        Outcome<Statement> statement = database->prepare(sql);
        if (!statement)
            return statement.error();
        inserts.push_back(std::move(*statement));
    }
    return Done{};
}

/// Copies the crawled sites from the index in use.
Outcome<Done> IndexWriter::Parts::takeOverCrawls(IndexWriter& writer) const
{
    Outcome<std::optional<Database>> old = openToTakeOver(folder);
    if (!old)
        return old.error();
    if (!*old)
        return Done{};
    Outcome<Statement> rows = (*old)->prepare(
        "SELECT site.base, site.crawled, folder.id, folder.path, entry.id, entry.name, entry.size, entry.directory "
        "FROM file_site AS site JOIN file_folder AS folder ON folder.site = site.id "
        "JOIN file_entry AS entry ON entry.folder = folder.id WHERE site.crawled <> 0");
    if (!rows)
        return keepOld(folder, rows.error());
    std::map<std::string, std::int64_t, std::less<>> sites;
    std::map<std::int64_t, std::int64_t> folders;
    Statement::Step step = rows->step();
    for (; step == Statement::Step::Row; step = rows->step()) {
        const std::string base(rows->text(0));
        auto site = sites.find(base);
        if (site == sites.end()) {
            // A crawl saw the files that a mirror's package lists only announce, so it replaces them.
            const Outcome<Done> removed = writer.removeFileSite(base);
            if (!removed)
                return removed.error();
            const Outcome<std::int64_t> number = writer.addFileSite(base, rows->number(1));
            if (!number)
                return number.error();
            site = sites.emplace(base, *number).first;
        }
        auto place = folders.find(rows->number(2));
        if (place == folders.end()) {
            const Outcome<std::int64_t> number = writer.addFileFolder(site->second, rows->text(3));
            if (!number)
                return number.error();
            place = folders.emplace(rows->number(2), *number).first;
        }
        FileEntry entry{place->second, std::string(rows->text(5))};
        if (!rows->isNull(6))
            entry.size = rows->number(6);
        entry.directory = rows->number(7) != 0;
        Outcome<Done> added = writer.addFile(rows->number(4), entry);
        if (!added)
            return added;
    }
    if (step == Statement::Step::Failed)
        return keepOld(folder, rows->failure());
    return Done{};
}

Outcome<IndexWriter> IndexWriter::begin(const std::string& dataFolder, const std::function<bool()>& again,
                                        bool mayReplaceNewer)
{
    return start(dataFolder, IndexLock::take(dataFolder, again), false, mayReplaceNewer);
}

Outcome<IndexWriter> IndexWriter::extend(const std::string& dataFolder, const std::function<bool()>& again)
{
    return start(dataFolder, IndexLock::take(dataFolder, again), true, false);
}

Outcome<IndexWriter> IndexWriter::start(const std::string& dataFolder, Outcome<IndexLock> lock, bool fromOld,
                                        bool mayReplaceNewer)
{
    if (!lock)
        return lock.error();
    if (!mayReplaceNewer) {
        const Outcome<Done> known = refuseNewerIndex(dataFolder);
        if (!known)
            return known.error();
    }
    auto parts = std::make_unique<Parts>(dataFolder, std::move(*lock));
    const Outcome<Done> opened = parts->open(fromOld);
    if (!opened)
        return opened.error();
    return IndexWriter(std::move(parts));
}

IndexWriter::IndexWriter(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

IndexWriter::IndexWriter(IndexWriter&&) noexcept = default;

IndexWriter::~IndexWriter() = default;

Outcome<std::int64_t> IndexWriter::addFolder(const std::string& path)
{
    return parts_->insertRow(Parts::FolderRow, path);
}

Outcome<Done> IndexWriter::addDocument(std::int64_t folder, std::string_view path)
{
    return parts_->insert(Parts::DocumentRow, folder, path);
}

Outcome<Done> IndexWriter::addShownPicture(std::int64_t folder, std::string_view path)
{
    return parts_->insert(Parts::ShownPictureRow, folder, path);
}

Outcome<Done> IndexWriter::addPage(std::string_view address, std::string_view title, std::string_view description,
                                   const std::vector<std::string>& names)
{
    title = clipUtf8(title, kMaxIndexedName);
    description = clipUtf8(description, kMaxIndexedText);
    const Outcome<std::int64_t> row = parts_->insertRow(Parts::PageRow, address, title, description);
    if (!row)
        return row.error();
    Outcome<Done> result = parts_->insert(Parts::PageTextRow, *row, title, description);
    for (auto name = names.begin(); result && name != names.end(); ++name)
        result = parts_->insert(Parts::PageNameRow, *name, *row);
    return result;
}

Outcome<std::int64_t> IndexWriter::addMirror(std::string_view base)
{
    return parts_->insertRow(Parts::MirrorRow, base);
}

Outcome<Done> IndexWriter::addProgram(std::int64_t number, const Program& program)
{
    const std::string_view name = clipUtf8(program.name, kMaxIndexedName);
    const std::string_view title = clipUtf8(program.title, kMaxIndexedName);
    const std::string_view description = clipUtf8(program.description, kMaxIndexedName);
    const std::string_view words = clipUtf8(program.words, kMaxIndexedName);
    Outcome<Done> result =
        parts_->insert(Parts::ProgramRow, number, name, description, clipUtf8(program.system, kMaxIndexedName),
                       program.size, clipUtf8(program.license, kMaxIndexedName), program.mirror, program.file, title,
                       clipUtf8(program.alias, kMaxIndexedName), words);
    return result ? parts_->insert(Parts::ProgramTextRow, number, name, title, description, words) : result;
}

Outcome<std::int64_t> IndexWriter::addFileSite(std::string_view base, std::int64_t crawled)
{
    return parts_->insertRow(Parts::SiteRow, base, crawled);
}

Outcome<std::int64_t> IndexWriter::addFileFolder(std::int64_t site, std::string_view path)
{
    return parts_->insertRow(Parts::FileFolderRow, site, path);
}

Outcome<Done> IndexWriter::addFile(std::int64_t number, const FileEntry& entry)
{
    Outcome<Done> result = parts_->insert(Parts::FileRow, number, entry.folder, entry.name, entry.size,
                                          static_cast<std::int64_t>(entry.directory ? 1 : 0));
    return result ? parts_->insert(Parts::FileNameRow, number, entry.name) : result;
}

Outcome<std::optional<std::int64_t>> IndexWriter::findProgram(std::string_view name, std::int64_t mirror)
{
    Outcome<Statement> statement = parts_->database->prepare(
        "SELECT id FROM program WHERE name = ?1 COLLATE BINARY AND name = ?1 ORDER BY mirror <> ?2, id LIMIT 1");
    if (!statement)
        return statement.error();
    statement->bind(1, name);
    statement->bind(2, mirror);
    const Statement::Step step = statement->step();
    if (step == Statement::Step::Failed)
        return statement->failure();
    return step == Statement::Step::Row ? std::optional(statement->number(0)) : std::nullopt;
}

Outcome<Done> IndexWriter::addListedFolder(std::uint32_t number, std::string_view path)
{
    return parts_->insert(Parts::ListedFolderRow, std::int64_t{number}, path);
}

Outcome<Done> IndexWriter::addListedPackage(std::uint32_t number, std::int64_t program)
{
    return parts_->insert(Parts::ListedPackageRow, std::int64_t{number}, program);
}

Outcome<Done> IndexWriter::addListedBlock(std::uint32_t number, std::string_view names, std::string_view places)
{
    return parts_->insert(Parts::ListedBlockRow, std::int64_t{number}, names, places);
}

Outcome<Done> IndexWriter::addListedTrigram(std::uint32_t slot, std::string_view list)
{
    return parts_->insert(Parts::ListedTrigramRow, std::int64_t{slot}, list);
}

Outcome<std::int64_t> IndexWriter::addPictureFolder(const std::string& path)
{
    return parts_->insertRow(Parts::PictureFolderRow, path);
}

Outcome<Done> IndexWriter::addPicture(std::int64_t folder, const Picture& picture)
{
    const Outcome<std::int64_t> row = parts_->insertRow(Parts::PictureRow, folder, picture.path, picture.name,
                                                        picture.place, picture.stem, picture.version);
    if (!row)
        return row.error();
    return parts_->insert(Parts::PictureTextRow, *row, picture.name, picture.place);
}

Outcome<Done> IndexWriter::removeFileSite(std::string_view base)
{
    // The full-text table needs the names of the removed files while they still exist.
    constexpr std::array<std::string_view, 4> kSteps{
        "INSERT INTO file_name(file_name, rowid, name) SELECT 'delete', entry.id, entry.name FROM file_entry AS entry "
        "WHERE folder IN (SELECT folder.id FROM file_folder AS folder JOIN file_site AS site ON site.id = folder.site "
        "WHERE site.base = ?1)",
        "DELETE FROM file_entry WHERE folder IN (SELECT folder.id FROM file_folder AS folder "
        "JOIN file_site AS site ON site.id = folder.site WHERE site.base = ?1)",
        "DELETE FROM file_folder WHERE site IN (SELECT id FROM file_site WHERE base = ?1)",
        "DELETE FROM file_site WHERE base = ?1",
    };
    for (const std::string_view sql : kSteps) {
        Outcome<Statement> statement = parts_->database->prepare(sql);
        if (!statement)
            return statement.error();
        statement->bind(1, base);
        Outcome<Done> result = statement->run();
        if (!result)
            return result;
    }
    return Done{};
}

Outcome<std::int64_t> IndexWriter::nextCrawledFile()
{
    Outcome<Statement> statement =
        parts_->database->prepare("SELECT coalesce(max(id), 0) + 1 FROM file_entry WHERE id < ?1");
    if (!statement)
        return statement.error();
    statement->bind(1, kFirstPackageFile);
    if (statement->step() != Statement::Step::Row)
        return statement->failure();
    return statement->number(0);
}

Outcome<Done> IndexWriter::commit()
{
    Outcome<Done> result = parts_->extending ? Done{} : parts_->takeOverCrawls(*this);
    if (result)
        result = parts_->database->execute("INSERT INTO web_page_text(web_page_text) VALUES ('optimize');"
                                           "INSERT INTO program_text(program_text) VALUES ('optimize');"
                                           "INSERT INTO file_name(file_name) VALUES ('optimize');"
                                           "INSERT INTO picture_text(picture_text) VALUES ('optimize');"
                                           "COMMIT; PRAGMA journal_mode = DELETE;");
    if (!result)
        return result;
    parts_->close();
    const std::string target = indexPath(parts_->folder);
    if (const Descriptor made{::open(parts_->path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW)}) {
        giveToOwnerOf(parts_->folder, made);
        // Package lists that changed meanwhile are newer than the index, so that the package tool's hook renews it.
        const std::array<timespec, 2> times{timespec{0, UTIME_OMIT}, parts_->asOf};
        (void)::futimens(made.number(), times.data());
    }
    std::error_code error = flushFile(parts_->path);
    if (!error)
        error = renameDurably(parts_->path, target);
    if (error)
        return Failure{"cannot replace the index: " + error.message()};
    parts_->committed = true;
    return Done{};
}

} // namespace quarrynet::services

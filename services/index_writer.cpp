#include "services/index_writer.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

#include "services/index_database.h"

namespace quarrynet::services {

namespace {

/// Waits until the file's or folder's content is on the disk.
bool flush(const std::string& path)
{
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool flushed = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return flushed;
}

} // namespace

Outcome<IndexLock> IndexLock::take(const std::string& dataFolder)
{
    const std::string path = (std::filesystem::path(dataFolder) / "index.lock").string();
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (descriptor < 0)
        return Failure{"cannot write in " + dataFolder + ": " + std::strerror(errno)};
    IndexLock lock(descriptor);
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0)
        return Failure{"another quarrynet-services is writing the index in " + dataFolder};
    return lock;
}

IndexLock::IndexLock(IndexLock&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

IndexLock& IndexLock::operator=(IndexLock&& other) noexcept
{
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

IndexLock::~IndexLock()
{
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

struct IndexWriter::Parts
{
    std::string folder;
    std::string path;
    IndexLock lock;
    std::optional<Database> database = std::nullopt;
    std::optional<Statement> insertFolder = std::nullopt;
    std::optional<Statement> insertPage = std::nullopt;
    std::optional<Statement> insertPageText = std::nullopt;
    bool committed = false;

    Outcome<Done> open();
    void close()
    {
        insertFolder.reset();
        insertPage.reset();
        insertPageText.reset();
        database.reset();
    }
};

Outcome<Done> IndexWriter::Parts::open()
{
    // What an interrupted run left behind is worth nothing.
    std::remove(path.c_str());
    Outcome<Database> opened = Database::open(path, Database::Access::Create);
    if (!opened)
        return opened.failure();
    database.emplace(std::move(*opened));
    // The file is thrown away unless it becomes whole, so it needs no journal, and is flushed once at the end.
    Outcome<Done> result = database->execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;"
                                             "PRAGMA cache_size = -65536; PRAGMA page_size = 8192;");
    if (result)
        result = createTables(*database);
    if (result)
        result = database->execute("BEGIN");
    if (!result)
        return result;
    const std::pair<std::optional<Statement>*, std::string_view> statements[] = {
        {&insertFolder, "INSERT INTO folder(path) VALUES (?1)"},
        {&insertPage, "INSERT INTO web_page(address, title, description) VALUES (?1, ?2, ?3)"},
        {&insertPageText, "INSERT INTO web_page_text(rowid, title, description) VALUES (?1, ?2, ?3)"},
    };
    for (const auto& [target, sql] : statements) {
        Outcome<Statement> statement = database->prepare(sql);
        if (!statement)
            return statement.failure();
        target->emplace(std::move(*statement));
    }
    return Done{};
}

Outcome<IndexWriter> IndexWriter::begin(const std::string& dataFolder)
{
    Outcome<IndexLock> lock = IndexLock::take(dataFolder);
    if (!lock)
        return lock.failure();
    auto parts = std::make_unique<Parts>(Parts{dataFolder, indexPath(dataFolder) + ".new", std::move(*lock)});
    const Outcome<Done> opened = parts->open();
    if (!opened)
        return opened.failure();
    return IndexWriter(std::move(parts));
}

IndexWriter::IndexWriter(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

IndexWriter::IndexWriter(IndexWriter&&) noexcept = default;

IndexWriter::~IndexWriter()
{
    if (parts_ == nullptr || parts_->committed)
        return;
    parts_->close();
    std::remove(parts_->path.c_str());
}

Outcome<std::int64_t> IndexWriter::addFolder(const std::string& path)
{
    parts_->insertFolder->bind(1, path);
    const Outcome<Done> result = parts_->insertFolder->run();
    if (!result)
        return result.failure();
    return parts_->database->lastRowId();
}

Outcome<Done> IndexWriter::addPage(std::string_view address, std::string_view title, std::string_view description)
{
    Statement& page = *parts_->insertPage;
    page.bind(1, address);
    page.bind(2, title);
    page.bind(3, description);
    Outcome<Done> result = page.run();
    if (!result)
        return result;
    Statement& text = *parts_->insertPageText;
    text.bind(1, parts_->database->lastRowId());
    text.bind(2, title);
    text.bind(3, description);
    return text.run();
}

Outcome<Done> IndexWriter::commit()
{
    Outcome<Done> result = parts_->database->execute(
        "INSERT INTO web_page_text(web_page_text) VALUES ('optimize'); COMMIT; PRAGMA journal_mode = DELETE;");
    if (!result)
        return result;
    parts_->close();
    const std::string target = indexPath(parts_->folder);
    if (!flush(parts_->path) || std::rename(parts_->path.c_str(), target.c_str()) != 0)
        return Failure{"cannot put the new index in its place: " + std::string(std::strerror(errno))};
    parts_->committed = true;
    // Without this a power cut could still bring the old index back, which would be whole as well.
    flush(parts_->folder);
    return Done{};
}

} // namespace quarrynet::services

#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ground/Outcome.h"
#include "index/sqlite.h"

/// The index: one SQLite file in the data folder. A new index takes the place of the old one by renaming, so whoever
/// has the file open keeps a whole one.
namespace quarrynet::services {

/// The file's place in the data folder.
std::string indexPath(const std::string& dataFolder);

/// Goes up whenever the tables change; an index of another layout has to be made anew.
inline constexpr int kIndexLayout = 6;

/// Files of the package lists are numbered from here on, those of crawled sites below it: whoever crawled a server
/// wants to see its files before others that answer as well.
inline constexpr std::int64_t kFirstPackageFile = std::int64_t{1} << 40;

/// Programs that go with another one are numbered from here on.
inline constexpr std::int64_t kFirstCompanion = std::int64_t{1} << 40;

/// The layout of an index; fails for a file that is no database.
Outcome<std::int64_t> indexLayout(Database& database);

/// Opens the index in use for a new one to take over from; nothing where there is no index, or one of another layout,
/// or no database. Fails where it is there but cannot be read: then it is not to be replaced. (SQLite calls an index
/// damaged when its disk fails for a moment, so one that is damaged may well be whole.)
Outcome<std::optional<Database>> openToTakeOver(const std::string& dataFolder);

/// What to say when a new index cannot be made because of `fault` in the one in use.
Failure keepOld(const std::string& dataFolder, const Failure& fault);

/// Makes the tables in an empty database.
Outcome<Done> createTables(Database& database);

/// A search fails when it has taken so long: no document and no words hold the others up for longer.
inline constexpr std::chrono::milliseconds kMaxQueryTime = std::chrono::seconds(2);

/// Connections for reading, one for each search under way, kept for the next one.
class IndexPool
{
public:
    explicit IndexPool(const std::string& dataFolder, std::chrono::milliseconds queryTime = kMaxQueryTime)
        : path_(indexPath(dataFolder)), queryTime_(queryTime)
    {}

    ~IndexPool();
    IndexPool(const IndexPool&) = delete;
    IndexPool& operator=(const IndexPool&) = delete;

    /// Keeps the data folder open, so that the index is found even when this process loses the right to go there.
    /// Before the first borrow() only. Nothing happens where the system cannot do it.
    void keepFolder();

    /// Closes the connections that nobody has borrowed: what they opened stays open to them whatever rights are left.
    void closeIdle();

    /// A borrowed connection; goes back when it ends.
    class Lease
    {
    public:
        Lease(IndexPool& pool, std::unique_ptr<Database> database, std::uint64_t generation)
            : pool_(&pool), database_(std::move(database)), generation_(generation)
        {}
        Lease(Lease&&) = default;
        Lease& operator=(Lease&&) = default;
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;
        ~Lease();

        Database& operator*() { return *database_; }
        Database* operator->() { return database_.get(); }

    private:
        IndexPool* pool_;
        std::unique_ptr<Database> database_;
        std::uint64_t generation_;
    };

    /// Returns a connection to the index that is there now, or a Failure that says what to do when there is none. Its
    /// statements fail when the query time, counted from now, is over, or when this thread's task (CurrentTask) is
    /// abandoned. It has excerpt().
    Outcome<Lease> borrow();

private:
    Outcome<std::unique_ptr<Database>> connect();
    void giveBack(std::unique_ptr<Database> database, std::uint64_t generation);

    std::string path_;
    int folder_ = -1; ///< kept open; -1: not so
    std::chrono::milliseconds queryTime_;
    std::mutex mutex_;
    std::vector<std::unique_ptr<Database>> idle_;
    std::uint64_t generation_ = 0; ///< of the file that idle_ belongs to
    std::uint64_t device_ = 0;
    std::uint64_t inode_ = 0;
};

} // namespace quarrynet::services

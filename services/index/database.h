#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ground/Descriptor.h"
#include "ground/Outcome.h"
#include "index/index_place.h"
#include "index/sqlite.h"

/// The index: one SQLite file in the data folder. A new index replaces the old one by renaming, so whoever has the old
/// file open keeps it intact.
namespace quarrynet::services {

/// Returns the path of the index in the data folder.
std::string indexPath(const std::string& dataFolder);

/// Incremented whenever the tables change; an index with another layout must be rebuilt.
inline constexpr int kIndexLayout = 8;

/// Files from package lists are numbered from here on, those of crawled sites below it: a user who crawled a server
/// expects its files before other matches.
inline constexpr std::int64_t kFirstPackageFile = std::int64_t{1} << 40;

/// Companions of other programs are numbered from here on.
inline constexpr std::int64_t kFirstCompanion = std::int64_t{1} << 40;

/// Returns the layout of an index. Fails for a file that is not a database.
Outcome<std::int64_t> indexLayout(Database& database);

/// Opens the index in use, to copy from it. Returns nothing when there is no index, or one of another layout, or a file
/// that is not a database. Fails when the index cannot be read; it must not be replaced then, because SQLite reports an
/// intact index as damaged when the disk fails for a moment.
Outcome<std::optional<Database>> openToTakeOver(const std::string& dataFolder);

/// Fails for an index of a newer version of this program, which only its user may decide to lose. Other faults are
/// those of openToTakeOver().
Outcome<Done> refuseNewerIndex(const std::string& dataFolder);

/// Returns the message for a new index that cannot be made because of `fault` in the old one.
Failure keepOld(const std::string& dataFolder, const Failure& fault);

/// Creates the tables in an empty database.
Outcome<Done> createTables(Database& database);

/// A search that takes longer fails, so that no document and no words delay the others for longer.
inline constexpr std::chrono::milliseconds kMaxQueryTime = std::chrono::seconds(2);

/// Read connections: one for each running search, kept for later ones.
class IndexPool
{
public:
    /// `reader`: who reads the messages about this index. Make the pool before the process gives up root's rights.
    explicit IndexPool(const std::string& dataFolder, std::chrono::milliseconds queryTime = kMaxQueryTime,
                       Reader reader = Reader::Anybody)
        : isSystems_(isSystemsFolder(dataFolder))
        , commands_(indexCommands(dataFolder, reader))
        , path_(indexPath(dataFolder))
        , removable_(reader == Reader::Owner ? path_ : "index.sqlite from the data folder")
        , queryTime_(queryTime)
    {}

    IndexPool(const IndexPool&) = delete;
    IndexPool& operator=(const IndexPool&) = delete;

    /// Keeps the data folder open, so that the index is found even after this process has lost the right to enter it.
    /// Call before the first borrow() only. Does nothing where the system does not support it.
    void keepFolder();

    /// Returns the path by which this process finds the index.
    const std::string& path() const { return path_; }

    /// Returns whether this is the index of the system's services.
    bool isSystems() const { return isSystems_; }

    /// Returns the command that makes this index, for the reader of its messages.
    const std::string& makingCommand() const { return commands_.make; }

    /// Closes idle connections. Call it after giving up rights, because they were opened with the former ones.
    void closeIdle();

    /// A borrowed connection; the destructor returns it to the pool.
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

    /// Returns a connection to the current index, or a Failure that says what to do when there is none. Its statements
    /// fail once the query time, counted from now, is over, or this thread's task (CurrentTask) is abandoned. It has
    /// excerpt(). The pool must outlive the lease.
    Outcome<Lease> borrow() &;

private:
    Outcome<std::unique_ptr<Database>> connect();
    void giveBack(std::unique_ptr<Database> database, std::uint64_t generation);

    bool isSystems_;
    IndexCommands commands_;
    std::string path_;
    std::string removable_; ///< the file's name in messages
    Descriptor folder_;     ///< empty if it could not be opened
    std::chrono::milliseconds queryTime_;
    std::mutex mutex_;
    std::vector<std::unique_ptr<Database>> idle_;
    std::uint64_t generation_ = 0; ///< counts the files seen; idle_ belongs to the latest
    std::uint64_t device_ = 0;
    std::uint64_t inode_ = 0;
};

} // namespace quarrynet::services

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "index/IndexWriter.h"
#include "index/name_blocks.h"

namespace quarrynet::services {

/// Limits for the files in packages, which stay in memory until they are written. The longest lists of an archive have
/// some ten million files with 600 MB of this memory.
struct ListedFileLimits
{
    std::size_t files = 32'000'000;
    std::size_t bytes = std::size_t{1536} * 1024 * 1024;
};

/// The files that the contents lists name.
class ListedFiles
{
public:
    explicit ListedFiles(const ListedFileLimits& limits = {}) : limits_(limits) {}

    /// Adds a package. Returns its number. `program` is its number in the index.
    std::uint32_t addPackage(std::int64_t program);

    /// Adds a file of a package. `path` is UTF-8, or Latin-1 if it cannot be UTF-8, and ends in the file's name. Adds
    /// nothing and returns false when the limits are used up.
    bool add(std::string_view path, std::uint32_t package);

    std::size_t size() const { return entries_.size(); }

    /// Writes the files in the order in which searches show them: short names, which a typed text covers best, come
    /// first, and of equal names the one in the shorter folder. May be called once, and forgets what it has written.
    Outcome<Done> write(IndexWriter& writer);

private:
    struct Entry
    {
        std::uint64_t key = 0; ///< length and first bytes of the name, which decide most comparisons
        const char* name = nullptr;
        ListedPlace place;
    };

    static std::string_view nameOf(const Entry& entry);
    static bool isBefore(const Entry& a, const Entry& b);
    const char* keep(std::string_view name);
    std::uint32_t folderNumber(std::string_view path);
    Outcome<Done> writeFolders(IndexWriter& writer);
    Outcome<Done> writeBlocks(IndexWriter& writer) const;

    ListedFileLimits limits_;
    std::size_t bytes_ = 0;
    std::vector<std::unique_ptr<char[]>> chunks_;
    std::size_t chunkUsed_ = 0;
    std::unordered_map<std::string, std::uint32_t> folderNumbers_;
    const std::string* lastFolder_ = nullptr; ///< successive lines of a list mostly share their folder
    std::uint32_t lastNumber_ = 0;
    std::vector<std::int64_t> packages_;
    std::vector<Entry> entries_;
};

} // namespace quarrynet::services

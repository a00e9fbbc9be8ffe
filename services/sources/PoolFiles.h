#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "index/IndexWriter.h"

namespace quarrynet::services {

/// Real paths have at most some 200 bytes and 6 levels. Each level of a path is stored in full.
inline constexpr std::size_t kMaxPoolPath = 1024;
inline constexpr std::size_t kMaxPoolLevels = 32;
/// Limit for the paths and names of all files together, which stay in memory until they are written.
inline constexpr std::size_t kMaxPoolBytes = 512 * 1024 * 1024;

/// The files that the package lists name, and their directories, as one site per mirror.
class PoolFiles
{
public:
    /// Adds a file. `base` is the mirror's address with its scheme and ends in "/"; `file` is the path below it. Adds
    /// nothing and returns false when the path exceeds kMaxPoolPath or kMaxPoolLevels, or kMaxPoolBytes are used up.
    bool add(std::string_view base, std::string_view file, std::int64_t size);

    /// Writes the entries in the order in which searches show them: short names, which a typed text covers best, come
    /// first, and files before directories of the same length.
    Outcome<Done> write(IndexWriter& writer);

private:
    struct Entry
    {
        std::size_t folder = 0;
        std::string name;
        std::int64_t size = 0;
        bool directory = false;
    };
    struct Folder
    {
        std::size_t site = 0;
        std::string path;
    };

    std::size_t folderNumber(std::size_t site, std::string_view path);

    std::size_t bytes_ = 0;
    std::vector<std::string> sites_;
    std::map<std::string, std::size_t, std::less<>> siteNumbers_;
    std::vector<Folder> folders_;
    std::vector<Entry> entries_;
    std::map<std::string, std::size_t, std::less<>> folderNumbers_; ///< the key is site number, "/" and path
};

} // namespace quarrynet::services

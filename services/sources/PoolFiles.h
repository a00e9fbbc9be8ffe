#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "index/IndexWriter.h"

namespace quarrynet::services {

/// Real ones have some 200 bytes and 6 levels at most. Each level of a path is kept whole.
inline constexpr std::size_t kMaxPoolPath = 1024;
inline constexpr std::size_t kMaxPoolLevels = 32;
/// For the paths and names of all files together, as they are kept until they are written.
inline constexpr std::size_t kMaxPoolBytes = 512 * 1024 * 1024;

/// The files that the package lists name, and the directories that they lie in, as one site for each mirror.
class PoolFiles
{
public:
    /// `base` is the mirror's address with its scheme, ending in "/"; `file` the path below it. Returns false, and adds
    /// nothing, where that is longer or deeper than any package's (kMaxPoolPath, kMaxPoolLevels), or kMaxPoolBytes are
    /// used up.
    bool add(std::string_view base, std::string_view file, std::int64_t size);

    /// Writes them in the order in which searches show them: short names, which a typed text covers best, go first, and
    /// of equal ones the files.
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
    std::map<std::string, std::size_t, std::less<>> folderNumbers_; ///< by site number, "/" and path
};

} // namespace quarrynet::services

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/Outcome.h"

/// A directory of a server, as its listing describes it.
namespace quarrynet::services {

/// One entry of a directory.
struct ListedEntry
{
    enum class Kind : std::uint8_t
    {
        File,
        Directory,
        Link, ///< symbolic; the type of the target is unknown
    };

    std::string name; ///< see canBeListedName()
    Kind kind = Kind::File;
    std::optional<std::int64_t> size = std::nullopt;
    std::string unique = {}; ///< identifies a file or directory under all its names; may be empty
    std::string target = {}; ///< target of a link; may be empty
};

/// Longer names are skipped: no file system has them.
inline constexpr std::size_t kMaxListedName = 1024;
/// If a directory has more entries, one more than this number is read.
inline constexpr std::size_t kMaxListedEntries = 200'000;
/// A directory with a longer listing counts as refused.
inline constexpr std::size_t kMaxListing = 16 * 1024 * 1024;

/// Returns whether a directory can have an entry with this name: not empty, "." or "..", of bounded length, and without
/// "/" and control characters.
bool canBeListedName(std::string_view name);

/// A server's answer to a request for a directory.
struct ListedDirectory
{
    bool refused = false; ///< the directory may not be listed, does not exist, or is too large
    std::string listing;  ///< as sent, or what identifies it; the same for a directory under another address
    std::vector<ListedEntry> entries;
    std::string reason = {}; ///< why it was refused, for a person to read; may be empty
};

/// Lists the directory `path` (see CrawlAddress::path) of a server. Fails when the server cannot be reached or violates
/// the protocol.
using DirectoryLister = std::function<Outcome<ListedDirectory>(std::string_view path)>;

/// Returns a refused directory.
ListedDirectory refusedDirectory(std::string reason);

} // namespace quarrynet::services

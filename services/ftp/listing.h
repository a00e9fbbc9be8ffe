#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarrynet::services {

/// The content of one line of a directory listing.
struct FtpEntry
{
    enum class Kind : std::uint8_t
    {
        File,
        Directory,
        Link, ///< symbolic; the type of the target is unknown
    };

    std::string name; ///< as sent; never empty, "." or "..", and without "/" and control characters
    Kind kind = Kind::File;
    std::optional<std::int64_t> size = std::nullopt;
    std::string unique = {}; ///< identifies a file or directory under all its names; may be empty
    std::string target = {}; ///< target of a link; may be empty
};

/// Longer lines and names are skipped: no file system has them.
inline constexpr std::size_t kMaxListingLine = 8 * 1024;
inline constexpr std::size_t kMaxListedName = 1024;
/// Longer facts are ignored.
inline constexpr std::size_t kMaxUniqueFact = 256;
/// If a directory has more entries, one more than this number is read.
inline constexpr std::size_t kMaxListedEntries = 200'000;

/// Parses an MLSD listing (RFC 3659, section 7). Skips lines in any other format, or whose name is not valid in a
/// directory.
std::vector<FtpEntry> readMlsd(std::string_view listing);

/// Parses a LIST listing in the same way. LIST has no standard format (RFC 959, section 4.1.3); those of Unix and
/// Windows servers are supported.
std::vector<FtpEntry> readList(std::string_view listing);

} // namespace quarrynet::services

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarrynet::services {

/// What a line of a directory listing says.
struct FtpEntry
{
    enum class Kind : std::uint8_t
    {
        File,
        Directory,
        Link, ///< symbolic; whether it leads to a file or a directory is not said
    };

    std::string name; ///< bytes as sent; never empty, ".", ".." or with a "/" or a control character
    Kind kind = Kind::File;
    std::optional<std::int64_t> size = std::nullopt;
    std::string unique = {}; ///< what the same file or directory has in common wherever it is shown; may be empty
    std::string target = {}; ///< where a link leads; may be empty
};

/// Longer lines and names are passed over: no file system has them.
inline constexpr std::size_t kMaxListingLine = 8 * 1024;
inline constexpr std::size_t kMaxListedName = 1024;
/// Longer ones count as if they were not said.
inline constexpr std::size_t kMaxUniqueFact = 256;
/// Of a directory that has more, one more than these is read.
inline constexpr std::size_t kMaxListedEntries = 200'000;

/// The entries of an MLSD listing (RFC 3659, section 7). Lines that say something else, or whose name cannot be one in
/// a directory, are passed over.
std::vector<FtpEntry> readMlsd(std::string_view listing);

/// The same for what LIST gives, for which there is no standard (RFC 959, section 4.1.3): the forms of Unix and of
/// Windows servers are understood.
std::vector<FtpEntry> readList(std::string_view listing);

} // namespace quarrynet::services

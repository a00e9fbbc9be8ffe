#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quarrynet::services {

/// A file or directory that the file search found.
struct FileHit
{
    std::string name;    ///< a file in a package has its whole path: "/usr/bin/vim"
    std::string address; ///< as opened, with the mirror's scheme on a mirror; a directory's ends in "/"
    std::string parent;  ///< address of the directory that contains it
    std::optional<std::int64_t> size = std::nullopt; ///< that of the package for a file in one
    bool directory = false;
};

/// Names that begin with the typed text come first, and among them those that continue with "_" or "." or not at all.
enum class NameGroup : std::uint8_t
{
    Exact,
    Beginning,
    Rest,
};

/// Returns the address of `path` (not escaped) below `base` (escaped). Besides what a path must escape, one letter of
/// the word "class" is escaped, because the program cuts the address out of the page at that word.
std::string addressBelow(std::string_view base, std::string_view path);

} // namespace quarrynet::services

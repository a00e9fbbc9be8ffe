#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quarrynet::services {

/// What a walk through a folder left out because it could not be read.
struct LeftOut
{
    std::size_t count = 0;
    std::string first; ///< one of the paths, and the reason

    void add(std::string_view path, std::string_view reason);
    void add(const LeftOut& others);
};

/// Deeper folders are left out.
inline constexpr std::size_t kMaxFolderDepth = 64;

/// Passes to `take` the path, relative to `root`, of every file below it whose name `wanted` accepts, in no particular
/// order. Skips symbolic links, hidden files and folders, and files with several names (hard links). What cannot be
/// read is left out, and the walk continues. A `root` that does not exist has no files.
LeftOut findFiles(const std::string& root, const std::function<bool(std::string_view)>& wanted,
                  const std::function<void(const std::string&)>& take);

/// Calls findFiles() for HTML files.
LeftOut findHtmlFiles(const std::string& root, const std::function<void(const std::string&)>& take);

/// Resolves a relative `address` (possibly with escapes, a query and a fragment) in the page at `page`. Returns the
/// path relative to the same root as `page`, or nothing when it leaves the root or `address` is not relative.
std::optional<std::string> pathSeenFrom(std::string_view page, std::string_view address);

} // namespace quarrynet::services

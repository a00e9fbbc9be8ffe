#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quarrynet::services {

/// What a walk through a folder passed over because it could not be read.
struct LeftOut
{
    std::size_t count = 0;
    std::string first; ///< one of them, and why

    void add(std::string_view path, std::string_view reason);
    void add(const LeftOut& others);
};

/// Folders deeper than this are left out.
inline constexpr std::size_t kMaxFolderDepth = 64;

/// Gives the path, relative to `root`, of every file below it whose name `wanted` takes; in no particular order.
/// Symbolic links, hidden files and folders, and files with a further name (hard links) are passed over. What cannot be
/// read is left out, and the walk goes on behind it. A `root` that does not exist has no files.
LeftOut findFiles(const std::string& root, const std::function<bool(std::string_view)>& wanted,
                  const std::function<void(const std::string&)>& take);

/// findFiles() for the HTML files.
LeftOut findHtmlFiles(const std::string& root, const std::function<void(const std::string&)>& take);

/// Returns the path, seen from the same root, of what the page at `page` calls `address`: relative, with escapes, a
/// query and a fragment or not. Nothing where that leads out of the root, or is no relative address.
std::optional<std::string> pathSeenFrom(std::string_view page, std::string_view address);

} // namespace quarrynet::services

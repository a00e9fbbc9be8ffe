#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quarrynet::services {

/// The real path of the regular file at `relative` below the folder `root`, or nothing when there is no such file that
/// may be served: not outside the folder, by whatever ".." or symbolic link, and no hidden file or one in a hidden
/// folder. For a folder its "index.html". `relative` is decoded and has "/" between its parts; any bytes.
std::optional<std::string> servedFile(const std::string& root, std::string_view relative);

/// The content of a file of at most `maxBytes`; nothing when it is larger or cannot be read.
std::optional<std::string> readFile(const std::string& path, std::size_t maxBytes);

/// The media type by the name's ending; "application/octet-stream" when it is unknown.
std::string_view mediaType(std::string_view path);

/// Gives the path, relative to `root`, of every file below it whose name `wanted` takes; in no particular order.
/// Symbolic links are not followed, hidden files and folders and what cannot be read are passed over.
void findFiles(const std::string& root, const std::function<bool(std::string_view)>& wanted,
               const std::function<void(const std::string&)>& take);

/// findFiles() for the HTML files.
void findHtmlFiles(const std::string& root, const std::function<void(const std::string&)>& take);

/// Whether `path` ends in `ending`, which is in lower case; ASCII letters compare without case.
bool hasEnding(std::string_view path, std::string_view ending);

} // namespace quarrynet::services

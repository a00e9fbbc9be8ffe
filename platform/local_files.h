#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <QString>

class QWidget;

namespace quarrynet {

/// Deletes the file at `path` if it exists and creates it again with exactly `bytes`, so that no earlier content is
/// left. Several windows may do so at once; the last one's content stays. `path` is as toPathBytes gives it. Returns
/// the reason of a failure, or an empty text.
QString rewriteFile(const std::string& path, std::string_view bytes);

/// Rewrites the files of `pages` (name and content) in `folder`, in this order. Returns false after the first one that
/// cannot be written, after an error box of `owner` that names it.
bool writePages(QWidget* owner, const std::string& folder,
                std::initializer_list<std::pair<std::string_view, std::string_view>> pages);

/// Replaces the content of the file at `path` with `bytes`, or creates the file, in one step: if it fails, an existing
/// file is as it was. A symbolic link stays one, and the file that it leads to is replaced. Refuses what is no file,
/// such as a folder or a device. Returns the reason of a failure, or an empty text.
QString replaceFileAtomically(const QString& path, std::string_view bytes);

/// Returns the content of the file at `path`, or nothing if it cannot be read, has more than `most` bytes, or is no
/// file, such as a pipe, whose reader would wait.
std::optional<std::string> readSmallFile(const QString& path, std::size_t most);

} // namespace quarrynet

#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include <QString>

class QWidget;

namespace quarrynet {

/// Deletes the file at `path` if it exists and creates it again with exactly `bytes`, so that no earlier content is
/// left. `path` is as toPathBytes gives it. Returns the reason of a failure, or an empty text.
QString rewriteFile(const std::string& path, std::string_view bytes);

/// Rewrites the files of `pages` (name and content) in `folder`, in this order. Returns false after the first one that
/// cannot be written, after an error box of `owner` that names it.
bool writePages(QWidget* owner, const std::string& folder,
                std::initializer_list<std::pair<std::string_view, std::string_view>> pages);

} // namespace quarrynet

#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include <QString>

class QWidget;

namespace quarrynet {

/// Deletes the file at `path` if it exists and creates it anew with exactly `bytes`, so that nothing of an earlier
/// content survives. `path` is in the system's code page. Returns the reason when that failed, else the empty text.
QString rewriteFile(const std::string& path, std::string_view bytes);

/// Rewrites the files of `pages` (name and content) in `folder`, in this order. Returns false after the first one that
/// cannot be written, and after the error box, `owner`'s, that names it.
bool writePages(QWidget* owner, const std::string& folder,
                std::initializer_list<std::pair<std::string_view, std::string_view>> pages);

} // namespace quarrynet

#pragma once

#include <string>
#include <string_view>

#include <QString>

namespace quarrynet {

/// Deletes the file at `path` if it exists and creates it anew with exactly `bytes`, so that nothing of an earlier
/// content survives. `path` is in the system's code page. Gives the reason when that failed, else the empty text.
QString rewriteFile(const std::string& path, std::string_view bytes);

} // namespace quarrynet

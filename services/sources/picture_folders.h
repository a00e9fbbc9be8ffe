#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "index/records.h"
#include "sources/document_folders.h"

namespace quarrynet::services {

/// Returns the pictures below `root`, sorted by path. Of a picture in several sizes, as in an icon theme, it returns
/// only the best: a drawing, else the largest. Adds to `left` what could not be read.
std::vector<Picture> findPictures(const std::string& root, LeftOut& left);

/// Returns the part of a picture's path that its other sizes share: without the suffix, without "-48x48" or "@2x" at
/// the end of the name, and without folders such as "48x48", "48" (for common icon sizes) and "scalable".
std::string sizelessPath(std::string_view path);

/// Returns the text with its words separated, as people type them: "EditCopy2" becomes "EditCopy2 Edit Copy 2".
std::string spacedWords(std::string_view text);

} // namespace quarrynet::services

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "index/records.h"
#include "sources/document_folders.h"

namespace quarrynet::services {

/// The pictures below `root`, ordered by their paths. Of a picture that an icon theme has in several sizes only the
/// best one: a drawing, else the largest.
/// Adds what the walk through them could not read to `left`.
std::vector<Picture> findPictures(const std::string& root, LeftOut& left);

/// What the path of a picture has in common with those of its other sizes: parts such as "48x48", "48" (for the usual
/// icon sizes) and "scalable" are left out, and so is a "-48x48" or "@2x" at the end of the name, and the ending.
std::string sizelessPath(std::string_view path);

/// Words as people type them: "EditCopy2" is also "Edit Copy 2".
std::string spacedWords(std::string_view text);

} // namespace quarrynet::services

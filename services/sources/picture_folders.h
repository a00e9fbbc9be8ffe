#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sources/document_folders.h"

namespace quarrynet::services {

/// A picture in a folder, with the texts that it is found by. Paths are bytes, the texts are UTF-8.
struct Picture
{
    std::string path;         ///< below the folder
    std::string name;         ///< words of its name
    std::string place;        ///< words of the folders that it lies in
    std::string stem;         ///< its name without size and ending, in lower case: what looks alike has it in common
    std::int64_t version = 0; ///< another one when the file has changed
};

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

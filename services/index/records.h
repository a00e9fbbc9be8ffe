#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// The records of the index, as IndexWriter takes them.
namespace quarrynet::services {

/// A program that the download search offers. Texts are UTF-8 without control characters.
struct Program
{
    std::string name; ///< the package's
    std::string description;
    std::string system; ///< operating system and architecture
    std::int64_t size = 0;
    std::string license;
    std::int64_t mirror = 0; ///< number of the mirror that has the file
    std::string file;        ///< path below the mirror's base, not escaped
    std::string title = {};  ///< the name as people know it; may be empty
    std::string alias = {};  ///< the title as it is typed: in lower case, with "-" for blanks
    std::string words = {};  ///< further words to find it by
};

/// A file or directory that the file search finds.
struct FileEntry
{
    std::int64_t folder = 0; ///< number of the folder that contains it
    std::string name;
    std::optional<std::int64_t> size = std::nullopt;
    bool directory = false;
};

/// A picture in a folder, with its searchable texts. Paths are bytes, the texts are UTF-8.
struct Picture
{
    std::string path;         ///< below the folder
    std::string name;         ///< words of the file name
    std::string place;        ///< words of the folders above it
    std::string stem;         ///< file name in lower case, without size and suffix; pictures that look alike share it
    std::int64_t version = 0; ///< changes with the file
};

} // namespace quarrynet::services

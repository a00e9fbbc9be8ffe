#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// What the index keeps, as its writer takes it.
namespace quarrynet::services {

/// A program that the download search offers. Texts are UTF-8 without control characters.
struct Program
{
    std::string name;
    std::string description;
    std::string system; ///< operating system and architecture
    std::int64_t size = 0;
    std::string license;
    std::int64_t mirror = 0; ///< number of the mirror that has it
    std::string file;        ///< path below the mirror's base, not escaped
};

/// A file or directory that the file search finds.
struct FileEntry
{
    std::int64_t folder = 0; ///< number of the folder that it lies in
    std::string name;
    std::optional<std::int64_t> size = std::nullopt;
    bool directory = false;
};

/// A picture in a folder, with the texts that it is found by. Paths are bytes, the texts are UTF-8.
struct Picture
{
    std::string path;         ///< below the folder
    std::string name;         ///< words of its name
    std::string place;        ///< words of the folders that it lies in
    std::string stem;         ///< its name without size and ending, in lower case: what looks alike has it in common
    std::int64_t version = 0; ///< another one when the file has changed
};

} // namespace quarrynet::services

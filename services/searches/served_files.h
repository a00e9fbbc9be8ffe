#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The files of indexed folders that the searches serve: how addresses name them, and their media types.
namespace quarrynet::services {

/// The location of a file.
struct ServedPlace
{
    std::int64_t folder = 0; ///< the folder's number in the index
    std::string path;        ///< below the folder, decoded; may be empty
};

/// Parses "FOLDER/PATH", the end of an address as it was sent. Returns nothing when no number precedes a "/".
std::optional<ServedPlace> servedPlace(std::string_view text);

/// Returns the media type of an HTML file by its suffix.
std::string_view pageType(std::string_view path);

/// Returns the media type of a picture by its content, or an empty text for any other file. `beginning` is the first
/// kPictureBeginning bytes of the file.
std::string_view pictureType(std::string_view beginning);

/// Returns "text/css" for a text file with the suffix ".css", or an empty text. `beginning` is as for pictureType().
std::string_view styleType(std::string_view path, std::string_view beginning);

} // namespace quarrynet::services

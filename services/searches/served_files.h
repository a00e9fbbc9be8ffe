#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The files of indexed folders that the searches serve: how an address names one, and what it is sent as.
namespace quarrynet::services {

/// Where a file lies.
struct ServedPlace
{
    std::int64_t folder = 0; ///< the folder's number in the index
    std::string path;        ///< below the folder, decoded; may be empty
};

/// Parses "FOLDER/PATH", the end of an address as it was sent. Returns nothing where there is no number before a "/".
std::optional<ServedPlace> servedPlace(std::string_view text);

/// Returns the media type of an HTML file by its name's ending.
std::string_view pageType(std::string_view path);

/// Returns the media type of a picture by its content. `beginning` is the first kPictureBeginning bytes of the file.
/// Returns an empty text for any other file.
std::string_view pictureType(std::string_view beginning);

/// Returns "text/css" for a text whose name ends in ".css", or an empty text. `beginning` as above.
std::string_view styleType(std::string_view path, std::string_view beginning);

} // namespace quarrynet::services

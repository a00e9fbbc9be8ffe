#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace quarrynet::services {

/// The picture formats of the image search. The messages between the services and quarrynet-thumbnails contain the
/// values.
enum class PictureFormat : std::uint8_t
{
    Png,
    Jpeg,
    Gif,
    WebP,
    Svg,
};

/// Returns the format of a picture by its content, whatever its name, or nothing for any other file. SVG is recognized
/// by its beginning: uncompressed XML text that contains the element.
std::optional<PictureFormat> pictureFormat(std::string_view content);

/// Number of bytes that pictureFormat() needs from the beginning of a file. License texts and notes of drawing programs
/// precede the first element of an SVG file.
inline constexpr std::size_t kPictureBeginning = 64 * 1024;

/// Returns the media type, such as "image/png".
std::string_view mediaTypeOf(PictureFormat format);

/// Returns whether a file of this name may be a picture.
bool hasPictureName(std::string_view name);

} // namespace quarrynet::services

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace quarrynet::services {

/// The kinds of pictures that the image search knows. The values stand in the messages between the services and
/// quarrynet-thumbnails.
enum class PictureFormat : std::uint8_t
{
    Png,
    Jpeg,
    Gif,
    WebP,
    Svg,
};

/// The kind by what the file's bytes say, whatever its name says; nothing for any other file. SVG is known by its
/// beginning: an XML text that holds the element, not compressed.
std::optional<PictureFormat> pictureFormat(std::string_view content);

/// So many bytes of a file's beginning are enough for pictureFormat(). Licenses and notes of drawing programs stand
/// before the first element of an SVG text.
inline constexpr std::size_t kPictureBeginning = 64 * 1024;

/// The media type, such as "image/png".
std::string_view mediaTypeOf(PictureFormat format);

/// Whether a file of this name may be a picture.
bool hasPictureName(std::string_view name);

} // namespace quarrynet::services

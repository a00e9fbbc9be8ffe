#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// Inspection of pictures from the network before anything decodes them.
namespace quarrynet {

/// The formats that are shown. All are raster formats, because a vector drawing could refer to files and addresses.
enum class RasterFormat
{
    Png,
    Jpeg,
    Gif,
    WebP,
};

struct RasterHead
{
    RasterFormat format;
    std::uint32_t width; // both in pixels, greater than 0
    std::uint32_t height;
};

/// Maximum number of scans of a JPEG picture. A decoder processes all pixels for each scan, and a scan can have only a
/// few bytes. Encoders write about ten.
inline constexpr int kMaxJpegScans = 64;

/// Reads the header of a picture. `bytes` is the whole picture, whose content alone tells the format. Returns nothing
/// if the format is none of these, or the picture ends before its size. The time is proportional to the length.
std::optional<RasterHead> readRasterHead(std::string_view bytes);

/// Returns the media type of a format, such as "image/png".
std::string_view mediaType(RasterFormat format);

} // namespace quarrynet

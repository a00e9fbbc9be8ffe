#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// What a picture from the net is, found out before anything decodes it.
namespace quarrynet {

/// The formats that are shown. All of them are rasters: a drawing could name files and addresses of its own.
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
    std::uint32_t width; // both in pixels, above 0
    std::uint32_t height;
};

/// JPEG pictures with more scans than this are refused: a decoder goes over all pixels for each of them, and each can
/// be a few bytes long. Encoders make about ten.
inline constexpr int kMaxJpegScans = 64;

/// Reads the head of a picture. `bytes` are the whole picture; its format is told by its content alone. Returns nothing
/// where it is none of these formats, or is cut off before it tells its size. The time grows with the length.
std::optional<RasterHead> readRasterHead(std::string_view bytes);

/// The media type of a format, for example "image/png".
std::string_view mediaType(RasterFormat format);

} // namespace quarrynet

#include "common/raster_head.h"

#include <algorithm>

namespace quarrynet {

namespace {

using namespace std::literals;

// Reads numbers at offsets. Bytes after the end read as 0, and a size of 0 is rejected.
class Bytes
{
public:
    explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

    std::size_t size() const { return bytes_.size(); }
    std::uint32_t at(std::size_t offset) const
    {
        return offset < bytes_.size() ? static_cast<unsigned char>(bytes_[offset]) : 0U;
    }
    bool has(std::size_t offset, std::string_view expected) const
    {
        return offset <= bytes_.size() && bytes_.substr(offset, expected.size()) == expected;
    }
    std::uint32_t big16(std::size_t offset) const { return at(offset) << 8U | at(offset + 1); }
    std::uint32_t big32(std::size_t offset) const { return big16(offset) << 16U | big16(offset + 2); }
    std::uint32_t little16(std::size_t offset) const { return at(offset + 1) << 8U | at(offset); }
    std::uint32_t little24(std::size_t offset) const { return at(offset + 2) << 16U | little16(offset); }
    std::size_t find(char byte, std::size_t from) const { return bytes_.find(byte, from); }

private:
    std::string_view bytes_;
};

std::optional<RasterHead> sized(RasterFormat format, std::uint32_t width, std::uint32_t height)
{
    if (width == 0 || height == 0)
        return std::nullopt;
    return RasterHead{format, width, height};
}

std::optional<RasterHead> readPng(const Bytes& bytes)
{
    if (!bytes.has(12, "IHDR"sv))
        return std::nullopt;
    return sized(RasterFormat::Png, bytes.big32(16), bytes.big32(20));
}

// Returns whether `marker` begins a frame header: 0xC0 to 0xCF, except those of tables.
bool isFrame(std::uint32_t marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

std::optional<RasterHead> readJpeg(const Bytes& bytes)
{
    std::optional<RasterHead> head;
    int scans = 0;
    std::size_t at = bytes.find('\xFF', 2);
    while (at != std::string_view::npos && at + 1 < bytes.size()) {
        const std::uint32_t marker = bytes.at(at + 1);
        const bool alone = marker == 0x00 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
        if (marker == 0xD9)
            break;
        if (marker == 0xFF || alone) { // a fill byte, or a marker without a length
            at = bytes.find('\xFF', at + (marker == 0xFF ? 1 : 2));
            continue;
        }
        if (isFrame(marker)) {
            if (head)
                return std::nullopt; // a second size
            head = sized(RasterFormat::Jpeg, bytes.big16(at + 7), bytes.big16(at + 5));
            if (!head)
                return std::nullopt;
        }
        if (marker == 0xDA && ++scans > kMaxJpegScans)
            return std::nullopt;
        at = bytes.find('\xFF', at + 2 + bytes.big16(at + 2));
    }
    return head;
}

// Returns the size of the canvas, or of the first frame if that is larger, because decoders use either.
std::optional<RasterHead> readGif(const Bytes& bytes)
{
    const auto tableSize = [&bytes](std::size_t flags) {
        const std::uint32_t bits = bytes.at(flags);
        return (bits & 0x80U) != 0 ? std::size_t{3} << ((bits & 7U) + 1) : std::size_t{0};
    };
    std::uint32_t width = bytes.little16(6);
    std::uint32_t height = bytes.little16(8);
    std::size_t at = 13 + tableSize(10);
    while (bytes.has(at, "!"sv)) { // extensions: a label, then blocks that begin with their length
        at += 2;
        while (bytes.at(at) != 0)
            at += bytes.at(at) + 1;
        ++at;
    }
    if (!bytes.has(at, ","sv) || at + 9 > bytes.size())
        return std::nullopt;
    width = std::max(width, bytes.little16(at + 1) + bytes.little16(at + 5));
    height = std::max(height, bytes.little16(at + 3) + bytes.little16(at + 7));
    return sized(RasterFormat::Gif, width, height);
}

std::optional<RasterHead> readWebP(const Bytes& bytes)
{
    if (bytes.has(12, "VP8X"sv) && bytes.size() >= 30)
        return sized(RasterFormat::WebP, bytes.little24(24) + 1, bytes.little24(27) + 1);
    if (bytes.has(12, "VP8L"sv) && bytes.at(20) == 0x2F && bytes.size() >= 25) {
        const std::uint32_t bits = bytes.little16(21) | bytes.little16(23) << 16U;
        return sized(RasterFormat::WebP, (bits & 0x3FFFU) + 1, (bits >> 14U & 0x3FFFU) + 1);
    }
    if (bytes.has(12, "VP8 "sv) && bytes.has(23, "\x9D\x01\x2A"sv))
        return sized(RasterFormat::WebP, bytes.little16(26) & 0x3FFFU, bytes.little16(28) & 0x3FFFU);
    return std::nullopt;
}

} // namespace

std::optional<RasterHead> readRasterHead(std::string_view content)
{
    const Bytes bytes(content);
    if (bytes.has(0, "\x89PNG\r\n\x1A\n"sv))
        return readPng(bytes);
    if (bytes.has(0, "\xFF\xD8\xFF"sv))
        return readJpeg(bytes);
    if (bytes.has(0, "GIF87a"sv) || bytes.has(0, "GIF89a"sv))
        return readGif(bytes);
    if (bytes.has(0, "RIFF"sv) && bytes.has(8, "WEBP"sv))
        return readWebP(bytes);
    return std::nullopt;
}

std::string_view mediaType(RasterFormat format)
{
    switch (format) {
    case RasterFormat::Png:
        return "image/png";
    case RasterFormat::Jpeg:
        return "image/jpeg";
    case RasterFormat::Gif:
        return "image/gif";
    case RasterFormat::WebP:
        break;
    }
    return "image/webp";
}

} // namespace quarrynet

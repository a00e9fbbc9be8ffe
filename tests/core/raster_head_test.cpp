#include <optional>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "common/raster_head.h"
#include "tests/support/test_data.h"

namespace quarrynet {

namespace {

using namespace std::literals;

const std::string kPng = "\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\x01\x40\0\0\0\xF0\x08\x02\0\0\0"s;
const std::string kGif = "GIF89a\x40\x01\xF0\0\0\0\0,\0\0\0\0\x10\0\x10\0\0"s;

std::string segment(char marker, const std::string& content)
{
    const std::size_t length = content.size() + 2;
    return {'\xFF', marker, static_cast<char>(length >> 8U), static_cast<char>(length & 0xFFU)};
}

// Returns a JPEG picture of 320 by 240 pixels; its scans contain a stuffed 0xFF and a restart marker.
std::string jpeg(int scans)
{
    const std::string application =
        "Exif\0\0\xFF\xC0\0\x0B\x08\xFF\xFF\xFF\xFF"s; // contains the frame header of a thumbnail
    const std::string frame = "\x08\x00\xF0\x01\x40\x01\x01\x11\x00"s;
    const std::string scan = "\x01\x01\x00\x00\x3F\x00"s;
    std::string bytes =
        "\xFF\xD8"s + segment('\xE1', application) + application + "\xFF"s + segment('\xC0', frame) + frame;
    for (int i = 0; i < scans; ++i)
        bytes += segment('\xDA', scan) + scan + "data\xFF\0data\xFF\xD0"s;
    return bytes + "\xFF\xD9"s;
}

std::string webp(const std::string& chunk)
{
    return "RIFF\0\0\0\0WEBP"s + chunk + std::string(20, '\0');
}

std::optional<RasterHead> read(const std::string& bytes)
{
    return readRasterHead(samples::ExactBytes(bytes));
}

void expectHead(const std::string& bytes, RasterFormat format, std::uint32_t width, std::uint32_t height)
{
    const std::optional<RasterHead> head = read(bytes);
    ASSERT_TRUE(head);
    EXPECT_EQ(head->format, format);
    EXPECT_EQ(head->width, width);
    EXPECT_EQ(head->height, height);
}

} // namespace

TEST(RasterHead, FormatsTellTheirSize)
{
    expectHead(kPng, RasterFormat::Png, 320, 240);
    expectHead(jpeg(1), RasterFormat::Jpeg, 320, 240);
    expectHead(kGif, RasterFormat::Gif, 320, 240);
    expectHead(webp("VP8X\x0A\0\0\0\0\0\0\0\x3F\x01\0\xEF\0\0"s), RasterFormat::WebP, 320, 240);
    expectHead(webp("VP8L\x0A\0\0\0\x2F\x3F\xC1\x3B\x00"s), RasterFormat::WebP, 320, 240);
    expectHead(webp("VP8 \x0A\0\0\0\x10\0\0\x9D\x01\x2A\x40\x01\xF0\0"s), RasterFormat::WebP, 320, 240);
}

TEST(RasterHead, HugeSizesAreToldAsTheyAre)
{
    std::string png = kPng;
    png.replace(16, 8, "\xFF\xFF\xFF\xFF\x7F\xFF\xFF\xFF"s);
    expectHead(png, RasterFormat::Png, 0xFFFFFFFF, 0x7FFFFFFF);
}

TEST(RasterHead, FirstGifFrameCountsWhereItIsLargerThanTheCanvas)
{
    std::string gif = kGif;
    gif.replace(14, 8, "\x01\0\x02\0\xFF\xFF\xFE\xFF"s);
    expectHead(gif, RasterFormat::Gif, 0x10000, 0x10000);
    // The frame follows a table of 256 colours and an extension.
    gif[10] = '\x87';
    gif.insert(13, std::string(768, ',') + "!\xFE\x03,,,\x01,\0"s);
    expectHead(gif, RasterFormat::Gif, 0x10000, 0x10000);
}

TEST(RasterHead, OtherContentIsRefused)
{
    for (const std::string& bytes :
         {""s, "\0"s, "<svg xmlns=\"http://www.w3.org/2000/svg\"/>"s, "<?xml version=\"1.0\"?><svg/>"s, "<html>"s,
          "\x1F\x8B\x08"s, "BM\0\0"s, "%PDF-1.4"s, "/* XPM */"s, "P6 1 1 255 xxx"s, "\xFF\xD8"s, "RIFF\0\0\0\0WAVE"s,
          " \x89PNG\r\n\x1A\n"s, "GIF89a"s, jpeg(0).substr(0, 10)})
        EXPECT_FALSE(read(bytes)) << bytes;
}

TEST(RasterHead, EmptySizesAreRefused)
{
    std::string png = kPng;
    png.replace(16, 4, 4, '\0');
    EXPECT_FALSE(read(png));
    std::string gif = kGif;
    gif.replace(8, 2, 2, '\0').replace(20, 2, 2, '\0');
    EXPECT_FALSE(read(gif));
}

TEST(RasterHead, JpegOfTooManyScansIsRefused)
{
    EXPECT_TRUE(read(jpeg(kMaxJpegScans)));
    EXPECT_FALSE(read(jpeg(kMaxJpegScans + 1)));
}

TEST(RasterHead, JpegOfTwoSizesIsRefused)
{
    const std::string frame = "\x08\x00\xF0\x01\x40\x01\x01\x11\x00"s;
    EXPECT_FALSE(read("\xFF\xD8"s + segment('\xC0', frame) + frame + segment('\xC2', frame) + frame));
}

TEST(RasterHead, AnyBytesEnd)
{
    std::mt19937 random(7);
    for (const std::string& whole : {kPng, kGif, jpeg(2), webp("VP8L\x0A\0\0\0\x2F\x3F\xC1\x3B\x00"s)}) {
        for (std::size_t length = 0; length <= whole.size(); ++length)
            read(whole.substr(0, length));
        for (int i = 0; i < 2000; ++i) {
            std::string bytes = whole;
            for (int change = 0; change < 4; ++change)
                bytes[random() % bytes.size()] = static_cast<char>(random());
            read(bytes);
        }
    }
}

} // namespace quarrynet

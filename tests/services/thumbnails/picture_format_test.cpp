#include <gtest/gtest.h>

#include "tests/services/support/service_support.h"
#include "tests/support/test_data.h"
#include "thumbnails/picture_format.h"

using namespace quarrynet::services;
using quarrynet::samples::dataFile;

TEST(PictureFormat, KnowsEachKindByItsBytes)
{
    EXPECT_EQ(pictureFormat(dataFile("pictures/sample.png")), PictureFormat::Png);
    EXPECT_EQ(pictureFormat(dataFile("pictures/sample.jpg")), PictureFormat::Jpeg);
    EXPECT_EQ(pictureFormat(dataFile("pictures/sample.gif")), PictureFormat::Gif);
    EXPECT_EQ(pictureFormat(dataFile("pictures/sample.webp")), PictureFormat::WebP);
    EXPECT_EQ(pictureFormat(dataFile("pictures/sample.svg")), PictureFormat::Svg);
    EXPECT_EQ(pictureFormat("\xEF\xBB\xBF\r\n <x:svg xmlns:x='http://www.w3.org/2000/svg'/>"), PictureFormat::Svg);
}

TEST(PictureFormat, AnythingElseIsNone)
{
    for (const std::string_view text : {"", "P", "<", "<html></html>", "root:x:0:0", "GIF88a", "RIFF", "RIFF....WAVE",
                                        "\xFF\xD8", "svg", "\x1F\x8B compressed <svg"})
        EXPECT_FALSE(pictureFormat(ExactCopy(text).view())) << text;
}

TEST(PictureFormat, BeginningsCutAnywhereAreReadToTheirEnd)
{
    for (const char* name : {"png", "jpg", "gif", "webp", "svg"}) {
        const std::string content = dataFile(std::string("pictures/sample.") + name);
        for (std::size_t length = 0; length < 200 && length < content.size(); ++length)
            (void)pictureFormat(ExactCopy(std::string_view(content).substr(0, length)).view());
    }
}

TEST(PictureName, GoesByTheEndingWhateverItsCase)
{
    for (const char* name : {"a.png", "a.JPG", "a.jpeg", "a.gif", "a.WebP", ".svg", "a.b.svg"})
        EXPECT_TRUE(hasPictureName(name)) << name;
    for (const char* name : {"", "png", "a.png.txt", "a.svgz", "a.xpm", "a.htm"})
        EXPECT_FALSE(hasPictureName(name)) << name;
}

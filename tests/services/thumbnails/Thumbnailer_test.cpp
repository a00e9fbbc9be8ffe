#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <thread>

#include <gtest/gtest.h>

#include "ground/CurrentTask.h"
#include "tests/services/support/service_support.h"
#include "tests/support/test_data.h"
#include "thumbnails/Thumbnailer.h"

/// Tests thumbnails made by the real quarrynet-thumbnails.

using namespace quarrynet;
using namespace quarrynet::services;
using quarrynet::samples::dataFile;

namespace {

std::string sample(const std::string& ending)
{
    return dataFile("pictures/sample." + ending);
}

std::uint32_t bigEndian(std::string_view bytes, std::size_t at)
{
    std::uint32_t number = 0;
    for (std::size_t i = at; i < at + 4 && i < bytes.size(); ++i)
        number = number << 8U | static_cast<unsigned char>(bytes[i]);
    return number;
}

/// Returns width and height of a PNG picture (its header chunk), or "" for other data.
std::string pngSize(const std::optional<std::string>& png)
{
    if (!png || pictureFormat(*png) != PictureFormat::Png)
        return "";
    return std::to_string(bigEndian(*png, 16)) + "x" + std::to_string(bigEndian(*png, 20));
}

/// Returns width and height of a JPEG picture (its first frame header, ITU T.81 B.2.2), or "" for other data.
std::string jpegSize(const std::optional<std::string>& jpeg)
{
    if (!jpeg || pictureFormat(*jpeg) != PictureFormat::Jpeg)
        return "";
    for (std::size_t at = 2; at + 9 < jpeg->size();) {
        const std::uint32_t words = bigEndian(*jpeg, at);
        const std::uint32_t marker = words >> 16U;
        if (marker >= 0xFFC0 && marker <= 0xFFC2) {
            const std::uint32_t size = bigEndian(*jpeg, at + 5);
            return std::to_string(size & 0xFFFFU) + "x" + std::to_string(size >> 16U);
        }
        at += 2 + (words & 0xFFFFU);
    }
    return "";
}

/// Returns an SVG text with these elements.
std::string drawing(const std::string& elements)
{
    return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' width='40' "
           "height='40'>" +
           elements + "</svg>";
}

/// Returns `count` nested elements.
std::string nested(int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "<g>";
    for (int i = 0; i < count; ++i)
        text += "</g>";
    return text;
}

std::string base64(const std::string& bytes)
{
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8U | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            text.push_back(at + i > bytes.size() ? '=' : kDigits[group >> (18U - 6U * i) & 63U]);
    }
    return text;
}

class Thumbnails : public ::testing::Test
{
protected:
    Thumbnailer thumbnailer_{QUARRYNET_THUMBNAILS, {std::chrono::seconds(60), 2}};
};

} // namespace

TEST_F(Thumbnails, EachFormatIsScaledToItsBox)
{
    EXPECT_EQ(jpegSize(thumbnailer_.make(PictureFormat::Png, sample("png"))), "120x60");
    EXPECT_EQ(jpegSize(thumbnailer_.make(PictureFormat::Jpeg, sample("jpg"))), "120x60");
    EXPECT_EQ(jpegSize(thumbnailer_.make(PictureFormat::WebP, sample("webp"))), "120x60");
    EXPECT_EQ(pngSize(thumbnailer_.make(PictureFormat::Svg, sample("svg"))), "120x60");
}

TEST_F(Thumbnails, SmallPicturesStayAsTheyAre)
{
    const auto gif = thumbnailer_.make(PictureFormat::Gif, sample("gif"));
    EXPECT_TRUE(jpegSize(gif) == "16x8" || pngSize(gif) == "16x8");
}

TEST_F(Thumbnails, WhatIsNoPictureHasNone)
{
    for (const PictureFormat format :
         {PictureFormat::Png, PictureFormat::Jpeg, PictureFormat::Gif, PictureFormat::WebP, PictureFormat::Svg}) {
        EXPECT_FALSE(thumbnailer_.make(format, ""));
        EXPECT_FALSE(thumbnailer_.make(format, "no picture"));
        EXPECT_FALSE(thumbnailer_.make(format, std::string(100000, '\xFF')));
    }
    EXPECT_FALSE(thumbnailer_.make(static_cast<PictureFormat>(99), sample("png")));
    EXPECT_FALSE(thumbnailer_.make(PictureFormat::Png, std::string(64 * 1024 * 1024 + 1, 'x')));
    EXPECT_TRUE(thumbnailer_.make(PictureFormat::Png, sample("png")));
}

TEST_F(Thumbnails, CutPicturesEndNothing)
{
    for (const auto& [ending, format] : {std::pair{"png", PictureFormat::Png},
                                         {"jpg", PictureFormat::Jpeg},
                                         {"gif", PictureFormat::Gif},
                                         {"webp", PictureFormat::WebP},
                                         {"svg", PictureFormat::Svg}}) {
        const std::string content = sample(ending);
        for (std::size_t length = 0; length < content.size(); length += 7)
            (void)thumbnailer_.make(format, std::string_view(content).substr(0, length));
        EXPECT_TRUE(thumbnailer_.make(format, content)) << ending;
    }
}

TEST_F(Thumbnails, HugePicturesAreRefused)
{
    // A header that states 60000 by 60000 pixels, with a valid checksum.
    const std::string huge("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\xEA\x60\0\0\xEA\x60\x08\x06\0\0\0\x80\xD2\x75\x42", 33);
    EXPECT_FALSE(thumbnailer_.make(PictureFormat::Png, huge));
    EXPECT_TRUE(thumbnailer_.make(PictureFormat::Svg, drawing("<rect width='9' height='9'/>")));
}

TEST_F(Thumbnails, DrawingsShowNoOtherFiles)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("secret.png", sample("png"));
    std::filesystem::permissions(folder.path(), std::filesystem::perms::others_exec,
                                 std::filesystem::perm_options::add);
    const auto empty = thumbnailer_.make(PictureFormat::Svg, drawing(""));
    ASSERT_TRUE(empty);
    for (const std::string& address : {file, "file://" + file, " " + file}) {
        for (const char* name : {"xlink:href", "href"}) {
            const std::string image =
                "<image " + std::string(name) + "='" + address + "' width='40' height='40'><desc/></image>";
            EXPECT_EQ(thumbnailer_.make(PictureFormat::Svg, drawing(image)), empty) << image;
            // The reader may reject the entity; if it expands it, the picture must still be empty.
            const auto entity = thumbnailer_.make(PictureFormat::Svg,
                                                  "<!DOCTYPE svg [<!ENTITY i \"" + image + "\">]>" + drawing("&i;"));
            EXPECT_TRUE(!entity || entity == empty) << image;
        }
    }
}

TEST_F(Thumbnails, DrawingsWithinDrawingsShowNothing)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("secret.png", sample("png"));
    std::filesystem::permissions(folder.path(), std::filesystem::perms::others_exec,
                                 std::filesystem::perm_options::add);
    const auto empty = thumbnailer_.make(PictureFormat::Svg, drawing(""));
    const auto image = [](const std::string& address) {
        return "<image xlink:href='" + address + "' width='40' height='40'/>";
    };
    const std::string inner = drawing(image(file));
    const std::string picture = "R0lGODdhAQABAIABAP8AAAAAACwAAAAAAQABAAACAkQBADs=";
    for (const std::string& address :
         {"data:image/svg+xml;base64," + base64(inner), "data:image/gif;base64," + base64(inner),
          "data:;base64," + base64(" \n<?xml version='1.0'?>" + inner),
          "data:image/gif;base64," + picture + "base64," + base64(inner), "data:image/svg+xml;base64," + base64("GIF8"),
          std::string("data:image/svg+xml,%3Csvg/%3E"), std::string("data:"), std::string("data"),
          "data.base64," + base64(inner)}) {
        EXPECT_EQ(thumbnailer_.make(PictureFormat::Svg, drawing(image(address))), empty) << address;
    }
    const std::string twice = "<image href='data:image/gif;base64," + picture + "' xlink:href='" + file +
                              "' width='40' "
                              "height='40'/>";
    EXPECT_EQ(thumbnailer_.make(PictureFormat::Svg, drawing(twice)), empty);
}

TEST_F(Thumbnails, TheProcessIsConfined)
{
    ASSERT_TRUE(thumbnailer_.make(PictureFormat::Png, sample("png")));
    std::size_t confined = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "status");
        const std::string status((std::istreambuf_iterator<char>(file)), {});
        if (status.find("\nPPid:\t" + std::to_string(::getpid()) + "\n") == std::string::npos)
            continue;
        EXPECT_NE(status.find("\nSeccomp:\t2\n"), std::string::npos) << status;
        EXPECT_NE(status.find("\nNoNewPrivs:\t1\n"), std::string::npos) << status;
        EXPECT_EQ(status.find("\nUid:\t0\t"), std::string::npos) << status;
        ++confined;
    }
    EXPECT_EQ(confined, 1U);
}

TEST_F(Thumbnails, LettersAreDrawnInFontsThatWereLoadedBefore)
{
    const auto letter = [this](const std::string& text, const std::string& style) {
        return thumbnailer_.make(PictureFormat::Svg,
                                 drawing("<text y='30' font-size='30' " + style + ">" + text + "</text>"));
    };
    for (const std::string style : {"", "font-family='Serif'", "font-family='Helvetica, sans-serif'",
                                    "font-family='Nobody has this'", "font-weight='bold' font-style='italic'"}) {
        const auto wide = letter("W", style);
        EXPECT_TRUE(wide);
        EXPECT_NE(wide, letter("", style)) << style;
        EXPECT_NE(wide, letter("i", style)) << style;
    }
}

TEST_F(Thumbnails, DrawingsMayHoldTheirOwnPictures)
{
    const auto with =
        thumbnailer_.make(PictureFormat::Svg, drawing("<image width='40' height='40' xlink:href='data:image/gif;base64,"
                                                      "R0lGODdhAQABAIABAP8AAAAAACwAAAAAAQABAAACAkQBADs='/>"));
    ASSERT_TRUE(with);
    EXPECT_NE(with, thumbnailer_.make(PictureFormat::Svg, drawing("")));
}

TEST_F(Thumbnails, DeepAndEndlessDrawingsEndNothing)
{
    EXPECT_TRUE(thumbnailer_.make(PictureFormat::Svg, drawing(nested(100))));
    EXPECT_FALSE(thumbnailer_.make(PictureFormat::Svg, drawing(nested(100000))));
    // Each group draws the previous one ten times.
    std::string groups = "<defs><g id='g0'><circle r='1'/></g>";
    for (int i = 1; i < 12; ++i) {
        groups += "<g id='g" + std::to_string(i) + "'>";
        for (int j = 0; j < 10; ++j)
            groups += "<use xlink:href='#g" + std::to_string(i - 1) + "'/>";
        groups += "</g>";
    }
    (void)thumbnailer_.make(PictureFormat::Svg, drawing(groups + "</defs><use xlink:href='#g11'/>"));
    EXPECT_TRUE(thumbnailer_.make(PictureFormat::Svg, drawing("<circle r='9'/>")));
}

TEST_F(Thumbnails, ManyThreadsShareFewProcesses)
{
    const std::string picture = sample("png");
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            for (int j = 0; j < 5; ++j)
                EXPECT_TRUE(thumbnailer_.make(PictureFormat::Png, picture));
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(Thumbnailer, AProgramThatNeverAnswersIsReplacedWhenItsTimeIsUp)
{
    const TemporaryFolder folder;
    const std::string silent = folder.write("silent", "#!/bin/sh\nexec cat >/dev/null\n");
    ::chmod(silent.c_str(), 0755);
    Thumbnailer thumbnailer(silent, {std::chrono::milliseconds(50), 1});
    EXPECT_FALSE(thumbnailer.make(PictureFormat::Png, sample("png")));
    EXPECT_FALSE(thumbnailer.make(PictureFormat::Png, std::string(10'000'000, 'x')));
}

TEST(Thumbnailer, WhoeverWaitsForAProcessGivesUpWhenItsTimeIsUp)
{
    const TemporaryFolder folder;
    const std::string silent = folder.write("silent", "#!/bin/sh\nexec cat >/dev/null\n");
    ::chmod(silent.c_str(), 0755);
    Thumbnailer thumbnailer(silent, {std::chrono::hours(1), 1, std::chrono::milliseconds(50)});
    std::atomic<bool> abandoned = false;
    std::atomic<int> ended = 0;
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            const CurrentTask task(abandoned);
            EXPECT_FALSE(thumbnailer.ask(PictureFormat::Png, sample("png")));
            ++ended;
        });
    while (ended < 2)
        std::this_thread::yield();
    abandoned = true; // the one that has the process
    for (std::thread& thread : threads)
        thread.join();
}

TEST(Thumbnailer, WhoeverWaitsGivesUpWhenTheTaskIsAbandoned)
{
    const TemporaryFolder folder;
    const std::string silent = folder.write("silent", "#!/bin/sh\nexec cat >/dev/null\n");
    ::chmod(silent.c_str(), 0755);
    // One waits for the response, the others for the only process.
    Thumbnailer thumbnailer(silent, {std::chrono::hours(1), 1});
    std::atomic<bool> abandoned = false;
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            const CurrentTask task(abandoned);
            EXPECT_FALSE(thumbnailer.make(PictureFormat::Png, sample("png")));
        });
    abandoned = true;
    for (std::thread& thread : threads)
        thread.join();
}

TEST(Thumbnailer, AProgramThatIsMissingOrEndsOrSaysTooMuchGivesNone)
{
    const TemporaryFolder folder;
    const std::string noisy = folder.write("noisy", "#!/bin/sh\nexec yes\n");
    ::chmod(noisy.c_str(), 0755);
    for (const std::string& program : {folder.path() + "/none", std::string("/bin/true"), noisy}) {
        Thumbnailer thumbnailer(program, {std::chrono::seconds(60), 1});
        EXPECT_FALSE(thumbnailer.make(PictureFormat::Png, sample("png"))) << program;
        EXPECT_FALSE(thumbnailer.ask(PictureFormat::Png, sample("png"))) << program;
    }
}

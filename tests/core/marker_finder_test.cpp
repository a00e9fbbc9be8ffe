#include <random>
#include <string>

#include <gtest/gtest.h>

#include "common/MarkerFinder.h"

using namespace quarrynet;

TEST(MarkerFinder, FindsForwardAndBackward)
{
    MarkerFinder finder("a-b-c", "-");
    EXPECT_EQ(finder.find(1), 2);
    EXPECT_EQ(finder.find(3), 4);
    EXPECT_EQ(finder.find(2), 2);
    EXPECT_EQ(finder.find(5), 0);
    EXPECT_EQ(finder.find(4), 4);
    EXPECT_EQ(finder.find(-7), 2);
}

TEST(MarkerFinder, EmptyTextAndFromBeyondTheEndFindNothing)
{
    MarkerFinder empty("", "x");
    EXPECT_EQ(empty.find(1), 0);
    EXPECT_EQ(empty.find(0), 0);
    MarkerFinder finder("x", "x");
    EXPECT_EQ(finder.find(2), 0);
    EXPECT_EQ(finder.find(1000), 0);
    EXPECT_EQ(finder.find(1), 1);
}

TEST(MarkerFinder, MissingMarkerStaysMissingFurtherUpOnlyAfterALook)
{
    MarkerFinder finder("x....", "x");
    EXPECT_EQ(finder.find(3), 0);
    EXPECT_EQ(finder.find(2), 0);
    EXPECT_EQ(finder.find(1), 1);
    EXPECT_EQ(finder.find(2), 0);
}

TEST(MarkerFinder, NulAndHighBytesAreBytesLikeOthers)
{
    MarkerFinder finder(std::string_view("a\0\xff\0b", 5), std::string_view("\0b", 2));
    EXPECT_EQ(finder.find(1), 4);
}

TEST(MarkerFinder, AnySequenceOfSearchesGivesWhatPlainSearchesGive)
{
    std::mt19937 random(20240611);
    for (int round = 0; round < 2000; ++round) {
        std::string text(random() % 40, '.');
        for (char& c : text)
            c = "ab."[random() % 3];
        const std::string marker = round % 2 == 0 ? "a" : "ab";
        MarkerFinder finder(text, marker);
        for (int i = 0; i < 30; ++i) {
            const Position from = static_cast<Position>(random() % 45) - 2;
            ASSERT_EQ(finder.find(from), findMarker(text, marker, from)) << text << " from " << from;
        }
    }
}

#include <string>

#include <gtest/gtest.h>

#include "ground/percent_coding.h"

using namespace quarrynet;

TEST(EncodePath, KeepsSlashesAndRoundTrips)
{
    EXPECT_EQ(encodePath("a b/c++_1.0~x.deb"), "a%20b/c++_1.0~x.deb");
    std::string all;
    for (int c = 0; c < 256; ++c)
        all.push_back(static_cast<char>(static_cast<unsigned char>(c)));
    EXPECT_EQ(decodePercent(encodePath(all)), all);
    EXPECT_EQ(decodePercent(encodeComponent(all)), all);
    EXPECT_EQ(decodeQueryValue(encodeComponent(all)), all);
    EXPECT_EQ(encodeComponent(":/"), "%3A%2F");
}

TEST(DecodePercent, EscapeThatIsNoneStandsForItself)
{
    EXPECT_EQ(decodePercent("100%"), "100%");
    EXPECT_EQ(decodePercent("%4"), "%4");
    EXPECT_EQ(decodePercent("%zz%41%4g"), "%zzA%4g");
    EXPECT_EQ(decodePercent("%41"), "A");
    EXPECT_EQ(decodePercent("%00").size(), 1U);
    EXPECT_EQ(decodeQueryValue("a++b%2B"), "a  b+");
}

TEST(EncodePercent, KeepsLettersDigitsAndWhatItIsTold)
{
    EXPECT_EQ(encodePercent("aZ09-_ ", "-"), "aZ09-%5F%20");
    EXPECT_EQ(encodePercent(std::string_view("\0\xFF", 2), ""), "%00%FF");
    EXPECT_EQ(encodePercent("", "-"), "");
}

TEST(EncodePercentOnce, LeavesTheEscapesThatAreThere)
{
    EXPECT_EQ(encodePercentOnce("%2f%2F%", ""), "%2f%2F%25");
    EXPECT_EQ(encodePercentOnce("%4", ""), "%254");
    EXPECT_EQ(encodePercentOnce("%g1%%41", ""), "%25g1%25%41");
    EXPECT_EQ(encodePercent("%41", ""), "%2541");
}

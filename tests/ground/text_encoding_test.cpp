#include <gtest/gtest.h>

#include "ground/text_encoding.h"

using namespace quarrynet::services;

TEST(ToUtf8, KeepsGoodBytesAndTakesOthersAsLatin1)
{
    EXPECT_EQ(toUtf8("\xe2\x82\xac"), "\xe2\x82\xac");
    EXPECT_EQ(toUtf8("\xe9"), "\xc3\xa9");
    EXPECT_TRUE(isUtf8("\xf4\x8f\xbf\xbf"));
    for (const char* bad : {"\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xe2\x82", "\x80", "\xff", "\xe0\x80\x80"})
        EXPECT_FALSE(isUtf8(bad)) << bad;
}

TEST(ClipUtf8, NeverCutsACharacter)
{
    EXPECT_EQ(clipUtf8("ab\xc3\xa9", 3), "ab");
    EXPECT_EQ(clipUtf8("ab\xc3\xa9", 4), "ab\xc3\xa9");
    EXPECT_EQ(clipUtf8("", 4), "");
    EXPECT_EQ(clipUtf8("\xc3\xa9", 0), "");
}

TEST(AppendUtf8, NumbersThatAreNoCharactersAreReplaced)
{
    std::string text;
    appendUtf8(text, 0x10FFFF);
    appendUtf8(text, 0xD800);
    appendUtf8(text, 0x110000);
    EXPECT_EQ(text, "\xf4\x8f\xbf\xbf\xef\xbf\xbd\xef\xbf\xbd");
}

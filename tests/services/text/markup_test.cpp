#include <gtest/gtest.h>

#include "text/markup.h"

using namespace quarrynet;
using namespace quarrynet::services;

TEST(EscapeText, LeavesNoTagAndNoReference)
{
    EXPECT_EQ(escapeText("a < b"), "a &lt; b");
    EXPECT_EQ(escapeText("</a><b>"), "&lt;/a>&lt;b>");
    EXPECT_EQ(escapeText("AT&T &lt; &#60; R & D &"), "AT&amp;T &amp;lt; &amp;#60; R & D &");
    EXPECT_EQ(escapeText(""), "");
    EXPECT_EQ(escapeAttribute("a\"b<"), "a&quot;b&lt;");
}

TEST(EscapeMatches, MarksBecomeBold)
{
    EXPECT_EQ(escapeMatches("a \x01<b>\x02 c"), "a <b>&lt;b></b> c");
    EXPECT_EQ(escapeMatches("&\x01lt\x02;"), "&amp;<b>lt</b>;");
}

TEST(TidyAddress, EscapesWhatAnAttributeWithoutQuotesCannotHold)
{
    EXPECT_EQ(tidyAddress("http://h/a b?c=\"d\"&e='f'<>`%41#x"), "http://h/a%20b?c=%22d%22&e=%27f%27%3C%3E%60%41#x");
    EXPECT_EQ(tidyAddress("http://h/\xc3\xa9\n"), "http://h/%C3%A9%0A");
}

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

TEST(WithSeparators, GroupsThreeDigits)
{
    EXPECT_EQ(withSeparators(0), "0");
    EXPECT_EQ(withSeparators(999), "999");
    EXPECT_EQ(withSeparators(1234), "1,234");
    EXPECT_EQ(withSeparators(1234567), "1,234,567");
    EXPECT_EQ(withSeparators(-1234), "-1,234");
}

TEST(ReadableSize, UsesTheUnitThatFits)
{
    EXPECT_EQ(readableSize(0), "0 bytes");
    EXPECT_EQ(readableSize(1023), "1023 bytes");
    EXPECT_EQ(readableSize(1024), "1.0 KB");
    EXPECT_EQ(readableSize(7891488), "7.5 MB");
    EXPECT_EQ(readableSize(1024 * 1024 - 1), "1.0 MB");
    EXPECT_EQ(readableSize(1377557908), "1.3 GB");
}

TEST(CollapseBlanks, OneBlankBetweenWords)
{
    EXPECT_EQ(collapseBlanks("  a \t\n\x01 b\x7f"), "a b");
    EXPECT_EQ(collapseBlanks(std::string_view("\0a\0", 3)), "a");
    EXPECT_EQ(collapseBlanks(" \n"), "");
}

TEST(WithReplaced, FromLeftToRightAndOnce)
{
    EXPECT_EQ(withReplaced("", "a", "b"), "");
    EXPECT_EQ(withReplaced("abc", "d", "e"), "abc");
    EXPECT_EQ(withReplaced("class subclass", "class", "cl%61ss"), "cl%61ss subcl%61ss");
    EXPECT_EQ(withReplaced("a=b==", "=", "&#61;"), "a&#61;b&#61;&#61;");
    EXPECT_EQ(withReplaced("aaaaa", "aa", "a"), "aaa");
    EXPECT_EQ(withReplaced("aa", "a", "aa"), "aaaa");
    EXPECT_EQ(withReplaced("ab", "ab", ""), "");
}

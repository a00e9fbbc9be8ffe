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

TEST(PlainLine, HasNothingThatATerminalObeys)
{
    EXPECT_EQ(plainLine("a\x1b[2J\nb"), "a [2J b");
    EXPECT_EQ(plainLine("a\xc2\x9b"
                        "2Jb\xc2\x80\xc2\x85"),
              "a2Jb");
    EXPECT_EQ(plainLine("\xc2\xa0\xd8\x9c\xe2\x80\x8e\xe2\x80\x8f\xe2\x80\xaa\xe2\x80\xae\xe2\x81\xa6\xe2\x81\xa9"),
              "\xc2\xa0");
    EXPECT_EQ(plainLine("\xe2\x80\x8d\xe2\x80\x90\xe2\x80\xa9\xe2\x80\xaf\xe2\x81\xa5\xe2\x81\xaa"),
              "\xe2\x80\x8d\xe2\x80\x90\xe2\x80\xa9\xe2\x80\xaf\xe2\x81\xa5\xe2\x81\xaa")
        << "the characters beside those";
    EXPECT_EQ(plainLine("a\x9b\xff"), "a\xc3\xbf") << "Latin-1 has them, too";
    EXPECT_EQ(plainLine("\xe2\x80\xae \x01"), "");
    EXPECT_EQ(plainLine(""), "");
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

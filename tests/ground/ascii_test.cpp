#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "ground/ascii.h"

using namespace quarrynet;

namespace {

/// Returns the bytes, from 0 to 255, that `is` accepts.
template <class Is>
std::string taken(Is is)
{
    std::string bytes;
    for (int byte = 0; byte < 0x100; ++byte) {
        if (is(static_cast<char>(byte)))
            bytes.push_back(static_cast<char>(byte));
    }
    return bytes;
}

constexpr std::string_view kUpper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view kLower = "abcdefghijklmnopqrstuvwxyz";

} // namespace

TEST(Ascii, EveryByteIsInItsClass)
{
    EXPECT_EQ(taken(isAsciiDigit), "0123456789");
    EXPECT_EQ(taken(isAsciiUpper), kUpper);
    EXPECT_EQ(taken(isAsciiLower), kLower);
    EXPECT_EQ(taken(isAsciiLetter), std::string(kUpper).append(kLower));
    EXPECT_EQ(taken(isAsciiAlphanumeric), std::string("0123456789").append(kUpper).append(kLower));
    EXPECT_EQ(taken([](char c) { return hexDigitValue(c) >= 0; }), "0123456789ABCDEFabcdef");
    EXPECT_EQ(taken(isAscii).size(), 128U);
    EXPECT_EQ(taken(isBlankOrControl), taken(isAsciiControl).insert(32, 1, ' '));
    EXPECT_EQ(taken(isAsciiControl).size(), 33U);
    EXPECT_TRUE(isAsciiControl('\0') && isAsciiControl('\x7F') && !isAsciiControl(' ') && !isAsciiControl('\x80'));
}

TEST(HexDigitValue, EitherCase)
{
    for (int value = 0; value < 16; ++value) {
        EXPECT_EQ(hexDigitValue("0123456789abcdef"[value]), value);
        EXPECT_EQ(hexDigitValue("0123456789ABCDEF"[value]), value);
    }
    EXPECT_EQ(hexDigitValue('g'), -1);
    EXPECT_EQ(hexDigitValue('\0'), -1);
}

TEST(ToLowerAscii, OtherBytesStay)
{
    EXPECT_EQ(toLowerAscii(kUpper), kLower);
    EXPECT_EQ(toLowerAscii(std::string_view("@A[`\0Z\xC3\x84\xC4", 9)), std::string_view("@a[`\0z\xC3\x84\xC4", 9));
    EXPECT_EQ(toLowerAscii(""), "");
}

TEST(IgnoringCase, OnlyLettersOfAsciiLoseTheirCase)
{
    EXPECT_TRUE(equalsIgnoringCase("Content-TYPE", "content-type"));
    EXPECT_TRUE(equalsIgnoringCase("", ""));
    EXPECT_FALSE(equalsIgnoringCase("a", ""));
    EXPECT_FALSE(equalsIgnoringCase("ab", "a"));
    EXPECT_FALSE(equalsIgnoringCase("[", "{")); // they differ by the same bit as "a" and "A"
    EXPECT_FALSE(equalsIgnoringCase("\xC4", "\xE4"));
    EXPECT_FALSE(equalsIgnoringCase(std::string_view("a\0b", 3), std::string_view("a\0c", 3)));
}

TEST(IgnoringCase, BeginningsAndEndings)
{
    EXPECT_TRUE(startsWithIgnoringCase("HTTP://a", "http://"));
    EXPECT_FALSE(startsWithIgnoringCase("http:/", "http://"));
    EXPECT_TRUE(startsWithIgnoringCase("a", ""));
    EXPECT_TRUE(endsWithIgnoringCase("a/PAGE.Html", ".html"));
    EXPECT_FALSE(endsWithIgnoringCase("html", ".html"));
    EXPECT_FALSE(endsWithIgnoringCase("a.html~", ".html"));
    EXPECT_TRUE(endsWithIgnoringCase("", ""));
}

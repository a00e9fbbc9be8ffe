#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "ground/utf8.h"
#include "tests/support/test_data.h"

using namespace quarrynet;

namespace {

std::optional<Utf8Character> first(std::string_view bytes)
{
    return utf8Character(samples::ExactBytes(bytes));
}

std::string bytes(std::initializer_list<int> values)
{
    std::string text;
    for (const int value : values)
        text.push_back(static_cast<char>(value));
    return text;
}

Utf8Character character(char32_t number, std::size_t length)
{
    return {number, length};
}

} // namespace

TEST(Utf8Character, SequencesOfEveryLengthAreRead)
{
    EXPECT_EQ(first("abc"), character('a', 1));
    EXPECT_EQ(first("\xC3\xBCx"), character(0xFC, 2));
    EXPECT_EQ(first("\xE2\x82\xACx"), character(0x20AC, 3));
    EXPECT_EQ(first("\xF0\x9F\x98\x80x"), character(0x1F600, 4));
}

TEST(Utf8Character, EmptyTextHasNone)
{
    EXPECT_EQ(utf8Character({}), std::nullopt);
    EXPECT_EQ(first(""), std::nullopt);
}

TEST(Utf8Character, NulIsACharacter)
{
    EXPECT_EQ(first(std::string_view("\0", 1)), character(0, 1));
}

TEST(Utf8Character, EveryFirstByteHasItsLength)
{
    for (int lead = 0; lead < 0x100; ++lead) {
        std::size_t length = 0;
        if (lead < 0x80)
            length = 1;
        else if (lead >= 0xC2 && lead < 0xE0)
            length = 2;
        else if (lead >= 0xE0 && lead < 0xF0)
            length = 3;
        else if (lead >= 0xF0 && lead < 0xF5)
            length = 4;
        // 90 is valid after any lead byte except E0, which needs A0 or more, and F4, which needs 8F or less.
        const int second = lead == 0xE0 ? 0xA0 : lead == 0xF4 ? 0x8F : 0x90;
        const std::optional<Utf8Character> found = first(bytes({lead, second, 0x80, 0x80, 0x80}));
        ASSERT_EQ(found ? found->length : 0, length) << lead;
    }
}

TEST(Utf8Character, EverySecondByteIsBoundByTheFirst)
{
    for (int lead = 0xC2; lead <= 0xF4; ++lead) {
        const int low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
        const int high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
        for (int second = 0; second < 0x100; ++second) {
            const bool valid = second >= low && second <= high;
            ASSERT_EQ(first(bytes({lead, second, 0x80, 0x80})).has_value(), valid) << lead << ' ' << second;
        }
    }
}

TEST(Utf8Character, LaterBytesMustContinue)
{
    for (int last = 0; last < 0x100; ++last) {
        const bool valid = last >= 0x80 && last <= 0xBF;
        ASSERT_EQ(first(bytes({0xE2, 0x82, last})).has_value(), valid) << last;
        ASSERT_EQ(first(bytes({0xF0, 0x9F, last, 0x80})).has_value(), valid) << last;
        ASSERT_EQ(first(bytes({0xF0, 0x9F, 0x98, last})).has_value(), valid) << last;
    }
}

TEST(Utf8Character, LongerFormsThanNeededAreNone)
{
    EXPECT_EQ(first("\xC0\xAF"), std::nullopt);
    EXPECT_EQ(first("\xC1\xBF"), std::nullopt);
    EXPECT_EQ(first("\xE0\x80\xAF"), std::nullopt);
    EXPECT_EQ(first("\xE0\x9F\xBF"), std::nullopt);
    EXPECT_EQ(first("\xE0\xA0\x80"), character(0x800, 3));
    EXPECT_EQ(first("\xF0\x80\x80\xAF"), std::nullopt);
    EXPECT_EQ(first("\xF0\x8F\xBF\xBF"), std::nullopt);
    EXPECT_EQ(first("\xF0\x90\x80\x80"), character(0x10000, 4));
}

TEST(Utf8Character, SurrogatesAreNone)
{
    EXPECT_EQ(first("\xED\x9F\xBF"), character(0xD7FF, 3));
    EXPECT_EQ(first("\xED\xA0\x80"), std::nullopt);
    EXPECT_EQ(first("\xED\xBF\xBF"), std::nullopt);
    EXPECT_EQ(first("\xEE\x80\x80"), character(0xE000, 3));
}

TEST(Utf8Character, NumbersBeyondUnicodeAreNone)
{
    EXPECT_EQ(first("\xF4\x8F\xBF\xBF"), character(0x10FFFF, 4));
    EXPECT_EQ(first("\xF4\x90\x80\x80"), std::nullopt);
    EXPECT_EQ(first("\xF5\x80\x80\x80"), std::nullopt);
    EXPECT_EQ(first("\xF8\x88\x80\x80\x80"), std::nullopt);
}

TEST(Utf8Character, CutSequencesAreNone)
{
    for (const std::string_view whole : {"\xC3\xBC", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
        for (std::size_t length = 1; length < whole.size(); ++length) {
            EXPECT_EQ(first(whole.substr(0, length)), std::nullopt);
            EXPECT_EQ(first(std::string(whole.substr(0, length)) + "a"), std::nullopt);
            EXPECT_EQ(first(whole.substr(length)), std::nullopt);
        }
    }
}

TEST(Utf8Character, EveryCharacterGoesRoundTrip)
{
    std::string text;
    for (char32_t number = 0; number <= 0x10FFFF; ++number) {
        if (number == 0xD800)
            number = 0xE000;
        text.clear();
        appendUtf8(text, number);
        ASSERT_EQ(utf8Character(text), character(number, text.size())) << static_cast<unsigned long>(number);
    }
}

TEST(AppendUtf8, PutsTheSequenceBehindTheText)
{
    std::string text = "a";
    appendUtf8(text, 0xE9);
    appendUtf8(text, 0x20AC);
    appendUtf8(text, 0x1F600);
    appendUtf8(text, 0);
    EXPECT_EQ(text, std::string_view("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\0", 11));
}

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

TEST(AppendUtf8, NumberThatIsNoCharacterIsReplaced)
{
    std::string text;
    appendUtf8(text, 0x10FFFF);
    appendUtf8(text, 0xD800);
    appendUtf8(text, 0x110000);
    EXPECT_EQ(text, "\xf4\x8f\xbf\xbf\xef\xbf\xbd\xef\xbf\xbd");
}

TEST(IsUtf8, TextsOfWholeCharacters)
{
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8(std::string_view("a\0\xC3\xBC", 4)));
    EXPECT_FALSE(isUtf8("a\xC3"));
    EXPECT_FALSE(isUtf8("\xBC"
                        "a"));
}

TEST(WithoutBrokenCharacters, EveryByteThatBelongsToNoneIsReplaced)
{
    EXPECT_EQ(withoutBrokenCharacters(""), "");
    EXPECT_EQ(withoutBrokenCharacters("a\xE2\x82\xAC"), "a\xE2\x82\xAC");
    EXPECT_EQ(withoutBrokenCharacters("\xE2\x82"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(withoutBrokenCharacters("\xFFz\x80"), "\xEF\xBF\xBDz\xEF\xBF\xBD");
}

TEST(TurnsDirection, TheExplicitFormattingCharactersOnly)
{
    std::u32string found;
    for (char32_t number = 0; number <= 0x10FFFF; ++number) {
        if (turnsDirection(number))
            found += number;
    }
    EXPECT_TRUE(found == U"\u061C\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069");
}

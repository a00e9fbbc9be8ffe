#include <algorithm>
#include <clocale>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "common/letter_case.h"

#ifdef _WIN32
#include <windows.h>
#endif

using namespace quarrynet;

namespace {

constexpr unsigned kUtf8 = 65001;

bool codePageIs(unsigned number)
{
#ifdef _WIN32
    return ::GetACP() == number;
#else
    return number == kUtf8;
#endif
}

} // namespace

TEST(LowerCase, MapsAsciiLetters)
{
    EXPECT_EQ(lowerCase("Apple PIE @[`{ 09"), "apple pie @[`{ 09");
}

TEST(LowerCase, EmptyTextStaysEmpty)
{
    EXPECT_EQ(lowerCase(""), "");
}

TEST(LowerCase, NulStays)
{
    EXPECT_EQ(lowerCase(std::string_view("A\0B", 3)), std::string_view("a\0b", 3));
}

TEST(LowerCase, MapsLettersOfAllScripts)
{
    if (!codePageIs(kUtf8))
        GTEST_SKIP() << "the system's code page is not UTF-8";
    EXPECT_EQ(lowerCase("ÄÖÜ ÉÑ ŁŻŹ"), "äöü éñ łżź");
    EXPECT_EQ(lowerCase("ΑΒΩ ЖЯЁ"), "αβω жяё");
    EXPECT_EQ(lowerCase("x×ß日本"), "x×ß日本");
}

TEST(LowerCase, LetterMayChangeItsLength)
{
    if (!codePageIs(kUtf8))
        GTEST_SKIP() << "the system's code page is not UTF-8";
    EXPECT_EQ(lowerCase("\xC8\xBA"), "\xE2\xB1\xA5");             // A with stroke
#ifndef _WIN32                                                    // whose table has neither
    EXPECT_EQ(lowerCase("\xE2\x84\xAA"), "k");                    // the Kelvin sign
    EXPECT_EQ(lowerCase("\xF0\x90\x90\x80"), "\xF0\x90\x90\xA8"); // Deseret, beyond 16 bits
#endif
}

TEST(LowerCase, InvalidBytesCountAsLatin1)
{
    if (!codePageIs(kUtf8))
        GTEST_SKIP() << "the system's code page is not UTF-8";
    EXPECT_EQ(lowerCase("CAF\xC9"), "caf\xC3\xA9");
    EXPECT_EQ(lowerCase("\xC9!"), lowerCase("É!"));
    EXPECT_EQ(lowerCase("\xC3"), "\xC3\xA3");                         // cut in the middle of a letter
    EXPECT_EQ(lowerCase("\xC0\xAF"), "\xC3\xA0\xC2\xAF");             // written too long
    EXPECT_EQ(lowerCase("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xC2\x80"); // a surrogate
    EXPECT_EQ(lowerCase("\xF4\x90\x80\x80"), "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80");
}

TEST(LowerCase, DoesNotDependOnTheProgramsLocale)
{
    if (!codePageIs(kUtf8))
        GTEST_SKIP() << "the system's code page is not UTF-8";
    ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    EXPECT_EQ(lowerCase("Ä"), "ä");
}

TEST(LowerCase, MapsLettersOfOneByte)
{
    if (!codePageIs(1252))
        GTEST_SKIP() << "the system's code page is not 1252";
    EXPECT_EQ(lowerCase("CAF\xC9 \x8A\x8C\x8E\x9F"), "caf\xE9 \x9A\x9C\x9E\xFF");
    EXPECT_EQ(lowerCase("\x80\x83\xAA\xBA\xD7\xDF\xF7"), "\x80\x83\xAA\xBA\xD7\xDF\xF7");
    EXPECT_EQ(lowerCase("\x81\x8D\x8F\x90\x9D"), "\x81\x8D\x8F\x90\x9D"); // no letters
}

TEST(LowerCase, MapsCyrillicLettersOfOneByte)
{
    if (!codePageIs(1251))
        GTEST_SKIP() << "the system's code page is not 1251";
    EXPECT_EQ(lowerCase("\xCF\xD0\xC8\xC2\xC5\xD2 \xA8\x80\xA1"), "\xEF\xF0\xE8\xE2\xE5\xF2 \xB8\x90\xA2");
}

TEST(LowerCase, SecondByteOfALetterIsNoLetterOfItsOwn)
{
    if (!codePageIs(932))
        GTEST_SKIP() << "the system's code page is not 932";
    EXPECT_EQ(lowerCase("\x83\x41Z\x83\x5A"), "\x83\x41z\x83\x5A");               // Katakana a, Z, se
    EXPECT_EQ(lowerCase("\x82\x60\x83\x9F\x84\x40"), "\x82\x81\x83\xBF\x84\x70"); // wide A, alpha, Cyrillic a
    EXPECT_EQ(lowerCase("\x83"), "\x83");                                         // cut in the middle of a letter
    EXPECT_EQ(lowerCase("\x83\x20Z\xFF"), "\x83\x20z\xFF");                       // no letter, and no byte of one
}

TEST(LowerCase, AppliedTwiceChangesNothingMore)
{
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        std::string text(random() % 12, ' ');
        for (char& c : text)
            c = static_cast<char>(random() % 3 == 0 ? random() % 128 : 128 + random() % 128);
        const std::string once = lowerCase(text);
        ASSERT_EQ(lowerCase(once), once) << testing::PrintToString(text);
    }
}

TEST(LetterBoundary, CutsBetweenLetters)
{
    EXPECT_EQ(letterBoundary("abc", 0), 0u);
    EXPECT_EQ(letterBoundary("abc", 2), 2u);
    EXPECT_EQ(letterBoundary("abc", 3), 3u);
    EXPECT_EQ(letterBoundary("", 0), 0u);
}

TEST(LetterBoundary, PartsAtEveryCutAreThoseOfTheWhole)
{
    std::mt19937 random(7);
    constexpr std::string_view kBytes = "Aa\x80\xBF\xC3\x84\xE1\xBA\x9E\xF0\x90\xFF";
    for (int round = 0; round < 20000; ++round) {
        std::string text(random() % 12, '\0');
        for (char& c : text)
            c = round % 2 == 0 ? kBytes[random() % kBytes.size()] : static_cast<char>(random() % 256);
        for (std::size_t at = 0; at <= text.size(); ++at) {
            const std::size_t cut = letterBoundary(text, at);
            ASSERT_GE(cut, at);
            ASSERT_LE(cut, std::min(text.size(), at + 3));
            ASSERT_EQ(lowerCase(text.substr(0, cut)) + lowerCase(text.substr(cut)), lowerCase(text));
        }
    }
}

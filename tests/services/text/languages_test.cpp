#include <random>

#include <gtest/gtest.h>

#include "tests/services/support/service_support.h"
#include "text/languages.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

/// Returns the code of the language that the field asks for.
std::string_view chosen(std::string_view field)
{
    const ExactCopy copy(field);
    return codeOf(preferredLanguage(copy.view()));
}

} // namespace

TEST(PreferredLanguage, FollowsTheWeights)
{
    EXPECT_EQ(chosen(""), "en");
    EXPECT_EQ(chosen("de"), "de");
    EXPECT_EQ(chosen("en"), "en");
    EXPECT_EQ(chosen("de,en"), "de");
    EXPECT_EQ(chosen("en,de"), "en");
    EXPECT_EQ(chosen("en;q=0.3, de;q=0.8"), "de");
    EXPECT_EQ(chosen("de;q=0.3, en;q=0.8"), "en");
    EXPECT_EQ(chosen("de;q=0.999,en;q=1"), "en");
    EXPECT_EQ(chosen("en;q=0.5,de;q=0.5"), "en");
    EXPECT_EQ(chosen("de;q=0.5,en;q=0.5"), "de");
}

TEST(PreferredLanguage, TakesARangeWithSubtagsForItsLanguage)
{
    EXPECT_EQ(chosen("de-AT"), "de");
    EXPECT_EQ(chosen("DE-Latn-1996, en"), "de");
    EXPECT_EQ(chosen("de-AT,de;q=0.9,en-US;q=0.8,en;q=0.7"), "de");
    EXPECT_EQ(chosen("en-US,en;q=0.9,de;q=0.1"), "en");
    EXPECT_EQ(chosen("den"), "en"); // another language
    EXPECT_EQ(chosen("d"), "en");
}

TEST(PreferredLanguage, GivesEnglishForLanguagesWithoutTranslations)
{
    EXPECT_EQ(chosen("fy,nds;q=0.5"), "en");
    EXPECT_EQ(chosen("fy,de;q=0.1"), "de");
    EXPECT_EQ(chosen("*"), "en");
    EXPECT_EQ(chosen("fy,*;q=0.5"), "en");
}

TEST(PreferredLanguage, AWeightOfNothingExcludes)
{
    EXPECT_EQ(chosen("de;q=0"), "en");
    EXPECT_EQ(chosen("de;q=0.000,*"), "en");
    EXPECT_EQ(chosen("en;q=0,*"), "de");
    EXPECT_EQ(chosen("de-AT,de;q=0"), "en"); // the range without subtags is about the language itself
    EXPECT_EQ(chosen("en;q=0,de;q=0"), "en");
}

TEST(PreferredLanguage, AllowsBlanksAndIgnoresMalformedRanges)
{
    EXPECT_EQ(chosen(" \tde ;  q=0.5\t, en ; q=0.4 "), "de");
    EXPECT_EQ(chosen("de;Q=0.5,en;q=0.4"), "de");
    for (const char* malformed :
         {"de;q=", "de;q=2", "de;q=1.5", "de;q=0.1234", "de;q=.5", "de;q=x", "de;q=-1", "de;q=0,5x", "de;level=1",
          "de;", "de;q=0.5;q=1", ";q=1", ",,,", ";", "=", "\"de\"", "de q=1"})
        EXPECT_EQ(chosen(malformed), "en") << malformed;
    EXPECT_EQ(chosen("en;q=2,de;q=0.1"), "de");
}

TEST(PreferredLanguage, ReadsHostileFieldsWithinItsBounds)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(chosen("\0de\0"sv), "en");
    EXPECT_EQ(chosen("d\xc3\xa4, \xff\xfe, de"), "de");
    EXPECT_EQ(chosen(std::string(1000000, ',') + "de"), "en");

    std::string ranges;
    for (std::size_t i = 0; i + 1 < kMaxLanguageRanges; ++i)
        ranges += "x,";
    EXPECT_EQ(chosen(ranges + "de"), "de");
    EXPECT_EQ(chosen(ranges + "x,de"), "en");

    const std::string blanks(kMaxAcceptLanguage - 2, ' ');
    EXPECT_EQ(chosen(blanks + "de"), "de");
    EXPECT_EQ(chosen(blanks + " de"), "en"); // cut to "d"
}

TEST(PreferredLanguage, ReadsRandomFields)
{
    constexpr std::string_view kPieces[] = {"de", "en", "*", "-", ";", "q=", "0", "1", ".", "5", ",", " ", "\0", "x"};
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        std::string field;
        for (auto left = random() % 12; left > 0; --left)
            field += kPieces[random() % std::size(kPieces)];
        const std::string_view code = chosen(field);
        EXPECT_TRUE(code == "en" || code == "de") << field;
    }
}

TEST(Translated, GivesTheTextOfTheLanguage)
{
    const Language german = preferredLanguage("de");
    EXPECT_EQ(translated("Web search", german), "Websuche");
    EXPECT_EQ(translated("Web search", Language::English), "Web search");
    EXPECT_EQ(translated("No such text", german), "No such text");
    EXPECT_EQ(translated("", german), "");
    EXPECT_EQ(translated("The request's header is too large.", german), "Der Kopf der Anfrage ist zu gro\xc3\x9f.");
}

TEST(Translated, ReplacesTheArgumentOnce)
{
    const Language german = preferredLanguage("de");
    EXPECT_EQ(translated("The picture is at %1.", german, "%1"), "Das Bild ist unter %1.");
    EXPECT_EQ(translated("The picture is at %1.", Language::English, "a%1b"), "The picture is at a%1b.");
    EXPECT_EQ(translated("Search", german, "x"), "Suchen");
}

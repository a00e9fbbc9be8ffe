#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "search/page/KeywordFinder.h"

using namespace quarrynet;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<bool> found(std::string_view text, const std::vector<std::string>& keywords)
{
    KeywordFinder finder;
    for (const std::string& keyword : keywords)
        finder.add(keyword);
    finder.read(text);
    return finder.found();
}

} // namespace

TEST(KeywordFinder, EachKeywordIsFoundOrNot)
{
    EXPECT_THAT(found("a pineapple", {"apple", "pear", "pine"}), ElementsAre(true, false, true));
}

TEST(KeywordFinder, EmptyTextHoldsNothingButTheEmptyKeyword)
{
    EXPECT_THAT(found("", {"a", ""}), ElementsAre(false, true));
    EXPECT_THAT(found("text", {}), IsEmpty());
}

TEST(KeywordFinder, KeywordInsideAnotherIsFoundWithIt)
{
    EXPECT_THAT(found("xabcdx", {"abcd", "bc", "c", "bcd", "cdx", "abd"}),
                ElementsAre(true, true, true, true, true, false));
}

TEST(KeywordFinder, KeywordAcrossPiecesIsFound)
{
    KeywordFinder finder;
    finder.add("apple");
    finder.add("pen");
    for (const char* piece : {"a pinea", "", "p", "ple p", "e"})
        finder.read(piece);
    EXPECT_THAT(finder.found(), ElementsAre(true, false));
    finder.read("n");
    EXPECT_THAT(finder.found(), ElementsAre(true, true));
}

TEST(KeywordFinder, KeywordCutOffByTheEndIsNotFound)
{
    EXPECT_THAT(found("abcab", {"abcabc", "cab"}), ElementsAre(false, true));
}

TEST(KeywordFinder, SameKeywordTwiceHasTwoAnswers)
{
    EXPECT_THAT(found("ab", {"b", "b"}), ElementsAre(true, true));
}

TEST(KeywordFinder, NulAndHighBytesAreBytes)
{
    EXPECT_THAT(found(std::string("a\0\xFF", 3), {std::string("\0\xFF", 2), "\xFF", std::string("\xFF\0", 2)}),
                ElementsAre(true, true, false));
}

TEST(KeywordFinder, HugePeriodicTextAndKeywords)
{
    const std::string text(1'000'000, 'a');
    EXPECT_THAT(found(text, {std::string(50'000, 'a'), std::string(50'000, 'a') + 'b', "b"}),
                ElementsAre(true, false, false));
}

TEST(KeywordFinder, AgreesWithPlainSearchesOnRandomTexts)
{
    std::mt19937 random(20011);
    const auto text = [&](std::size_t longest) {
        std::string made(random() % (longest + 1), '\0');
        for (char& c : made)
            c = static_cast<char>('a' + random() % 3);
        return made;
    };
    for (int round = 0; round < 3000; ++round) {
        const std::string page = text(60);
        std::vector<std::string> keywords(random() % 40);
        for (std::string& keyword : keywords)
            keyword = text(8);
        const std::vector<bool> answers = found(page, keywords);
        ASSERT_EQ(answers.size(), keywords.size());
        for (std::size_t i = 0; i < keywords.size(); ++i)
            ASSERT_EQ(answers[i], page.find(keywords[i]) != std::string::npos) << page << ": " << keywords[i];
    }
}

#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/profile_text.h"
#include "tests/support/test_data.h"

using namespace quarrynet;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::optional<std::string> value(std::string_view text, std::string_view section, std::string_view key)
{
    const samples::ExactBytes exact(text);
    const auto found = profileValue(exact, section, key);
    return found ? std::optional(std::string(*found)) : std::nullopt;
}

std::vector<std::string> entries(std::string_view text, std::string_view section)
{
    std::vector<std::string> lines;
    for (const ProfileEntry& entry : profileEntries(text, section))
        lines.emplace_back(entry.key).append(entry.value ? "=" : "").append(entry.value.value_or(""));
    return lines;
}

} // namespace

TEST(ProfileValue, IsReadFromItsSection)
{
    const std::string text = "[A]\nk=1\n[B]\nk=2\n";
    EXPECT_EQ(value(text, "A", "k"), "1");
    EXPECT_EQ(value(text, "B", "k"), "2");
    EXPECT_EQ(value(text, "C", "k"), std::nullopt);
    EXPECT_EQ(value(text, "A", "x"), std::nullopt);
}

TEST(ProfileValue, NamesCompareWithoutCaseAndBlanks)
{
    EXPECT_EQ(value("[ Proxy Host ]\n Value = h\n", "pROXY hOST", "VALUE"), "h");
}

TEST(ProfileValue, BlanksAndOnePairOfQuotesAreDropped)
{
    EXPECT_EQ(value("[A]\nk=  \" x \" \t\r\n", "A", "k"), " x ");
    EXPECT_EQ(value("[A]\nk='x'", "A", "k"), "x");
    EXPECT_EQ(value("[A]\nk=\"\"x\"\"", "A", "k"), "\"x\"");
    EXPECT_EQ(value("[A]\nk=\"x", "A", "k"), "\"x");
    EXPECT_EQ(value("[A]\nk=\"", "A", "k"), "\"");
    EXPECT_EQ(value("[A]\nk=\"\"", "A", "k"), "");
    EXPECT_EQ(value("[A]\nk='x\"", "A", "k"), "'x\"");
}

TEST(ProfileValue, EmptyTextAndEmptyValue)
{
    EXPECT_EQ(value("", "A", "k"), std::nullopt);
    EXPECT_EQ(value("[A]\nk=", "A", "k"), "");
    EXPECT_EQ(value("[A]\nk\n", "A", "k"), "");
    EXPECT_EQ(value("[A]", "A", "k"), std::nullopt);
}

TEST(ProfileValue, FirstOfSeveralCounts)
{
    EXPECT_EQ(value("[A]\nk=1\nk=2\n[a]\nk=3\nj=4\n", "A", "k"), "1");
    EXPECT_EQ(value("[A]\nk=1\n[a]\nj=4\n", "A", "j"), std::nullopt);
}

TEST(ProfileValue, CommentsAndLinesBeforeASectionAreNoEntries)
{
    EXPECT_EQ(value("k=0\n[A]\n;k=1\n  ; k=2\nk=3 ; not a comment\n", "A", "k"), "3 ; not a comment");
}

TEST(ProfileValue, HeaderWithoutEndOrWithMoreBehindIt)
{
    EXPECT_EQ(value("[A\nk=1\n", "A", "k"), "1");
    EXPECT_EQ(value("[A] tail\nk=1\n", "A", "k"), "1");
}

TEST(ProfileValue, SecondEqualsSignBelongsToTheValue)
{
    EXPECT_EQ(value("[A]\nk=x=y\n", "A", "k"), "x=y");
}

TEST(ProfileValue, EveryLineEndEndsALine)
{
    for (const char* end : {"\n", "\r\n", "\r", "\r\r\n"}) {
        const std::string text =
            std::string("[A]") + end + "k=1" + end + "; j=0" + end + end + "j=2" + end + "[B]" + end;
        EXPECT_EQ(value(text, "A", "k"), "1");
        EXPECT_EQ(value(text, "A", "j"), "2");
        EXPECT_EQ(profileSectionNames(text).size(), 2U);
    }
}

TEST(ProfileValue, NulAndHighBytesAreBytesLikeOthers)
{
    EXPECT_EQ(value(std::string_view("[A]\nk=a\0b\xff\n", 12), "A", "k"), std::string("a\0b\xff", 4));
}

TEST(ProfileEntries, KeepOrderAndQuotes)
{
    EXPECT_THAT(entries("[A]\nb = \"x\" \n\n; note\nword\na=\n[B]\nc=1", "a"), ElementsAre("b=\"x\"", "word", "a="));
    EXPECT_THAT(entries("[A]\n[B]\nc=1", "A"), IsEmpty());
}

TEST(ProfileSectionNames, AreListedInOrder)
{
    EXPECT_THAT(profileSectionNames("x\n[B]\n[ a ]\nk=[no]\n[B]"), ElementsAre("B", "a", "B"));
    EXPECT_THAT(profileSectionNames(""), IsEmpty());
}

TEST(WithProfileValue, ReplacesOneLineOnly)
{
    EXPECT_EQ(withProfileValue("; top\r\n[A]\r\nKey = 1 \r\nj=2\r\n\r\n[B]\nk=3", "a", "key", "9"),
              "; top\r\n[A]\r\nKey=9\r\nj=2\r\n\r\n[B]\nk=3");
    EXPECT_EQ(withProfileValue("[A]\nk=1", "A", "k", "22"), "[A]\nk=22");
}

TEST(WithProfileValue, NewKeyStandsBehindTheLastLineOfItsSection)
{
    EXPECT_EQ(withProfileValue("[A]\nk=1\n; note\n\n\n[B]\n", "A", "j", "2"), "[A]\nk=1\n; note\nj=2\n\n\n[B]\n");
    EXPECT_EQ(withProfileValue("[A]", "A", "j", "2"), "[A]\nj=2\n");
    EXPECT_EQ(withProfileValue("[A]\r\nk=1", "A", "j", "2"), "[A]\r\nk=1\r\nj=2\r\n");
}

TEST(WithProfileValue, NewSectionStandsAtTheEnd)
{
    EXPECT_EQ(withProfileValue("", "A", "k", "1"), "[A]\nk=1\n");
    EXPECT_EQ(withProfileValue("x", "A", "k", "1"), "x\n[A]\nk=1\n");
}

TEST(WithProfileValue, NewLinesEndLikeTheFirstOne)
{
    EXPECT_EQ(withProfileValue("[A]\rk=1\r[B]\r", "A", "j", "2"), "[A]\rk=1\rj=2\r[B]\r");
    EXPECT_EQ(withProfileValue("[A]\rk=1\r", "C", "j", "2"), "[A]\rk=1\r[C]\rj=2\r");
    EXPECT_EQ(withProfileValue("[A]\r\nk=1\r\r\nj=2\n", "A", "k", "3"), "[A]\r\nk=3\r\r\nj=2\n");
}

TEST(WithProfileEntries, CommentsAndBlankLinesStay)
{
    EXPECT_EQ(withProfileEntries("[A]\n; one\nk=1\n\n; two\nj=2\n\n[B]\nx=1\n", "a", {{"n", "5"}, {"m", "6"}}),
              "[A]\n; one\nn=5\nm=6\n\n; two\n\n[B]\nx=1\n");
    EXPECT_EQ(withProfileEntries("[A]\n; one\n\n[B]\n", "A", {{"n", "5"}}), "[A]\n; one\nn=5\n\n[B]\n");
}

TEST(WithProfileEntries, MissingSectionsAndFinalLineEndsAreMade)
{
    EXPECT_EQ(withProfileEntries("", "A", {{"k", "1"}}), "[A]\nk=1\n");
    EXPECT_EQ(withProfileEntries("", "A", {}), "[A]\n");
    EXPECT_EQ(withProfileEntries("[A]", "A", {{"k", "1"}}), "[A]\nk=1\n");
    EXPECT_EQ(withProfileEntries("[A]\nk=1", "A", {}), "[A]\n");
    EXPECT_EQ(withProfileEntries("[A]\n;c", "A", {{"k", "1"}}), "[A]\n;c\nk=1\n");
}

TEST(IsProfileText, RefusesWhatWouldBecomeAnotherLine)
{
    EXPECT_TRUE(isProfileSection("ProxyHost"));
    EXPECT_TRUE(isProfileKey("Value"));
    EXPECT_TRUE(isProfileValue("a=b ;[c]"));
    EXPECT_TRUE(isProfileValue(""));
    for (const char* text : {"", "  ", "a]b", "a\nb", "a\rb"})
        EXPECT_FALSE(isProfileSection(text)) << text;
    for (const char* text : {"", " \t", "a=b", "[a", " ;a", "a\n"})
        EXPECT_FALSE(isProfileKey(text)) << text;
    EXPECT_FALSE(isProfileValue("x\n[ProxySwitch]"));
    EXPECT_FALSE(isProfileValue(std::string("a\0b", 3)));
}

TEST(PackProfileList, EndsEachItemWithNul)
{
    EXPECT_EQ(packProfileList({"a=1", "b"}, 100), std::string("a=1\0b\0", 6));
    EXPECT_EQ(packProfileList({}, 100), "");
    EXPECT_EQ(packProfileList({"a=1", "b"}, 7), std::string("a=1\0b\0", 6));
}

TEST(PackProfileList, CutsWhatDoesNotFit)
{
    EXPECT_EQ(packProfileList({"a=1", "bcd"}, 8), std::string("a=1\0bc", 6));
    EXPECT_EQ(packProfileList({"abcdef", "g"}, 5), "abc");
}

TEST(WithProfileValue, IsReadBackFromRandomTexts)
{
    std::mt19937 random(99);
    const std::string alphabet = "[]=;\"' \t\r\nkKAaB\0\xef";
    const auto randomText = [&](std::size_t longest) {
        std::string text(random() % longest, ' ');
        for (char& c : text)
            c = alphabet[random() % alphabet.size()];
        return text;
    };
    for (int i = 0; i < 20000; ++i) {
        const std::string text = randomText(60);
        const std::string section = randomText(4);
        const std::string key = randomText(4);
        if (!isProfileSection(section) || !isProfileKey(key))
            continue;
        const std::string once = withProfileValue(text, section, key, "v");
        ASSERT_EQ(value(once, section, key), "v") << text << "|" << section << "|" << key;
        ASSERT_EQ(withProfileValue(once, section, key, "v"), once);
        const std::string replaced = withProfileEntries(text, section, {{key, "v"}});
        ASSERT_EQ(value(replaced, section, key), "v") << text << "|" << section << "|" << key;
        ASSERT_EQ(profileEntries(replaced, section).size(), 1U);
        const auto sameAsKey = [&](std::string_view other) {
            return value("[s]\n" + std::string(other) + "=1\n", "s", key).has_value();
        };
        for (const std::string_view name : profileSectionNames(text)) {
            for (const ProfileEntry& entry : profileEntries(text, name)) {
                if (!sameAsKey(entry.key)) {
                    ASSERT_EQ(value(once, name, entry.key), value(text, name, entry.key)) << text;
                }
            }
        }
    }
}

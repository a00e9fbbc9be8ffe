#include <algorithm>
#include <cstddef>
#include <numeric>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/text_utilities.h"

using namespace quarrynet;

namespace {

enum class Plain
{
    Ended,
    GaveUp,
};

constexpr std::size_t kMostFormed = std::size_t{64} << 20; // bound for texts that grow, in bytes

// The procedure as it is defined: replaces the first match and starts again, until nothing changes.
Plain plainFindReplace(std::string& text, const std::string& sought, const std::string& replacement)
{
    for (int round = 0; round < 3000 && text.size() < 20000; ++round) {
        const std::size_t at = text.find(sought);
        std::string next = text;
        if (at != std::string::npos)
            next = text.substr(0, at) + replacement + text.substr(at + sought.size());
        if (next == text)
            return Plain::Ended;
        text = next;
    }
    return Plain::GaveUp;
}

std::string onePass(const std::string& source, const std::string& sought, const std::string& replacement)
{
    std::string out;
    std::size_t from = 0;
    for (std::size_t at = source.find(sought); at != std::string::npos; at = source.find(sought, from)) {
        out += source.substr(from, at - from) + replacement;
        from = at + sought.size();
    }
    return out + source.substr(from);
}

// Returns how many bytes the plain procedure writes over matches that are not contiguous text of the source, or nothing
// if it does not end soon.
std::optional<std::size_t> formedBytes(std::string text, const std::string& sought, const std::string& replacement)
{
    std::vector<int> places(text.size()); // position of each byte in the source; negative for bytes of a replacement
    std::iota(places.begin(), places.end(), 0);
    std::size_t formed = 0;
    for (int round = 0; round < 1000; ++round) {
        const std::size_t at = text.find(sought);
        if (at == std::string::npos)
            return formed;
        const auto first = places.begin() + static_cast<std::ptrdiff_t>(at);
        const auto last = first + static_cast<std::ptrdiff_t>(sought.size());
        const bool inSource =
            *first >= 0 && std::adjacent_find(first, last, [](int a, int b) { return b != a + 1; }) == last;
        formed += inSource ? 0 : replacement.size();
        places.insert(places.erase(first, last), replacement.size(), -2);
        text.replace(at, sought.size(), replacement);
    }
    return std::nullopt;
}

std::string randomText(std::mt19937& random, std::size_t longest, int letters)
{
    std::string text(random() % (longest + 1), 'a');
    for (char& c : text)
        c = static_cast<char>('a' + static_cast<int>(random() % static_cast<unsigned>(letters)));
    return text;
}

std::string repeated(const std::string& text, std::size_t times)
{
    std::string out;
    for (std::size_t i = 0; i < times; ++i)
        out += text;
    return out;
}

} // namespace

TEST(ReplaceFirstInstance, ReplacesTheFirstOnly)
{
    EXPECT_EQ(ReplaceFirstInstance("abcabc", "bc", "X"), "aXabc");
    EXPECT_EQ(ReplaceFirstInstance("abc", "c", ""), "ab");
}

TEST(ReplaceFirstInstance, NoMatchLeavesTheTextAlone)
{
    EXPECT_EQ(ReplaceFirstInstance("abc", "z", "X"), "abc");
    EXPECT_EQ(ReplaceFirstInstance("abc", "B", "X"), "abc");
    EXPECT_EQ(ReplaceFirstInstance("", "a", "X"), "");
}

TEST(ReplaceFirstInstance, EmptySearchTextIsFoundAtTheStart)
{
    EXPECT_EQ(ReplaceFirstInstance("abc", "", "X"), "Xabc");
    EXPECT_EQ(ReplaceFirstInstance("", "", "X"), "X");
}

TEST(FindReplace, ReplacesEveryMatch)
{
    EXPECT_EQ(FindReplace("a b", " ", "+"), "a+b");
    EXPECT_EQ(FindReplace("http%3A%2F%2Fx", "%2F", "/"), "http%3A//x");
    EXPECT_EQ(FindReplace("1,234,567", ",", ""), "1234567");
}

TEST(FindReplace, LooksAgainAtWhatAReplacementFormed)
{
    EXPECT_EQ(FindReplace("a    b", "  ", " "), "a b");
    EXPECT_EQ(FindReplace("aaaa", "aa", "a"), "a");
    EXPECT_EQ(FindReplace("<<b>b>x", "<b>", ""), "x");
    EXPECT_EQ(FindReplace("a<b<b>>c", "<b>", ""), "ac");
    EXPECT_EQ(FindReplace("aab", "ab", "b"), "b");
    EXPECT_EQ(FindReplace("aabb", "ab", "ba"), "bbaa");
}

TEST(FindReplace, ComparesCase)
{
    EXPECT_EQ(FindReplace("Abc", "a", "x"), "Abc");
}

TEST(FindReplace, EmptySearchTextGivesTheEmptyText)
{
    EXPECT_EQ(FindReplace("abc", "", "x"), "");
    EXPECT_EQ(FindReplace("", "", ""), "");
}

TEST(FindReplace, EmptySourceStaysEmpty)
{
    EXPECT_EQ(FindReplace("", "a", "x"), "");
}

TEST(FindReplace, NoMatchGivesTheSource)
{
    EXPECT_EQ(FindReplace("abc", "z", "x"), "abc");
    EXPECT_EQ(FindReplace("abc", "abcd", "x"), "abc");
}

TEST(FindReplace, ReplacementEqualToTheSearchTextEnds)
{
    EXPECT_EQ(FindReplace("aXa", "a", "a"), "aXa");
}

TEST(FindReplace, NulAndHighBytesAreBytesLikeOthers)
{
    const std::string nul(1, '\0');
    EXPECT_EQ(FindReplace("a" + nul + nul + "b", nul + nul, nul), "a" + nul + "b");
    EXPECT_EQ(FindReplace("\xff\xfe\xff", "\xff", "\xc3\xa9"), "\xc3\xa9\xfe\xc3\xa9");
}

TEST(FindReplace, ReplacementHoldingTheSearchTextGivesOnePass)
{
    EXPECT_EQ(FindReplace("a-a", "a", "aa"), "aa-aa");
    EXPECT_EQ(FindReplace("xabx", "ab", "cabd"), "xcabdx");
    const std::string sought = repeated("xy", 40);
    EXPECT_EQ(FindReplace("1" + sought + "2" + sought, sought, "<" + sought + ">"),
              "1<" + sought + ">2<" + sought + ">");
}

TEST(FindReplace, ReplacementThatGrowsForEverGivesOnePass)
{
    // Each round forms another match from the replacement and the byte before it.
    EXPECT_EQ(FindReplace("aab", "ab", "bbaa"), onePass("aab", "ab", "bbaa"));
    EXPECT_EQ(FindReplace(repeated("aaab", 1000), "ab", "bbaa"), onePass(repeated("aaab", 1000), "ab", "bbaa"));
    // Would end, but only after growing to 2^400 bytes.
    EXPECT_EQ(FindReplace(std::string(400, 'a') + "b", "ab", "bba"), std::string(399, 'a') + "bba");
}

TEST(FindReplace, TextThatKeepsItsLengthIsRewrittenToTheEnd)
{
    // Each "b" moves past each "a", which takes n squared replacements.
    for (const std::size_t n : {1, 2, 1500, 2000, 5000})
        EXPECT_TRUE(FindReplace(std::string(n, 'a') + std::string(n, 'b'), "ab", "ba") ==
                    std::string(n, 'b') + std::string(n, 'a'))
            << n;
    EXPECT_TRUE(FindReplace(std::string(1500, 'a') + repeated("bc", 1500), "abc", "bca") ==
                repeated("bc", 1500) + std::string(1500, 'a'));
}

TEST(FindReplace, TextThatGrowsAndEndsIsRewrittenToTheEnd)
{
    // Each "a" doubles the "b"s after it.
    for (const std::size_t n : {1, 5, 20})
        EXPECT_TRUE(FindReplace(std::string(n, 'a') + "b", "ab", "bba") ==
                    std::string(std::size_t{1} << n, 'b') + std::string(n, 'a'))
            << n;
}

TEST(FindReplaceWithin, GivesNothingBeyondItsBound)
{
    const std::string text = "aabb"; // three of four replacements overwrite an earlier one
    EXPECT_EQ(FindReplaceWithin(text, "ab", "ba", 6), "bbaa");
    EXPECT_EQ(FindReplaceWithin(text, "ab", "ba", 5), std::nullopt);
    EXPECT_EQ(FindReplaceWithin("a b c", " ", "+", 0), "a+b+c");
    EXPECT_EQ(FindReplaceWithin("a-a", "a", "aa", 0), "aa-aa");
    EXPECT_EQ(FindReplaceWithin("abc", "", "x", 0), "");
}

TEST(FindReplaceWithin, BoundOfGrowingTextsIsTheOneThatIsStated)
{
    // There are 2^n - 1 replacements of three bytes; all but the first one overwrite others.
    const std::size_t n = 20;
    const std::size_t formed = ((std::size_t{1} << n) - 2) * 3;
    ASSERT_LT(formed, kMostFormed);
    const std::string text = std::string(n, 'a') + "b";
    EXPECT_TRUE(FindReplaceWithin(text, "ab", "bba", formed).has_value());
    EXPECT_FALSE(FindReplaceWithin(text, "ab", "bba", formed - 1).has_value());
    // 24 is the largest n within the bound of FindReplace.
    EXPECT_EQ(FindReplace(std::string(24, 'a') + "b", "ab", "bba").size(), (std::size_t{1} << 24) + 24);
    EXPECT_EQ(FindReplace(std::string(25, 'a') + "b", "ab", "bba"), std::string(24, 'a') + "bba");
}

TEST(FindReplaceWithin, BoundCountsEachReplacementThatStandsOnAnEarlierOne)
{
    std::mt19937 random(20250311);
    int counted = 0;
    for (int i = 0; i < 40000; ++i) {
        const std::string source = randomText(random, 24, 2);
        const std::string sought = randomText(random, 4, 2) + "b";
        const std::string replacement = randomText(random, 5, 2);
        if (replacement.find(sought) != std::string::npos)
            continue;
        const std::optional<std::size_t> formed = formedBytes(source, sought, replacement);
        if (!formed)
            continue;
        ASSERT_TRUE(FindReplaceWithin(source, sought, replacement, *formed))
            << source << ", " << sought << ", " << replacement;
        if (*formed == 0)
            continue;
        ++counted;
        ASSERT_FALSE(FindReplaceWithin(source, sought, replacement, *formed - 1))
            << source << ", " << sought << ", " << replacement;
    }
    EXPECT_GT(counted, 3000);
}

TEST(FindReplace, LongSearchTextsBehaveAlike)
{
    const std::string sought = std::string(50, 'a') + "b";
    EXPECT_EQ(FindReplace(std::string(70, 'a') + "bc", sought, "x"), std::string(20, 'a') + "xc");
    EXPECT_EQ(FindReplace(sought.substr(0, 20) + sought + sought.substr(20), sought, ""), "");
    EXPECT_EQ(FindReplace(std::string(100000, 'a'), std::string(60, 'a'), std::string(59, 'a')), std::string(59, 'a'));
}

TEST(FindReplace, HugeNestCollapses)
{
    const std::size_t depth = 500000;
    EXPECT_EQ(FindReplace(repeated("<b", depth) + repeated(">", depth), "<b>", ""), "");
    EXPECT_EQ(FindReplace(std::string(4 * depth, ' '), "  ", " "), " ");
}

TEST(FindReplace, IsThePlainProcedureOnRandomTexts)
{
    std::mt19937 random(20240611);
    int ended = 0;
    int joined = 0;
    int gaveUp = 0;
    for (int i = 0; ended < 170000; ++i) {
        const int letters = 1 + static_cast<int>(random() % 3);
        const std::string source = randomText(random, 24, letters);
        const std::string sought = randomText(random, 5, letters);
        const std::string replacement = randomText(random, 5, letters);
        if (sought.empty())
            continue;
        if (replacement != sought && replacement.find(sought) != std::string::npos) {
            ASSERT_EQ(FindReplace(source, sought, replacement), onePass(source, sought, replacement))
                << source << ", " << sought << ", " << replacement;
            continue;
        }
        std::string plain = source;
        if (plainFindReplace(plain, sought, replacement) == Plain::GaveUp) {
            ASSERT_GT(replacement.size(), sought.size()) << source << ", " << sought << ", " << replacement;
            ++gaveUp;
            continue;
        }
        ++ended;
        joined += plain != onePass(source, sought, replacement) ? 1 : 0;
        ASSERT_EQ(FindReplace(source, sought, replacement), plain) << source << ", " << sought << ", " << replacement;
    }
    EXPECT_GT(joined, 5000);
    EXPECT_LT(gaveUp, ended / 10);
}

TEST(FindReplace, IsThePlainProcedureOnRandomLongSearchTexts)
{
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        const std::string sought = repeated(randomText(random, 3, 2) + "a", 12) + randomText(random, 30, 2);
        std::string source = randomText(random, 30, 2);
        for (int part = 0; part < 6; ++part)
            source += sought.substr(0, random() % (sought.size() + 1)) + sought.substr(random() % sought.size());
        const std::string replacement = sought.substr(random() % sought.size()).substr(0, random() % 8);
        std::string plain = source;
        if (replacement == sought || plainFindReplace(plain, sought, replacement) == Plain::GaveUp)
            continue;
        ASSERT_EQ(FindReplace(source, sought, replacement), plain) << source << ", " << sought;
    }
}

TEST(ContainsText, FindsAtEveryPlace)
{
    EXPECT_TRUE(containsText("pineapple", "apple"));
    EXPECT_TRUE(containsText("pineapple", "pine"));
    EXPECT_FALSE(containsText("pineapple", "Apple"));
    EXPECT_FALSE(containsText("app", "apple"));
}

TEST(ContainsText, EmptyTextIsEverywhere)
{
    EXPECT_TRUE(containsText("", ""));
    EXPECT_TRUE(containsText("abc", ""));
}

TEST(ContainsText, AgreesWithFindOnLongPeriodicTexts)
{
    std::mt19937 random(11);
    for (int i = 0; i < 2000; ++i) {
        const std::string sought = repeated(randomText(random, 3, 2), 30) + randomText(random, 3, 2);
        std::string text = randomText(random, 40, 2);
        for (int part = 0; part < 3; ++part)
            text += sought.substr(0, random() % (sought.size() + 1)) + randomText(random, 2, 2);
        ASSERT_EQ(containsText(text, sought), text.find(sought) != std::string::npos) << text << ", " << sought;
    }
}

#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/letter_case.h"
#include "search/page/address.h"
#include "search/page/keywords.h"
#include "search/page/presence.h"
#include "search/page/request.h"

using namespace quarrynet;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int kAny = 0;
constexpr int kAll = 1;
constexpr int kExact = 2;

// Splits the typed text step by step as defined, including the removal of empty entries.
std::vector<std::string> plainEntries(const std::string& typed)
{
    std::vector<std::string> entries;
    std::string rest = typed + " ";
    std::size_t p = 0;
    do {
        const std::size_t found = rest.find(' ');
        p = found == std::string::npos ? 0 : found + 1;
        entries.push_back(rest.substr(0, p));
        rest = rest.substr(p);
    } while (p != 0);
    const std::size_t count = entries.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (i < entries.size() && entries[i].empty())
            entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(i));
    }
    return entries;
}

std::vector<PresenceRow> rows(const std::string& page, const std::string& typed, int mode)
{
    return presenceRows(page, keywordEntries(typed), typed, mode);
}

PresenceRow found(const std::string& keyword)
{
    return {keyword, "Found"};
}

PresenceRow notFound(const std::string& keyword)
{
    return {keyword, "Not Found"};
}

PresenceRow summary(const std::string& text)
{
    return {text, std::nullopt};
}

} // namespace

TEST(SplitAddress, HostAndPath)
{
    const PageAddress address = splitAddress("www.example.org/a/b.html");
    EXPECT_EQ(address.PageHost, "www.example.org");
    EXPECT_EQ(address.PagePath, "/a/b.html");
}

TEST(SplitAddress, SchemeIsDroppedWhenWrittenInLowerCase)
{
    EXPECT_EQ(splitAddress("http://www.example.org").PageHost, "www.example.org");
    EXPECT_EQ(splitAddress("http://www.example.org").PagePath, "/");
    EXPECT_EQ(splitAddress("HTTP://x/y").PageHost, "HTTP:");
    EXPECT_EQ(splitAddress("HTTP://x/y").PagePath, "//x/y");
    EXPECT_FALSE(splitAddress("http://x/y").tls);
    EXPECT_FALSE(splitAddress("x/y").tls);
}

TEST(SplitAddress, SchemeOfTlsIsDroppedWhenWrittenInLowerCase)
{
    const PageAddress address = splitAddress("https://www.example.org/a?b=https://c/");
    EXPECT_EQ(address.PageHost, "www.example.org");
    EXPECT_EQ(address.PagePath, "/a?b=https://c/");
    EXPECT_TRUE(address.tls);
    EXPECT_EQ(splitAddress("https://x").PagePath, "/");
    EXPECT_EQ(splitAddress("https://x:8443/y").PageHost, "x:8443");
    EXPECT_EQ(splitAddress("https://").PageHost, "");
    EXPECT_EQ(splitAddress("HTTPS://x/y").PageHost, "HTTPS:");
    EXPECT_FALSE(splitAddress("HTTPS://x/y").tls);
    EXPECT_EQ(splitAddress("https:/x/y").PageHost, "https:");
    EXPECT_FALSE(splitAddress("https:/x/y").tls);
}

TEST(SplitAddress, OneSchemeIsDropped)
{
    EXPECT_EQ(splitAddress("http://https://x/y").PageHost, "https:");
    EXPECT_FALSE(splitAddress("http://https://x/y").tls);
    EXPECT_EQ(splitAddress("https://http://x/y").PageHost, "http:");
    EXPECT_TRUE(splitAddress("https://http://x/y").tls);
    EXPECT_EQ(splitAddress("https://https://x/y").PageHost, "https:");
}

TEST(SplitAddress, PortStaysWithTheHost)
{
    EXPECT_EQ(splitAddress("http://x:8080/y").PageHost, "x:8080");
}

TEST(SplitAddress, EmptyParts)
{
    EXPECT_EQ(splitAddress("").PageHost, "");
    EXPECT_EQ(splitAddress("").PagePath, "/");
    EXPECT_EQ(splitAddress("http://").PageHost, "");
    EXPECT_EQ(splitAddress("/x").PageHost, "");
    EXPECT_EQ(splitAddress("/x").PagePath, "/x");
    EXPECT_EQ(splitAddress("http://http://x").PageHost, "http:");
}

TEST(KeywordEntries, KeepTheBlankBehindThem)
{
    EXPECT_THAT(keywordEntries("apple pie"), ElementsAre("apple ", "pie "));
    EXPECT_THAT(keywordEntries("apple  pie"), ElementsAre("apple ", " ", "pie "));
    EXPECT_THAT(keywordEntries(" apple "), ElementsAre(" ", "apple ", " "));
    EXPECT_THAT(keywordEntries(""), ElementsAre(" "));
}

TEST(KeywordEntries, AreThoseOfThePlainProcedure)
{
    std::mt19937 random(17);
    for (int i = 0; i < 5000; ++i) {
        std::string typed(random() % 12, ' ');
        for (char& c : typed)
            c = "ab  \t"[random() % 5];
        ASSERT_EQ(keywordEntries(typed), plainEntries(typed)) << typed;
    }
}

TEST(PageRequest, DirectAndThroughAProxy)
{
    EXPECT_EQ(pageRequest("www.example.org", "/a b?c", Route::Direct), "GET /a b?c HTTP/1.1\r\n"
                                                                       "Host: www.example.org\r\n"
                                                                       "Connection: close\r\n"
                                                                       "Accept: */*\r\n"
                                                                       "\r\n");
    EXPECT_EQ(pageRequest("www.example.org", "/", Route::Proxy), "GET http://www.example.org/ HTTP/1.1\r\n"
                                                                 "Host: www.example.org\r\n"
                                                                 "Proxy-Connection: close\r\n"
                                                                 "Accept: */*\r\n"
                                                                 "\r\n");
}

TEST(AnyKeyword, EachHasItsRow)
{
    EXPECT_THAT(rows("A pineapple is Red", "Apple BLUE red", kAny),
                ElementsAre(found("apple"), notFound("blue"), found("red")));
}

TEST(AnyKeyword, LoneBlankIsAnEmptyKeywordAndFound)
{
    EXPECT_THAT(rows("x", "a  x", kAny), ElementsAre(notFound("a"), found(""), found("x")));
}

TEST(AnyKeyword, SameKeywordTwiceIsListedTwice)
{
    EXPECT_THAT(rows("red", "red Red blue blue", kAny),
                ElementsAre(found("red"), found("red"), notFound("blue"), notFound("blue")));
}

TEST(AnyKeyword, CaseIsIgnoredForAllLetters)
{
#ifdef _WIN32
    EXPECT_THAT(rows("caf\xE9", "CAF\xC9", kAny), ElementsAre(found("caf\xE9")));
#else
    EXPECT_THAT(rows("Das CAFÉ", "café ÜBER", kAny), ElementsAre(found("café"), notFound("über")));
    EXPECT_THAT(rows("caf\xC9", "café", kAny), ElementsAre(found("café"))) << "a page in Latin-1";
#endif
}

TEST(AllKeywords, OneRowEachWhenAllAreThere)
{
    EXPECT_THAT(rows("red and blue", "blue red", kAll), ElementsAre(found("blue"), found("red")));
}

TEST(AllKeywords, OneMissingLeavesTheSummaryOnly)
{
    EXPECT_THAT(rows("red", "red blue", kAll), ElementsAre(summary("Not all keywords are found in this page")));
}

TEST(ExactSearch, WholeTextIsThePhrase)
{
    EXPECT_THAT(rows("a big RED  apple", " Red  Apple ", kExact), ElementsAre(found(" Red  Apple ")));
    EXPECT_THAT(rows("a big red apple", "red  apple", kExact),
                ElementsAre(summary("Keyword/s not found in this page")));
}

TEST(ExactSearch, BlanksOnlyAreFound)
{
    EXPECT_THAT(rows("x", "  ", kExact), ElementsAre(found("  ")));
}

TEST(Presence, OtherModesGiveNoRows)
{
    EXPECT_THAT(rows("red", "red", -1), IsEmpty());
    EXPECT_THAT(rows("red", "red", 3), IsEmpty());
}

TEST(Presence, NulAndHighBytesInThePage)
{
    EXPECT_THAT(rows(std::string("a\0red\xff", 6), "red", kAny), ElementsAre(found("red")));
}

TEST(Presence, HugePeriodicPageAndKeyword)
{
    const std::string page(3000000, 'a');
    EXPECT_THAT(rows(page, std::string(500000, 'A') + "b", kAll),
                ElementsAre(summary("Not all keywords are found in this page")));
    EXPECT_EQ(rows(page + "b", std::string(500000, 'A') + "b", kAny).front().result, "Found");
}

TEST(Presence, ManyKeywordsAreAnsweredAsFewAre)
{
    std::string page = "Apple and ";
    std::string typed = "apple pear  apple";
    for (int i = 0; i < 2000; ++i) {
        page += "Word" + std::to_string(2 * i) + '.';
        typed += " word" + std::to_string(i) + '.';
    }
    const std::vector<PresenceRow> many = rows(page, typed, kAny);
    ASSERT_EQ(many.size(), 2004u);
    EXPECT_EQ(many[0], found("apple"));
    EXPECT_EQ(many[1], notFound("pear"));
    EXPECT_EQ(many[2], found(""));
    EXPECT_EQ(many[3], found("apple"));
    for (std::size_t i = 0; i < 2000; ++i) {
        const std::string word = "word" + std::to_string(i) + '.';
        ASSERT_EQ(many[i + 4], i % 2 == 0 ? found(word) : notFound(word));
    }
    EXPECT_THAT(rows(page, typed, kAll), ElementsAre(summary("Not all keywords are found in this page")));
}

TEST(Presence, KeywordsAtEveryPlaceOfALargePageAreFound)
{
    // Pages are searched in pieces of a mebibyte; a keyword may cross their boundaries.
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    const std::string keyword = "\xC3\x84pfel";
    const std::string lowerKeyword = lowerCase(keyword); // by the system's code page
    for (std::size_t before = kPiece - 8; before <= kPiece + 1; ++before) {
        for (const int mode : {kAny, kAll, kExact}) {
            const std::string page = std::string(before, '.') + "\xC3\x84PFEL" + std::string(kPiece, '.');
            const std::vector<PresenceRow> one = rows(page, keyword, mode);
            ASSERT_EQ(one.size(), 1u);
            ASSERT_EQ(one[0].result, "Found") << before << ' ' << mode;
        }
        ASSERT_THAT(rows(std::string(before, '.') + "\xC3\x84PFE", keyword, kAny), ElementsAre(notFound(lowerKeyword)));
    }
}

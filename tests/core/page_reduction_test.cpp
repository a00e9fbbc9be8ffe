#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "common/text_utilities.h"
#include "search/page/reduction/TagIndex.h"
#include "search/page/reduction/TagRemoval.h"
#include "search/page/reduction/reduction.h"
#include "tests/support/test_data.h"

using namespace quarrynet;

namespace {

// The reduction as it is defined, by means of FindReplace, which has its own tests.
std::string plainReduction(const std::string& body)
{
    std::string text = FindReplace(body, "\"", "");
    while (true) {
        const std::size_t open = text.find('<');
        if (open == std::string::npos)
            break;
        const std::size_t close = text.find('>', open);
        if (close == std::string::npos)
            break;
        text = FindReplace(text, text.substr(open, close + 1 - open), "");
    }
    return text.empty() ? body : text;
}

std::string reduced(std::string_view body)
{
    return reducedPage(samples::ExactBytes(body));
}

std::string times(std::size_t count, std::string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < count; ++i)
        out += text;
    return out;
}

std::string randomText(std::mt19937& random, std::size_t longest, std::string_view alphabet)
{
    std::string text(random() % (longest + 1), ' ');
    for (char& c : text)
        c = alphabet[random() % alphabet.size()];
    return text;
}

} // namespace

TEST(ReducedPage, TagsAndQuotesGo)
{
    EXPECT_EQ(reduced("<p class=\"x\">One <b>red</b> \"apple\"</p>"), "One red apple");
    EXPECT_EQ(reduced("plain"), "plain");
}

TEST(ReducedPage, EmptyPageStaysEmpty)
{
    EXPECT_EQ(reduced(""), "");
}

TEST(ReducedPage, PageOfTagsOnlyIsGivenUnreduced)
{
    EXPECT_EQ(reduced("<a href=\"x\"></a>"), "<a href=\"x\"></a>");
    EXPECT_EQ(reduced("\"\""), "\"\"");
}

TEST(ReducedPage, UnclosedTagStaysWithWhatFollows)
{
    EXPECT_EQ(reduced("a<b>c<d e"), "ac<d e");
    EXPECT_EQ(reduced("a<"), "a<");
    EXPECT_EQ(reduced("<b><<b<c"), "<<b<c");
}

TEST(ReducedPage, LoneCloseStays)
{
    EXPECT_EQ(reduced("a > b <i>c</i> > d"), "a > b c > d");
    EXPECT_EQ(reduced(">>"), ">>");
}

TEST(ReducedPage, TagReachesFromTheFirstOpenToTheFirstClose)
{
    EXPECT_EQ(reduced("x<a<b>c>y"), "xc>y");
}

TEST(ReducedPage, EarlierTagIsCutOutOfANest)
{
    EXPECT_EQ(reduced("<b>x<a<b>c>y"), "xy");
    EXPECT_EQ(reduced("<a<b><b>x<c<a<b>d>y"), "xy");
}

TEST(ReducedPage, TagFormedAnewIsTakenInItsOwnRound)
{
    EXPECT_EQ(reduced("<a><b>x<q<<b>a>r>y"), plainReduction("<a><b>x<q<<b>a>r>y"));
    EXPECT_EQ(reduced("<a><b>x<q<<b>a>r>y"), "xr>y");
}

TEST(ReducedPage, QuotesGoBeforeTags)
{
    EXPECT_EQ(reduced("a<\"b\">c<b>d"), "acd");
    EXPECT_EQ(reduced("<b \">\" >x"), " >x");
}

TEST(ReducedPage, NulAndHighBytesAreBytesLikeOthers)
{
    EXPECT_EQ(reduced(std::string_view("a\0<\0>\xff<\xff>b", 10)), std::string_view("a\0\xff"
                                                                                    "b",
                                                                                    4));
}

TEST(ReducedPage, EveryCutOfAPageIsThePlainProcedure)
{
    const std::string page = "<!DOCTYPE html><html><head><title>A \"b\"</title><script>if (a<b && c<d) x(\"<i>\");"
                             "</script></head><body><!-- <b>old</b> --><p <b>x</b>>y</p><<p>></body></html>";
    for (std::size_t length = 0; length <= page.size(); ++length) {
        ASSERT_EQ(reduced(page.substr(0, length)), plainReduction(page.substr(0, length))) << length;
        ASSERT_EQ(reduced(page.substr(length)), plainReduction(page.substr(length))) << length;
    }
}

TEST(ReducedPage, RealisticPagesAreThePlainProcedure)
{
    std::mt19937 random(5);
    const std::string_view parts[] = {
        "<p>",
        "</p>",
        "<b>",
        "</b>",
        "<a href=\"/x?a=1&b=2\">",
        "</a>",
        " text ",
        "<br/>",
        "<td class=\"n\">",
        "<!-- note -->",
        "<!--[if lt IE 9]><script src=\"x\"></script><![endif]-->",
        "if (a<b && b>c) f();",
        "<script>for(i=0;i<n;++i)w(\"<b>\"+i+\"</b>\");</script>",
        "<input value=\"a<b>c\">",
        "a > b",
        "<",
        ">",
        "<p <b>",
        "<<b>",
        "<b>>",
        "\n",
        "\"",
        "<p\n>",
        "1 << 2 >> 3",
        "<script>x<y</script>",
        "caf\xc3\xa9",
    };
    for (int i = 0; i < 4000; ++i) {
        std::string page;
        const std::size_t count = random() % 60;
        for (std::size_t part = 0; part < count; ++part)
            page += parts[random() % std::size(parts)];
        ASSERT_EQ(reduced(page), plainReduction(page)) << page;
    }
}

TEST(ReducedPage, IsThePlainProcedureOnRandomTexts)
{
    std::mt19937 random(20240612);
    const std::string_view alphabets[] = {"<>",      "<>a",     "<<>>a",   "<>ab",
                                          "<<<>>ab", "<<>>>ab", "<>abc\"", "<<<<>>>>abc\""};
    int nested = 0;
    for (int i = 0; i < 150000; ++i) {
        const std::string text = randomText(random, i % 10 == 0 ? 120 : 40, alphabets[random() % std::size(alphabets)]);
        const std::string plain = plainReduction(text);
        ASSERT_EQ(reduced(text), plain) << text;
        nested += plain.find('<') != std::string::npos ? 1 : 0;
    }
    EXPECT_GT(nested, 10000);
}

TEST(ReducedPage, IsThePlainProcedureOnTextsOfTags)
{
    // Nests of few different tags, in which earlier rounds cut later tags and form new ones.
    std::mt19937 random(20240613);
    const std::string_view parts[] = {"<", ">", "<a>", "<b>", "<<a>", "<b<a>", "<a<b>",
                                      "a", "b", "<a",  "b>",  "<<",   ">>",    "<>"};
    for (int i = 0; i < 60000; ++i) {
        std::string text;
        const std::size_t count = random() % (i % 20 == 0 ? 120 : 25);
        const std::size_t kinds = 3 + random() % (std::size(parts) - 2);
        for (std::size_t part = 0; part < count; ++part)
            text += parts[(random() % kinds + static_cast<std::size_t>(i)) % std::size(parts)];
        ASSERT_EQ(reduced(text), plainReduction(text)) << text;
    }
}

TEST(ReducedPage, IsThePlainProcedureOnTextsOfLongTags)
{
    std::mt19937 random(20240614);
    const std::string filler = times(300, "c");
    const std::string parts[] = {"<" + filler, "<", filler + ">", ">", "<<" + filler + "<a>", "<a>", "<a>", ">>"};
    for (int i = 0; i < 3000; ++i) {
        std::string text;
        const std::size_t count = random() % 40;
        for (std::size_t part = 0; part < count; ++part)
            text += parts[random() % std::size(parts)];
        ASSERT_EQ(reduced(text), plainReduction(text)) << text;
    }
}

TEST(ReducedPage, HostilePagesAreThePlainProcedure)
{
    EXPECT_EQ(reduced(times(3000, "<")), times(3000, "<"));
    EXPECT_EQ(reduced(times(3000, "<>")), times(3000, "<>"));
    for (const std::string& page : {
             "x<>" + times(300, "<") + times(300, ">") + "y",
             "x" + times(300, "<") + "><>" + times(250, "<") + times(250, ">") + "y",
             "x<b>" + times(200, "<a<b>") + times(200, ">") + "y",
             "x<z><>" + times(100, "<") + "<z>" + times(100, ">") + times(50, "<a><") + times(50, ">") + "y",
             times(100, "x<y>") + times(60, "<") + times(60, ">") + times(60, "<<>") + "y",
         })
        EXPECT_EQ(reduced(page), plainReduction(page)) << page;
    // Stale rounds of every depth precede a nest; none of them may be reused.
    std::string page = "x";
    for (std::size_t depth = 30; depth > 0; --depth)
        page += times(depth, "<") + ">";
    page += "<z><<z>" + times(40, "<") + "<z>" + times(40, ">") + "y";
    EXPECT_EQ(reduced(page), plainReduction(page));
}

TEST(ReducedPage, HugeNestsCollapse)
{
    const std::size_t depth = 400000;
    EXPECT_EQ(reduced("x<>" + times(depth, "<") + times(depth, ">")), "x");
    EXPECT_EQ(reduced("x<b>" + times(depth, "<a<b>") + times(depth, ">")).front(), 'x');
    EXPECT_EQ(reduced("x" + times(depth, "<") + "a"), "x" + times(depth, "<") + "a");
}

TEST(TagIndex, KeepsEveryTextApart)
{
    TagIndex index(1);
    std::vector<std::string> texts;
    for (int i = 0; i < 20000; ++i)
        texts.push_back(times(static_cast<std::size_t>(i % 20), "a").append(std::to_string(i / 20)));
    for (std::uint32_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(index.find(texts[i]), nullptr);
        index.at(texts[i]).first = i + 1;
    }
    for (std::uint32_t i = 0; i < texts.size(); ++i)
        ASSERT_EQ(index.at(texts[i]).first, i + 1);
    EXPECT_EQ(index.find("b"), nullptr);
}

TEST(TagRemoval, MisleadingFingerprintsAreNoticed)
{
    std::mt19937 random(3);
    int noticed = 0;
    int done = 0;
    for (int i = 0; i < 30000; ++i) {
        const std::string text = randomText(random, 50, "<<>>abc");
        // With base 1, all texts of the same letters have the same fingerprint; base 0 considers the last byte only.
        const std::optional<std::string> removed = TagRemoval(static_cast<std::uint64_t>(i % 2)).run(text);
        if (!removed) {
            ++noticed;
            continue;
        }
        ++done;
        const std::string plain = plainReduction(text);
        if (plain != text) {
            ASSERT_EQ(*removed, plain) << text;
        }
    }
    EXPECT_GT(noticed, 100);
    EXPECT_GT(done, 1000);
}

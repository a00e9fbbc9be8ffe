#include <random>

#include <gtest/gtest.h>

#include "service_support.h"
#include "services/html_document.h"
#include "services/text_encoding.h"

using namespace quarrynet::services;

namespace {

HtmlDocument readPage(std::string_view page)
{
    return readHtml(ExactCopy(page).view(), 100000);
}

} // namespace

TEST(ReadHtml, TakesTitleAndVisibleText)
{
    const HtmlDocument document =
        readPage("<html><head><TITLE>A &amp; B\n page</title><style>p{}</style><script>if (a<b) x();</script></head>"
                 "<body><!-- <p>hidden --><p>One<br>two &lt;three&gt; caf&#233;&#xe9;</p></body></html>");
    EXPECT_EQ(document.title, "A & B page");
    EXPECT_EQ(document.text, "One two <three> caf\xc3\xa9\xc3\xa9");
}

TEST(ReadHtml, EmptyPageAndPageWithoutTitle)
{
    EXPECT_EQ(readPage("").text, "");
    EXPECT_EQ(readPage("plain text").text, "plain text");
    EXPECT_EQ(readPage("plain text").title, "");
}

TEST(ReadHtml, UnclosedElementsEndWithThePage)
{
    EXPECT_EQ(readPage("a<script>b").text, "a");
    EXPECT_EQ(readPage("a<!-- b").text, "a");
    EXPECT_EQ(readPage("a<b").text, "a");
    EXPECT_EQ(readPage("<title>t").title, "t");
    EXPECT_EQ(readPage("a<style></stylex>b</style>c").text, "a c");
}

TEST(ReadHtml, ReferencesThatAreNoneStay)
{
    EXPECT_EQ(readPage("&; &x; &#; &#x; &#zz; & &amp").text, "&; &x; &#; &#x; &#zz; & &amp");
    EXPECT_EQ(readPage("a&#1;b&#2;c").text, "a b c");
    EXPECT_EQ(readPage("&#xD800;&#9999999;").text, "\xef\xbf\xbd\xef\xbf\xbd");
}

TEST(ReadHtml, Latin1PageBecomesUtf8)
{
    EXPECT_EQ(readPage("caf\xe9").text, "caf\xc3\xa9");
}

TEST(ReadHtml, TextIsBounded)
{
    std::string page;
    for (int i = 0; i < 10000; ++i)
        page += "<p>word \xc3\xa9 ";
    const HtmlDocument document = readHtml(page, 1001);
    EXPECT_LE(document.text.size(), 1001U);
    EXPECT_TRUE(isUtf8(document.text));
}

TEST(ReadHtml, RandomMarkupNeverFails)
{
    std::mt19937 random(11);
    const std::vector<std::string> parts{"<",       ">",        "</",      "<!--", "-->",
                                         "<title>", "</title>", "<script", "&",    "#",
                                         ";",       "x",        " ",       "\xff", std::string(1, '\0'),
                                         "&lt;",    "\xc3\xa9"};
    for (int round = 0; round < 20000; ++round) {
        std::string page;
        for (auto length = random() % 20; length > 0; --length)
            page += parts[random() % parts.size()];
        const HtmlDocument document = readPage(page);
        EXPECT_TRUE(isUtf8(document.title));
        EXPECT_EQ(document.text.find('\0'), std::string::npos);
    }
}

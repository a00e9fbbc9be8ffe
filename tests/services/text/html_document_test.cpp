#include <random>

#include <gtest/gtest.h>

#include "ground/utf8.h"
#include "tests/services/support/service_support.h"
#include "text/html_document.h"

using namespace quarrynet;
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
    EXPECT_EQ(readPage("&; &x; &#; &#x; &#zz; & &nosuch;").text, "&; &x; &#; &#x; &#zz; & &nosuch;");
    EXPECT_EQ(readPage("a&#1;b&#2;c").text, "a b c");
    EXPECT_EQ(readPage("&#xD800;&#9999999;").text, "\xef\xbf\xbd\xef\xbf\xbd");
}

// Once only sixteen names were decoded, and only with a semicolon.
TEST(ReadHtml, AllNamedReferencesAreDecoded)
{
    EXPECT_EQ(readPage("<title>caf&eacute;</title>na&iuml;ve &hellip; &alpha;&Omega; &frac12; &NotEqualTilde;").title,
              "caf\xc3\xa9");
    EXPECT_EQ(readPage("na&iuml;ve &hellip; &alpha;&Omega; &frac12; &NotEqualTilde;").text,
              "na\xc3\xafve \xe2\x80\xa6 \xce\xb1\xce\xa9 \xc2\xbd \xe2\x89\x82\xcc\xb8");
    EXPECT_EQ(readPage("AT&ampT &copy 2000 &lt&gt").text, "AT&T \xc2\xa9 2000 <>");
    EXPECT_EQ(readPage("a&nbsp;&nbsp;b&nbsp;").text, "a b");
    EXPECT_EQ(readPage("&#128; &#x1F600;").text, "\xe2\x82\xac \xf0\x9f\x98\x80");
}

// Once the tag ended at the first ">", and the rest of the attribute became text.
TEST(ReadHtml, AttributesMayHoldTagEnds)
{
    EXPECT_EQ(readPage("<p title=\"a > b\">one</p><img alt='x>y<z'>two<a href=x?a>b>three</a>").text, "one twob>three");
    EXPECT_EQ(readPage("<p title=\"</p><script>\">one").text, "one");
}

TEST(ReadHtml, TitleOfADrawingIsNotThePages)
{
    const HtmlDocument document =
        readPage("<body><svg><title>drawing</title><desc>a drawing</desc><text>in it</text></svg>"
                 "<title>page</title> text");
    EXPECT_EQ(document.title, "page");
    EXPECT_EQ(document.text, "in it text");
    EXPECT_EQ(readPage("<svg><title>drawing</title></svg>").title, "");
    EXPECT_EQ(readPage("<title>first</title><title>second</title>").title, "first");
    EXPECT_EQ(readPage("<title></title><title>second</title>").title, "");
    EXPECT_EQ(readPage("<title>a <b>b</b> &lt;</title>").title, "a <b>b</b> <");
}

TEST(ReadHtml, WordsGoOnOverInlineTagsAndEndAtOthers)
{
    EXPECT_EQ(readPage("w<b>or</b>d<i> a</i>nd<br>line<p>para</p>graph<hr>rule").text, "word and line para graph rule");
    EXPECT_EQ(readPage("<ul><li>one<li>two</ul><table><tr><td>a<td>b</table>").text, "one two a b");
}

TEST(ReadHtml, TextThatNobodySeesIsLeftOut)
{
    EXPECT_EQ(
        readPage(
            "a<template>b</template><noscript><p>c</p></noscript><iframe>d</iframe><style>e</style>"
            "<script><!-- f <script></script> g --></script><!-- h --!>i<![CDATA[j]]><?k?><textarea><b>l</textarea>")
            .text,
        "a c i <b>l");
}

TEST(ReadHtml, DeclaredEncodingIsRead)
{
    const std::string ok = "\xd0\xb4\xd0\xb0"; // da
    for (const std::string declared :
         {"<meta charset=koi8-r>", "<META CHARSET=' KOI8-R '>", "<meta charset=\"koi8-r\"/>",
          "<meta http-equiv=Content-Type content='text/html; charset=koi8-r'>",
          "<meta content=\"text/html;charset = 'koi8-r'\" http-equiv=content-type>",
          "<!-- <meta charset=utf-8> --><meta name=x content='>'><meta charset=koi8-r><meta charset=utf-8>",
          "<meta charset=nonsense><meta charset=koi8-r>", "<?xml version='1.0' encoding=\"KOI8-R\"?><html>"})
        EXPECT_EQ(readPage(declared + "\xc4\xc1").text, ok) << declared;
    // Elsewhere it is not a declaration.
    for (const std::string none :
         {"<!-- <meta charset=koi8-r> -->", "<p title='<meta charset=koi8-r>'>",
          "<meta name=description content='charset=koi8-r'>", "<script><meta charset=koi8-r></script>"})
        EXPECT_EQ(readPage(none + "\xc4\xc1").text, "\xc3\x84\xc3\x81") << none;
}

TEST(ReadHtml, EncodingsOfPagesAreRead)
{
    struct Sample
    {
        const char* label;
        const char* bytes;
        const char* text;
    };
    for (const Sample& sample :
         std::vector<Sample>{{"windows-1252", "\x80 \x93q\x94", "\xe2\x82\xac \xe2\x80\x9cq\xe2\x80\x9d"},
                             {"iso-8859-1", "\x80\xe9", "\xe2\x82\xac\xc3\xa9"},
                             {"ISO-8859-2", "\xb1", "\xc4\x85"},
                             {"iso-8859-5", "\xd4", "\xd0\xb4"},
                             {"iso-8859-7", "\xe1", "\xce\xb1"},
                             {"latin5", "\xfd", "\xc4\xb1"},
                             {"ISO-8859-15", "\xa4", "\xe2\x82\xac"},
                             {"windows-1251", "\xe4", "\xd0\xb4"},
                             {"Shift_JIS", "\x93\xfa\x96\x7b\x83\x5c", "\xe6\x97\xa5\xe6\x9c\xac\xe3\x82\xbd"},
                             {"x-sjis", "\x87\x40", "\xe2\x91\xa0"},
                             {"euc-jp", "\xc6\xfc\xcb\xdc", "\xe6\x97\xa5\xe6\x9c\xac"},
                             {"iso-2022-jp", "\x1b$BF|K\\\x1b(B", "\xe6\x97\xa5\xe6\x9c\xac"},
                             {"gb2312", "\xd6\xd0\xce\xc4", "\xe4\xb8\xad\xe6\x96\x87"},
                             {"big5", "\xa4\xa4\xa4\xe5", "\xe4\xb8\xad\xe6\x96\x87"},
                             {"euc-kr", "\xc7\xd1", "\xed\x95\x9c"},
                             {"utf-8", "\xc3\xa9\xe9", "\xc3\xa9\xef\xbf\xbd"},
                             {"utf-16", "\xc3\xa9", "\xc3\xa9"}}) {
        const std::string page = std::string("<meta charset=").append(sample.label).append("><p>").append(sample.bytes);
        EXPECT_EQ(readPage(page).text, sample.text) << sample.label;
    }
}

TEST(ReadHtml, ByteOrderMarkGoesBeforeWhatIsDeclared)
{
    EXPECT_EQ(readPage("\xef\xbb\xbf<meta charset=koi8-r>\xc3\xa9").text, "\xc3\xa9");
    EXPECT_EQ(readPage(std::string_view("\xff\xfe<\0b\0>\0\xe9\0\x3d\xd8\x00\xde", 14)).text,
              "\xc3\xa9\xf0\x9f\x98\x80");
    EXPECT_EQ(readPage(std::string_view("\xfe\xff\0<\0b\0>\0\xe9", 10)).text, "\xc3\xa9");
    // The page ends inside a character.
    EXPECT_EQ(readPage(std::string_view("\xfe\xff\0a\0", 5)).text, "a\xef\xbf\xbd");
    EXPECT_EQ(readPage("\xff\xfe").text, "");
}

TEST(ReadHtml, PageThatDeclaresNothingIsUtf8OrWindows1252)
{
    EXPECT_EQ(readPage("caf\xe9 \x96").text, "caf\xc3\xa9 \xe2\x80\x93");
    EXPECT_EQ(readPage("caf\xc3\xa9").text, "caf\xc3\xa9");
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

TEST(ReadHtml, ReferenceFarBeyondTheLastCharacterIsStillUtf8)
{
    const HtmlDocument document = readHtml("<title>a &#xffffffff0; b</title>c &#xffffffff0 d", 1000);
    EXPECT_TRUE(isUtf8(document.title)) << document.title;
    EXPECT_TRUE(isUtf8(document.text)) << document.text;
    EXPECT_EQ(document.title.front(), 'a');
    EXPECT_EQ(document.text.back(), 'd');
}

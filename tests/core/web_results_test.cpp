#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "search/web/results.h"
#include "tests/core/page_samples.h"
#include "tests/support/test_data.h"

using namespace quarrynet;
using namespace quarrynet::samples;
using testing::ElementsAre;

namespace {

WebResults parse(std::string_view page)
{
    return parseWebResults(ExactBytes(page));
}

} // namespace

TEST(WebResults, FullPageGivesThirtyRows)
{
    const WebResults results = parse(dataFile("web_results.html"));
    EXPECT_FALSE(results.fault);
    EXPECT_FALSE(results.nothingFound);
    ASSERT_EQ(results.rows, 30u);
    EXPECT_EQ(results.positions.size(), 30u);
    EXPECT_EQ(results.lists.addresses.front(), "http://orchard1.example/green/pear.html");
    EXPECT_EQ(results.lists.titles.front(), "<b>Green</b> pear, number 1");
    EXPECT_EQ(results.lists.cleanedTitles.front(), "Green pear, number 1");
    EXPECT_EQ(results.lists.cleanedTitles[2], "A <i>rare</i> plum &amp; more");
    EXPECT_EQ(results.lists.addresses[4], "http://orchard5.example/melon.html");
    EXPECT_EQ(results.lists.addresses.back(), "http://orchard30.example/apple.html");
    EXPECT_EQ(results.countCaption, "1,234");
    EXPECT_EQ(results.timeCaption, "0.27 Second/s");
    EXPECT_EQ(results.paging.pageTotal, "42");
    EXPECT_TRUE(results.paging.enableSlider);
    EXPECT_FALSE(results.paging.sliderMaximum);
}

TEST(WebResults, PositionsAreElevenBehindTheMarkers)
{
    EXPECT_THAT(parse("<p><a href=http://x>t</a><p><a href=http://y>u</a>").positions, ElementsAre(12, 37));
}

TEST(WebResults, CountsGiveTheirPages)
{
    const auto total = [](std::string_view count) { return parse(webPage(count)).paging.pageTotal; };
    EXPECT_EQ(total("35"), "1");
    EXPECT_EQ(total("60"), "60");
    EXPECT_EQ(total("250"), "8");
    EXPECT_EQ(total("29"), "1");
}

TEST(WebResults, LessThanOnePageLeavesTheSliderAlone)
{
    const WebResults results = parse(webPage("29"));
    EXPECT_FALSE(results.paging.enableSlider);
    EXPECT_FALSE(results.paging.sliderMaximum);
}

TEST(WebResults, OneRoundedPageLowersTheMaximumOfTheUnavailableSlider)
{
    const WebResults results = parse(webPage("35"));
    EXPECT_FALSE(results.paging.enableSlider);
    EXPECT_EQ(results.paging.sliderMaximum, 1);
}

TEST(WebResults, EightPagesLowerTheMaximum)
{
    const WebResults results = parse(webPage("250"));
    EXPECT_TRUE(results.paging.enableSlider);
    EXPECT_EQ(results.paging.sliderMaximum, 8);
}

TEST(WebResults, PageWithoutAResultIsNothingFound)
{
    for (const std::string_view page : {"", "<html>502 Bad Gateway</html>", "<P><A href=http://x>", "<p> <a"}) {
        const WebResults results = parse(page);
        EXPECT_TRUE(results.nothingFound) << page;
        EXPECT_EQ(results.countCaption, "0");
        EXPECT_EQ(results.timeCaption, "0.0 Second/s");
        EXPECT_FALSE(results.paging.pageTotal);
        EXPECT_FALSE(results.fault);
        EXPECT_EQ(results.rows, 0u);
    }
}

TEST(WebResults, AddressThatBeginsWithHttpKeepsItsEnd)
{
    const WebResults results = parse(heading("1") + webEntry("http://a.example/?x=1&e=2", "t"));
    EXPECT_THAT(results.lists.addresses, ElementsAre("http://a.example/?x=1&e=2"));
}

TEST(WebResults, RedirectIsCutAtTheTargetAndNotDecoded)
{
    const WebResults results = parse(heading("1") + webEntry("/url?q=http://a.example/%20?x&e=2&f=3", "t"));
    EXPECT_THAT(results.lists.addresses, ElementsAre("http://a.example/%20?x"));
}

TEST(WebResults, SchemeIsComparedCaseSensitively)
{
    const WebResults results = parse(heading("1") + webEntry("HTTP://a.example/?q=https://b.example/&e=1", "t"));
    EXPECT_THAT(results.lists.addresses, ElementsAre("https://b.example/"));
}

TEST(WebResults, TagsThatACleaningFormsAreCleanedToo)
{
    const WebResults results = parse(heading("1") + webEntry("http://a/", "x<<b>b>y<</b>/b>z"));
    EXPECT_THAT(results.lists.cleanedTitles, ElementsAre("xyz"));
}

TEST(WebResults, MissingTagEndEndsTheParseWithTheRowsNotYetShown)
{
    const WebResults results = parse(heading("2") + webEntry("http://a.example/", "t") + "<p><a href=http://b");
    EXPECT_EQ(results.fault, RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(results.positions.size(), 2u);
    EXPECT_THAT(results.lists.addresses, ElementsAre("http://a.example/"));
    EXPECT_THAT(results.lists.titles, ElementsAre("t"));
    EXPECT_TRUE(results.lists.cleanedTitles.empty());
    EXPECT_EQ(results.rows, 0u);
    EXPECT_FALSE(results.countCaption);
    EXPECT_FALSE(results.paging.pageTotal);
}

TEST(WebResults, MissingLinkEndEndsTheParseBehindTheAddress)
{
    const WebResults results = parse(heading("2") + "<p><a href=http://a.example/>title");
    EXPECT_EQ(results.fault, RuntimeError::InvalidProcedureCall);
    EXPECT_THAT(results.lists.addresses, ElementsAre("http://a.example/"));
    EXPECT_TRUE(results.lists.titles.empty());
}

TEST(WebResults, RedirectWithoutAnEndIsAFault)
{
    EXPECT_EQ(parse(heading("2") + webEntry("/url?q=http://a/", "t")).fault, RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(parse(heading("2") + webEntry("/url?q=ftp://a/&e=1", "t")).fault, RuntimeError::InvalidProcedureCall);
}

TEST(WebResults, FaultsInTheHeadingKeepTheRows)
{
    const WebResults results = parse(webEntry("http://a.example/", "t"));
    EXPECT_EQ(results.rows, 1u);
    EXPECT_FALSE(results.countCaption); // the page has no "</b>"
    EXPECT_EQ(results.fault, RuntimeError::InvalidProcedureCall);
}

TEST(WebResults, CountThatIsNoNumberKeepsRowsAndCaptions)
{
    const WebResults results = parse(webPage("many", 2));
    EXPECT_EQ(results.rows, 2u);
    EXPECT_EQ(results.countCaption, "many");
    EXPECT_EQ(results.timeCaption, "0.27 Second/s");
    EXPECT_EQ(results.fault, RuntimeError::TypeMismatch);
    EXPECT_FALSE(results.paging.pageTotal);
}

TEST(WebResults, CountAbove32BitsIsAnOverflow)
{
    EXPECT_EQ(parse(webPage("3,000,000,000")).fault, RuntimeError::Overflow);
}

TEST(WebResults, EntriesAreAddedToTheListsGiven)
{
    WebLists lists{{"http://old/"}, {"<b>old"}, {"older"}};
    const WebResults results = parseWebResults(heading("1") + webEntry("http://new/", "new"), lists);
    EXPECT_THAT(results.lists.addresses, ElementsAre("http://old/", "http://new/"));
    EXPECT_THAT(results.lists.cleanedTitles, ElementsAre("older", "old", "new"));
    EXPECT_EQ(results.rows, 2u);
}

TEST(WebResults, PageCutAtAnyByteKeepsWhatCameBefore)
{
    const std::string page = dataFile("web_results.html");
    for (std::size_t length = 1; length < page.size(); ++length) {
        const WebResults results = parse(std::string_view(page).substr(0, length));
        ASSERT_LE(results.rows, 30u);
        ASSERT_EQ(results.nothingFound, results.positions.empty()) << length;
        ASSERT_TRUE(results.rows == 0 || results.rows == results.positions.size()) << length;
    }
}

TEST(WebResults, NulAndHighBytesPassThrough)
{
    const std::string title("n\0l \xff\xe4", 6);
    const WebResults results = parse(heading("1") + webEntry("http://\xfc.example/", title));
    EXPECT_THAT(results.lists.addresses, ElementsAre("http://\xfc.example/"));
    EXPECT_THAT(results.lists.cleanedTitles, ElementsAre(title));
}

TEST(WebResults, ThirtyThousandResultsAreAllRead)
{
    const WebResults results = parse(webPage("30,001", 30000));
    EXPECT_FALSE(results.fault);
    EXPECT_EQ(results.rows, 30000u);
    EXPECT_EQ(results.paging.pageTotal, "1001");
}

TEST(WebResults, TitlesThatAllReachToTheSameEndRunOutOfMemory)
{
    const WebResults results = parse(repeated("<p><a href=http://a>", 100000) + "</a>");
    EXPECT_EQ(results.fault, RuntimeError::OutOfMemory);
    EXPECT_EQ(results.positions.size(), 100000u);
    EXPECT_EQ(results.rows, 0u);
}

TEST(WebResults, PageOf26KilobytesIsRead)
{
    // Every title extends to the end of the page.
    const WebResults results = parse(heading("1") + repeated("<p><a href=http://a>", 1300) + "</a>");
    EXPECT_FALSE(results.fault == RuntimeError::OutOfMemory);
    EXPECT_EQ(results.lists.addresses.size(), 1300U);
}

TEST(WebResults, MarkersWithoutAnythingElseAreAFault)
{
    EXPECT_EQ(parse(repeated("<p><a", 200000)).fault, RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(parse(repeated("<p><a href=http://a>", 50000)).fault, RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(parse(repeated("<p><a href=/x>http</a>", 50000)).fault, RuntimeError::InvalidProcedureCall);
}

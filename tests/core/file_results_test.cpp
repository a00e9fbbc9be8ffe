#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/memory.h"
#include "search/file/results.h"
#include "tests/core/page_samples.h"
#include "tests/support/test_data.h"

using namespace quarrynet;
using namespace quarrynet::samples;
using testing::ElementsAre;

namespace {

FileResults parse(std::string_view page, std::vector<Position> linkPositions = {})
{
    return parseFileResults(ExactBytes(page), std::move(linkPositions));
}

} // namespace

TEST(FileResults, FilesComeBeforeDirectories)
{
    const FileResults results = parse(dataFile("file_results.html"));
    EXPECT_FALSE(results.fault);
    ASSERT_EQ(results.rows.size(), 15u);
    EXPECT_EQ(results.rows[0].name, "pear.zip");
    EXPECT_EQ(results.rows[0].path, "ftp://mirror1.example/pub/green/pear.zip");
    EXPECT_EQ(results.rows[0].size, "104,729");
    EXPECT_EQ(results.rows[11].name, "plum.zip");
    EXPECT_EQ(results.rows[12].name, "green");
    EXPECT_EQ(results.rows[12].path, "ftp://mirror1.example/pub/green");
    EXPECT_EQ(results.rows[14].path, "ftp://mirror3.example/pub/black");
    for (std::size_t i = 12; i < 15; ++i)
        EXPECT_EQ(results.rows[i].size, "<Dir>");
    EXPECT_EQ(results.sliderAvailable, false);
}

TEST(FileResults, TwentyFiveFilesGiveTwentyRowsAndFurtherPages)
{
    const FileResults results = parse(filePage(25, 3));
    EXPECT_EQ(results.rows.size(), 20u);
    EXPECT_EQ(results.sliderAvailable, true);
}

TEST(FileResults, DirectoriesFillThePageUpToTwentyRows)
{
    const FileResults results = parse(filePage(18, 5));
    EXPECT_EQ(results.rows.size(), 20u);
    EXPECT_EQ(results.rows.back().size, "<Dir>");
    EXPECT_EQ(results.sliderAvailable, true);
    EXPECT_EQ(parse(filePage(0, 25)).rows.size(), 20u);
}

TEST(FileResults, PageWithoutRowsMakesTheSliderUnavailable)
{
    for (const std::string_view page : {"", "<html></html>", "<form></form><b>bold</b>"}) {
        const FileResults results = parse(page);
        EXPECT_TRUE(results.rows.empty()) << page;
        EXPECT_FALSE(results.nothingFound);
        EXPECT_EQ(results.sliderAvailable, false);
        EXPECT_FALSE(results.fault);
    }
}

TEST(FileResults, NotFoundAnywhereIsNothingFound)
{
    const FileResults results = parse(filePage(3) + "<i>file not found</i>", {4});
    EXPECT_TRUE(results.nothingFound);
    EXPECT_TRUE(results.rows.empty());
    EXPECT_EQ(results.sliderAvailable, false);
    EXPECT_THAT(results.linkPositions, ElementsAre(4));
    EXPECT_FALSE(parse("Not Found").nothingFound);
}

TEST(NothingFoundText, TellsALaterPageFromAFirst)
{
    EXPECT_EQ(nothingFoundText(true), "No more site found");
    EXPECT_EQ(nothingFoundText(false), "No site found");
}

TEST(FileResults, RowsBeforeTheFormAreNotFiles)
{
    EXPECT_EQ(parse(fileEntry("before.zip") + filePage(1)).rows.size(), 1u);
    EXPECT_EQ(parse(fileEntry("first.zip") + fileEntry("second.zip")).rows.size(), 2u);
}

TEST(FileResults, SizeIsTrimmedOfBlanksOnly)
{
    EXPECT_EQ(parse("</form>" + fileEntry("a.zip", "   1 KB  ")).rows[0].size, "1 KB");
    EXPECT_EQ(parse("</form>" + fileEntry("a.zip", "\t7")).rows[0].size, "\t7");
}

TEST(FileResults, MissingMarkersEndTheParseWithTheRowsSoFar)
{
    for (const std::string_view broken : {"<b> 12", "<b> 12 <a href=ftp://h/x", "<b> 12 <a href=ftp://h/x class=f>name",
                                          "&lt;dir&gt;", "&lt;dir&gt; <a", "&lt;dir&gt; <a><a><b>name</b>"}) {
        const FileResults results = parse(filePage(2) + std::string(broken));
        EXPECT_EQ(results.fault, RuntimeError::InvalidProcedureCall) << broken;
        EXPECT_EQ(results.rows.size(), 2u) << broken;
        EXPECT_FALSE(results.sliderAvailable) << broken;
    }
}

TEST(FileResults, LinkPositionsGrowByAllLinksButTheFirst)
{
    const FileResults results = parse("&lt;dir&gt; <a><a><a q=one class><b>n</b>", {5, 6});
    EXPECT_THAT(results.linkPositions, ElementsAre(5, 6, 5, 8));
    EXPECT_EQ(results.rows[0].path, "one");
}

TEST(FileResults, DirectoryWithOneLinkAndNothingInTheListHasAnEmptyAddress)
{
    const FileResults results = parse("&lt;dir&gt; <a href=?q=one class><b>n</b>");
    ASSERT_EQ(results.rows.size(), 1u);
    EXPECT_EQ(results.rows[0].name, "n");
    EXPECT_EQ(results.rows[0].path, "");
    EXPECT_EQ(results.rows[0].size, "<Dir>");
    EXPECT_TRUE(results.linkPositions.empty());
}

TEST(FileResults, DirectoryWithOneLinkLooksBehindAnEarlierRowsLink)
{
    EXPECT_EQ(parse("&lt;dir&gt; <a href=?q=one class><b>n</b>", {2}).rows[0].path, "one");
    const FileResults beyond = parse("&lt;dir&gt; <a href=?q=one class><b>n</b>", {1000});
    // The search from there finds nothing, so the cut begins at the second byte.
    EXPECT_EQ(beyond.rows[0].path, "<a href=?q=one");
}

TEST(FileResults, LongLinkListLosesItsOldestEntries)
{
    const FileResults results = parse("&lt;dir&gt; " + repeated("<a", 20000) + " q=x class><b>n</b>", {77});
    EXPECT_EQ(results.linkPositions.size(), 10000u);
    EXPECT_EQ(results.linkPositions.back(), 2 * 20000);
    EXPECT_EQ(results.rows[0].path, "x");
}

TEST(FileResults, PageCutAtAnyByteGivesAtMostAPageOrAFault)
{
    const std::string page = dataFile("file_results.html");
    for (std::size_t length = 1; length < page.size(); ++length) {
        const FileResults results = parse(std::string_view(page).substr(0, length));
        ASSERT_LE(results.rows.size(), 20u) << length;
        ASSERT_EQ(results.sliderAvailable.has_value(), !results.fault) << length;
    }
}

TEST(FileResults, EntryWithoutASchemeReadsTheFirstAddressOfThePage)
{
    // No colon follows, so the search for "=" starts at the beginning of the page, and the next rows restart there.
    const FileResults results = parse("<p id=top class=a>t</form>" + fileEntry("a.zip") + "<b> 7 <");
    ASSERT_GE(results.rows.size(), 2u);
    EXPECT_EQ(results.rows[1].path, "top");
    EXPECT_EQ(results.rows[1].size, "7");
    EXPECT_EQ(results.rows[1].name, "t");
}

TEST(FileResults, NulAndHighBytesPassThrough)
{
    const std::string name("n\0l\xff.zip", 8);
    const FileResults results = parse("</form>" + fileEntry(name));
    EXPECT_EQ(results.rows[0].name, name);
    EXPECT_EQ(results.rows[0].path, "ftp://h.example/" + name);
}

TEST(FileResults, TextsThatAllReachToTheSameEndRunOutOfMemory)
{
    const std::string page = "</form>:=" + std::string(textAllowance() / 8, 'x') + " class>n<i><b> 1<";
    const FileResults results = parse(page);
    EXPECT_EQ(results.fault, RuntimeError::OutOfMemory);
    EXPECT_EQ(results.rows.size(), 7u); // not 8, because names and sizes need memory, too
    EXPECT_FALSE(results.sliderAvailable);
}

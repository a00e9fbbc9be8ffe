#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/cutting.h"
#include "common/memory.h"
#include "search/download/results.h"
#include "tests/core/page_samples.h"
#include "tests/support/test_data.h"

using namespace quarrynet;
using namespace quarrynet::samples;

namespace {

// The rows of the plain procedure, which repeats every search for every row.
struct PlainRows
{
    std::vector<std::string> fields; // six per row, the link last

    PlainRows(std::string_view page, std::size_t count)
    {
        std::string name;
        std::string link;
        Position p = findMarker(page, "main loop", 1);
        for (std::size_t i = 0; i < count; ++i) {
            std::string description, systems, size, license;
            const auto take = [page](std::string& field, Position from, Position to) {
                if (const Result<std::string_view> text = cut(page, from, to - from))
                    field = *text;
            };
            p = p + 1;
            const Position s = findMarker(page, "<b>", p);
            const Position t = findMarker(page, "</b>", s);
            take(name, s + 3, t);
            Position c = findMarker(page, "class", t);
            const Result<std::string_view> near = cut(page, c, 25);
            if (near && near->find("pick") != std::string_view::npos)
                c = findMarker(page, "class", c + 10);
            const Position g = findMarker(page, ">", c);
            const Position h = findMarker(page, "<", g);
            take(description, g + 1, h);
            const Position o = findMarker(page, ">", findMarker(page, "OS:", h)) + 1;
            const Position q = findMarker(page, " <", o);
            take(systems, o, q);
            const Position r = findMarker(page, "</b>", q) + 4;
            const Position u = findMarker(page, "<", r);
            take(size, r, u);
            const Position r2 = findMarker(page, "</b>", u) + 4;
            const Position u2 = findMarker(page, "<", r2);
            take(license, r2, u2);
            const Position k = findMarker(page, "/redir?", u2);
            const Position m = findMarker(page, ">", k) - 1;
            take(link, k, m);
            p = m + 1;
            fields.insert(fields.end(), {name, description, systems, size, license, link});
        }
    }
};

DownloadResults parse(std::string_view page)
{
    return parseDownloadResults(ExactBytes(page));
}

std::size_t rowsFor(std::string_view range)
{
    return parse(downloadHead("9", range) + repeated(downloadEntry("x"), 40)).rows.size();
}

// The shortest valid entry: it consists of markers only.
constexpr std::string_view kShortestEntry = "<b></b>class><OS:> </b></b></redir?>";

} // namespace

TEST(DownloadResults, PageGivesItsRowsAndLinks)
{
    const DownloadResults results = parse(dataFile("download_results.html"));
    EXPECT_FALSE(results.nothingFound);
    EXPECT_EQ(results.countCaption, "63");
    ASSERT_EQ(results.rows.size(), 12u);
    ASSERT_EQ(results.links.size(), 12u);
    EXPECT_EQ(results.rows[0].name, "Sour lemon 26.0");
    EXPECT_EQ(results.rows[0].description, "Sorts lemon by size, edition 26.");
    EXPECT_EQ(results.rows[0].systems, "Windows 98, Linux");
    EXPECT_EQ(results.rows[0].size, "26.6MB");
    EXPECT_EQ(results.rows[0].license, "Shareware");
    EXPECT_EQ(results.links[0], "/redir?pid=26&destUrl=http%3A%2F%2Ffiles26.example%2Flemon.zip");
    EXPECT_EQ(results.rows[11].name, "Dried fig 37.0");
    EXPECT_EQ(results.links[11], "/redir?pid=37&destUrl=http%3A%2F%2Ffiles37.example%2Ffig.zip");
}

TEST(DownloadResults, PickedEntryTakesItsDescriptionFromTheNextClass)
{
    const DownloadResults results = parse(dataFile("download_results.html"));
    EXPECT_EQ(results.rows[2].description, "Sorts date by size, edition 28.");
}

TEST(DownloadResults, PickBeyondTwentyFiveBytesDoesNotCount)
{
    const auto description = [](std::string_view filler) {
        return parse(downloadHead("1", "1 - 1") + "<b>n</b><i class=" + std::string(filler) +
                     "pick>first</i><i class=b>second</i>OS:>o </b>s</b>l<a href=\"/redir?\">")
            .rows[0]
            .description;
    };
    EXPECT_EQ(description(std::string(15, 'x')), "second");
    EXPECT_EQ(description(std::string(16, 'x')), "first");
}

TEST(DownloadResults, EmptyAndOtherPagesAreNothingFound)
{
    for (const std::string_view page : {"", "<html></html>", "Main Loop", "main  loop"}) {
        const DownloadResults results = parse(page);
        EXPECT_TRUE(results.nothingFound) << page;
        EXPECT_FALSE(results.countCaption);
        EXPECT_FALSE(results.paging.pageTotal);
        EXPECT_TRUE(results.rows.empty());
    }
}

TEST(DownloadResults, CountsGiveTheirPages)
{
    const auto paging = [](std::string_view count) { return parse(downloadHead(count, "1 - 1")).paging; };
    EXPECT_FALSE(paging("25").pageTotal);
    EXPECT_FALSE(paging("25").enableSlider);
    EXPECT_EQ(paging("26").pageTotal, "1");
    EXPECT_EQ(paging("26").sliderMaximum, 1);
    EXPECT_TRUE(paging("26").enableSlider);
    EXPECT_EQ(paging("63").pageTotal, "3");
    EXPECT_EQ(paging("63").sliderMaximum, 3);
    EXPECT_EQ(paging("224").pageTotal, "9");
    EXPECT_EQ(paging("224").sliderMaximum, 9);
    EXPECT_EQ(paging("225").pageTotal, "13");
    EXPECT_FALSE(paging("225").sliderMaximum);
    EXPECT_TRUE(paging("300").enableSlider);
    EXPECT_EQ(paging("300").pageTotal, "13");
    EXPECT_EQ(paging(std::string(400, '9')).pageTotal, "13");
}

TEST(DownloadResults, CountThatIsNoNumberIsShownAndChangesNoPaging)
{
    for (const std::string_view count : {"", "many", "1,000", "26 <i>"}) {
        const DownloadResults results = parse(downloadHead(count, "1 - 1"));
        EXPECT_EQ(results.countCaption, count);
        EXPECT_FALSE(results.paging.pageTotal) << count;
    }
}

TEST(DownloadResults, MissingCountIsShownEmpty)
{
    EXPECT_EQ(parse("main loop").countCaption, "");
    EXPECT_EQ(parse("main loop Found: <b>12").countCaption, "");
}

TEST(DownloadResults, RangeDecidesTheNumberOfRows)
{
    EXPECT_EQ(rowsFor("1 - 25"), 25u);
    EXPECT_EQ(rowsFor("26 - 37"), 12u);
    EXPECT_EQ(rowsFor("7 - 7"), 1u);
    EXPECT_EQ(rowsFor("1-3"), 3u);
    EXPECT_EQ(rowsFor("1 - 2.9"), 2u);
}

TEST(DownloadResults, RangeThatRunsBackwardsGivesNoRow)
{
    EXPECT_EQ(rowsFor("26 - 25"), 0u);
    EXPECT_EQ(rowsFor("26 - 1"), 0u);
    EXPECT_EQ(rowsFor("1 - -2000000000"), 0u);
}

TEST(DownloadResults, RangeThatIsNoNumberCountsAsZero)
{
    EXPECT_EQ(rowsFor("1 - last"), 0u);
    EXPECT_EQ(rowsFor("first - 4"), 4u);
    EXPECT_EQ(rowsFor(std::string(400, '9') + " - " + std::string(400, '9')), 0u);
    EXPECT_EQ(parse("main loop Found: <b>3</b>").rows.size(), 0u);
}

TEST(DownloadResults, SurplusRowsTakeTheirTextsFromFurtherUp)
{
    const DownloadResults results =
        parse(downloadHead("9", "1 - 7") + downloadEntry("one", "/redir?1") + downloadEntry("two", "/redir?2"));
    ASSERT_EQ(results.rows.size(), 7u);
    ASSERT_EQ(results.links.size(), 7u);
    EXPECT_EQ(results.rows[1].name, "two");
    // No "<b>" follows the last entry. The name then ends at the first "</b>" of the page, which belongs to the count,
    // and the rest of the row comes from the first entry.
    EXPECT_EQ(results.rows[2].name, "und: <b>9");
    EXPECT_EQ(results.rows[2].description, "Text of one");
    EXPECT_EQ(results.links[2], "/redir?1");
    EXPECT_EQ(results.rows[3].name, "two");
    EXPECT_EQ(results.links[3], "/redir?2");
    EXPECT_EQ(results.rows[4].name, results.rows[2].name);
    EXPECT_EQ(results.rows[6].name, results.rows[2].name);
    EXPECT_EQ(results.links[6], "/redir?1");
}

TEST(DownloadResults, RepeatedRowsAreThoseThatReadingOnWouldGive)
{
    // Beyond the end of the page the rows repeat with a period of three.
    const std::string entries = downloadEntry("one", "/redir?1") + "<b>broken</b>" + downloadEntry("two", "/redir?2") +
                                downloadEntry("three", "/redir?3");
    const DownloadResults all = parse(downloadHead("9", "1 - 60") + entries);
    ASSERT_EQ(all.rows.size(), 60u);
    for (std::size_t i = 30; i + 3 < 60; ++i) {
        EXPECT_EQ(all.rows[i].name, all.rows[i + 3].name) << i;
        EXPECT_EQ(all.links[i], all.links[i + 3]) << i;
    }
}

TEST(DownloadResults, BrokenPagesGiveTheRowsOfThePlainProcedure)
{
    std::mt19937 random(7);
    const std::vector<std::string> pieces = {
        "<b>", "</b>", "class", "pick", ">",       "<",           "OS:",
        " <",  "a",    "main",  "bc",   "/redir?", "/redir?9\">", downloadEntry("x")};
    for (int round = 0; round < 3000; ++round) {
        std::string page = round % 3 == 0 ? "</b>" : "";
        page += round % 2 == 0 ? downloadHead("9", "1 - 90") : "Found: <b></b><b>1 - 90<";
        page += "main loop";
        for (std::size_t n = random() % 30; n > 0; --n)
            page += pieces[random() % pieces.size()];
        const DownloadResults results = parse(page);
        const PlainRows plain(page, 90);
        ASSERT_EQ(results.rows.size(), 90u) << page;
        for (std::size_t i = 0; i < 90; ++i) {
            const DownloadRow& row = results.rows[i];
            const std::vector<std::string> fields{row.name, row.description, row.systems,
                                                  row.size, row.license,     results.links[i]};
            const auto from = plain.fields.begin() + static_cast<std::ptrdiff_t>(6 * i);
            ASSERT_EQ(fields, std::vector<std::string>(from, from + 6)) << "row " << i << " of " << page;
        }
    }
}

TEST(DownloadResults, NameThatCannotBeCutKeepsTheOneBefore)
{
    const DownloadResults results = parse(downloadHead("9", "1 - 3") + downloadEntry("one", "/redir?1") +
                                          downloadEntry("two", "/redir?2") + "<b>three");
    ASSERT_EQ(results.rows.size(), 3u);
    EXPECT_EQ(results.rows[0].name, "one");
    EXPECT_EQ(results.rows[1].name, "two");
    EXPECT_EQ(results.rows[2].name, "two");
    // The row keeps only the name: because "</b>" is missing, the rest comes from the first entry.
    EXPECT_EQ(results.rows[2].description, "Text of one");
    EXPECT_EQ(results.links[2], "/redir?1");
}

TEST(DownloadResults, LinkThatCannotBeCutKeepsTheOneBefore)
{
    std::string last = downloadEntry("three", "/redir?3");
    last.erase(last.find("\">get"));
    const DownloadResults results =
        parse(downloadHead("9", "1 - 3") + downloadEntry("one", "/redir?1") + downloadEntry("two", "/redir?2") + last);
    ASSERT_EQ(results.rows.size(), 3u);
    EXPECT_EQ(results.rows[2].name, "three");
    EXPECT_EQ(results.rows[2].license, "Free");
    EXPECT_EQ(results.links, std::vector<std::string>({"/redir?1", "/redir?2", "/redir?2"}));
}

TEST(DownloadResults, LinkThatCannotBeCutIsEmptyWithNoneBefore)
{
    const DownloadResults results = parse("main loop Found: <b>9</b> <b>1 - 3</b><b>name</b>");
    EXPECT_EQ(results.rows.size(), 3u);
    EXPECT_EQ(results.links, std::vector<std::string>(3));
}

TEST(DownloadResults, EachMissingMarkerLeavesRowsAndLinksEqual)
{
    const std::string page = downloadHead("63", "1 - 5") + repeated(downloadEntry("x"), 5);
    for (const std::string_view marker : {"<b>", "</b>", "class", "OS:", " <", "/redir?", ">", "<", "-", "Found:"}) {
        std::string broken = page;
        for (std::size_t at = broken.find(marker); at != std::string::npos; at = broken.find(marker))
            broken.erase(at, marker.size());
        const DownloadResults results = parse(broken);
        EXPECT_EQ(results.rows.size(), results.links.size()) << marker;
        EXPECT_LE(results.rows.size(), 63u) << marker;
    }
}

TEST(DownloadResults, MissingSystemsEmptyNoOtherColumn)
{
    const DownloadResults results =
        parse(downloadHead("1", "1 - 1") + "<b>n</b><i class=d>text</i><b>Size:</b>1MB<b>License:</b>Free"
                                           "<a href=\"/redir?7\">");
    ASSERT_EQ(results.rows.size(), 1u);
    EXPECT_EQ(results.rows[0].name, "n");
    EXPECT_EQ(results.rows[0].description, "text");
}

TEST(DownloadResults, PageCutAtAnyByteLeavesRowsAndLinksEqual)
{
    const std::string page = dataFile("download_results.html");
    for (std::size_t length = 1; length < page.size(); ++length) {
        const DownloadResults results = parse(std::string_view(page).substr(0, length));
        ASSERT_EQ(results.rows.size(), results.links.size()) << length;
        ASSERT_TRUE(results.rows.size() == 12 || results.rows.empty()) << length;
    }
}

TEST(DownloadResults, NulAndHighBytesPassThrough)
{
    const std::string name("n\0l \xff\xe4", 6);
    const DownloadResults results = parse(downloadHead("1", "1 - 1") + downloadEntry(name));
    EXPECT_EQ(results.rows[0].name, name);
    EXPECT_EQ(results.rows[0].description, "Text of " + name);
}

TEST(DownloadResults, TenThousandRowsAreAllRead)
{
    const DownloadResults results = parse(downloadHead("10000", "1 - 10000") + repeated(downloadEntry("x"), 10000));
    EXPECT_EQ(results.rows.size(), 10000u);
    EXPECT_EQ(results.rows.back().name, "x");
}

TEST(DownloadResults, TenThousandRowsOfASmallPageAreAllGiven)
{
    const DownloadResults results = parse(downloadHead("10000", "1 - 10000") + downloadEntry("x"));
    EXPECT_EQ(results.rows.size(), 10000u);
    EXPECT_EQ(results.links.back(), "/redir?id=1");
}

TEST(DownloadResults, TwoThousandMillionRowsAreBoundedByTheEntriesOfThePage)
{
    for (const std::size_t entries : {0, 1, 50000}) {
        const DownloadResults results = parse(downloadHead("1", "1 - 2000000000") + repeated(kShortestEntry, entries));
        EXPECT_GE(results.rows.size(), entries + 10000);
        EXPECT_LE(results.rows.size(), entries + 10001);
        EXPECT_EQ(results.rows.size(), results.links.size());
    }
}

TEST(DownloadResults, HugeTextsEndTheRows)
{
    const DownloadResults results =
        parse(downloadHead("1", "1 - 2000000000") + downloadEntry(std::string(textAllowance() / 16, 'x')));
    EXPECT_LT(results.rows.size(), 20u);
    EXPECT_EQ(results.rows.size(), results.links.size());
}

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "search/download/redirect.h"
#include "search/download/results.h"
#include "search/file/results.h"
#include "search/image/results.h"
#include "search/web/results.h"
#include "tests/core/page_markers.h"
#include "tests/core/page_samples.h"
#include "tests/cost/step_counter.h"

/// Compares the cost of the result parsers for pages of single and double length.
using namespace quarrynet;
using namespace quarrynet::cost;
using namespace quarrynet::samples;

namespace {

std::size_t sizeOf(const std::vector<std::string>& texts)
{
    std::size_t size = 0;
    for (const std::string& text : texts)
        size += text.size();
    return size;
}

std::size_t parseWeb(std::string_view page)
{
    const WebLists lists = parseWebResults(page).lists;
    return sizeOf(lists.addresses) + sizeOf(lists.titles) + sizeOf(lists.cleanedTitles);
}

std::size_t parseImage(std::string_view page)
{
    const ImageResults results = parseImageResults(page, "engine.example");
    return sizeOf(results.lists.addresses) + sizeOf(results.lists.thumbnails) + results.gallery.value_or("").size();
}

std::size_t parseDownload(std::string_view page)
{
    const DownloadResults results = parseDownloadResults(page);
    std::size_t size = sizeOf(results.links);
    for (const DownloadRow& row : results.rows) {
        size += row.name.size() + row.description.size() + row.systems.size() + row.size.size() + row.license.size();
    }
    return size;
}

std::size_t parseFile(std::string_view page)
{
    std::size_t size = 0;
    for (const FileRow& row : parseFileResults(page).rows)
        size += row.name.size() + row.path.size() + row.size.size();
    return size;
}

std::size_t parseLink(std::string_view page)
{
    const Result<std::optional<std::string>> address = downloadAddress(page);
    return address && *address ? (*address)->size() : 0;
}

struct Parser
{
    std::string name;
    std::size_t (*parse)(std::string_view page);  ///< returns the bytes of all texts that it makes
    std::function<std::string(std::size_t)> head; ///< returns the beginning of a well-formed page of this length
    std::string entry;                            ///< the entry that the page repeats
};

const std::vector<Parser>& parsers()
{
    const auto results = [](std::size_t) { return heading("1,000"); };
    // The heading announces 1.5 times as many rows as the page has.
    const auto announced = [](std::size_t length) {
        return downloadHead("1000", "1 - " + std::to_string(length / (2 * downloadEntry("Program").size() / 3)));
    };
    static const std::vector<Parser> all = {
        {"web", parseWeb, results, webEntry("http://a.example/", "A <b>title</b>")},
        {"image", parseImage, results, thumbnail("hostA/pics/a.jpg")},
        {"download", parseDownload, [](std::size_t) { return downloadHead("1000", "1 - 25"); },
         downloadEntry("Program")},
        {"download of many rows", parseDownload, announced, downloadEntry("Program")},
        {"file", parseFile, [](std::size_t) { return std::string("<form></form>"); },
         fileEntry("a.zip") + directoryEntry("dir")},
        {"link", parseLink, [](std::size_t) { return std::string("<script>newlocation = \""); }, "ftp%3A%2F%2Fa/"},
    };
    return all;
}

/// Expects cost in proportion to the size of the page and of the texts cut out of it. In a broken page many rows can
/// reach to the same distant marker, so that their texts grow quadratically up to PageCutter's allowance.
void expectProportionalPage(const Parser& parser, const std::string& what,
                            const std::function<std::string(std::size_t)>& make, std::size_t length = kLength)
{
    expectProportional(
        parser.name + ", " + what,
        [&](std::size_t size) {
            const std::string page = parser.head(size) + make(size);
            std::size_t texts = 0;
            const std::uint64_t steps = stepsOf([&] { texts = parser.parse(page); });
            return Cost(steps, page.size() + texts);
        },
        length);
}

constexpr std::size_t kShort = kLength / 4; // for tests of many pages

/// Returns the parser's entry with the first `marker` removed, or the empty text when it has none.
std::string entryWithout(const Parser& parser, std::string_view marker)
{
    std::string entry = parser.entry;
    const std::size_t at = entry.find(marker);
    return at == std::string::npos ? std::string() : entry.erase(at, marker.size());
}

} // namespace

TEST(ParserCost, HonestPages)
{
    for (const Parser& parser : parsers()) {
        expectProportionalPage(parser, "entries", [&](std::size_t length) { return filled(parser.entry, length); });
        expectProportionalPage(parser, "entries, and an end", [&](std::size_t length) {
            return filled(parser.entry, length) + "\";</script></body></html>";
        });
    }
}

TEST(ParserCost, OneHugeEntry)
{
    for (const Parser& parser : parsers()) {
        if (parser.name == "download of many rows")
            continue; // every row would have the huge text
        for (std::size_t at = 1; at <= parser.entry.size(); at += 3) {
            expectProportionalPage(
                parser, "an entry with a long text at " + std::to_string(at),
                [&](std::size_t length) {
                    return parser.entry.substr(0, at) + std::string(length, 'x') + parser.entry.substr(at) +
                           parser.entry;
                },
                kShort);
        }
    }
}

TEST(ParserCost, EntriesWithoutOneOfTheirMarkers)
{
    for (const Parser& parser : parsers()) {
        for (const std::string_view marker : kMarkers) {
            const std::string entry = entryWithout(parser, marker);
            if (entry.empty())
                continue;
            expectProportionalPage(
                parser, "entries without " + std::string(marker),
                [&](std::size_t length) { return filled(entry, length); }, kShort);
        }
    }
}

TEST(ParserCost, OneMarkerAgainAndAgain)
{
    for (const Parser& parser : parsers()) {
        for (const std::string_view marker : kMarkers) {
            expectProportionalPage(
                parser, "only " + std::string(marker),
                [&](std::size_t length) { return parser.entry + filled(marker, length); }, kShort);
        }
    }
}

TEST(ParserCost, OneMarkerAgainAndAgainAndThenAnother)
{
    for (const Parser& parser : parsers()) {
        for (const std::string_view first : kMarkers) {
            for (const std::string_view second : kMarkers) {
                expectProportionalPage(
                    parser, "only " + std::string(first) + " and then " + std::string(second),
                    [&](std::size_t length) {
                        return parser.entry + filled(first, length / 2) + filled(second, length / 2);
                    },
                    kShort / 4);
            }
        }
    }
}

TEST(ParserCost, EntriesThatShareOneDistantEnd)
{
    for (const Parser& parser : parsers()) {
        for (const std::string_view marker : kMarkers) {
            const std::string entry = entryWithout(parser, marker);
            if (entry.empty())
                continue;
            expectProportionalPage(
                parser, "entries with one " + std::string(marker),
                [&](std::size_t length) { return filled(entry, length) + std::string(marker); }, kShort / 2);
        }
    }
}

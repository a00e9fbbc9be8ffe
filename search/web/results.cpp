#include "search/web/results.h"

#include <utility>

#include "common/MarkerFinder.h"
#include "common/PageCutter.h"
#include "common/text_utilities.h"

namespace quarrynet {

namespace {

constexpr std::string_view kResult = "<p><a";
constexpr Position kToAddress = 11; // skips the marker and " href="
constexpr std::int32_t kPerPage = 30;

std::vector<Position> findResults(std::string_view page)
{
    std::vector<Position> positions;
    for (Position p = findMarker(page, kResult, 1); p != 0; p = findMarker(page, kResult, p + 1))
        positions.push_back(p + kToAddress);
    return positions;
}

std::optional<RuntimeError> cutResults(std::string_view page, const std::vector<Position>& positions, WebLists& lists)
{
    PageCutter cutter(page);
    MarkerFinder tagEnd(page, ">");
    MarkerFinder scheme(page, "http");
    MarkerFinder targetEnd(page, "&e=");
    MarkerFinder linkEnd(page, "</a>");

    for (const Position start : positions) {
        const Position end = tagEnd.find(start);
        const Result<std::string_view> raw = cut(page, start, end - start);
        if (!raw)
            return raw.error();
        Position addressStart = start;
        Position addressEnd = end;
        if (!raw->starts_with("http")) { // the engine's redirect, which contains the target
            addressStart = scheme.find(start);
            addressEnd = targetEnd.find(start);
        }
        const Result<std::string> address = cutter.cut(addressStart, addressEnd - addressStart);
        if (!address)
            return address.error();
        lists.addresses.push_back(*address);

        const Result<std::string> title = cutter.cut(end + 1, linkEnd.find(end) - (end + 1));
        if (!title)
            return title.error();
        lists.titles.push_back(*title);
    }
    return {};
}

} // namespace

WebResults parseWebResults(std::string_view page, WebLists lists)
{
    WebResults results;
    results.lists = std::move(lists);
    results.positions = findResults(page);
    if (results.positions.empty()) {
        results.nothingFound = true;
        results.countCaption = "0";
        results.timeCaption = "0.0 Second/s";
        return results;
    }

    results.fault = cutResults(page, results.positions, results.lists);
    if (results.fault)
        return results;
    for (const std::string& title : results.lists.titles)
        results.lists.cleanedTitles.push_back(FindReplace(FindReplace(title, "<b>", ""), "</b>", ""));
    results.rows = results.lists.addresses.size();

    ResultHeading heading = cutResultHeading(page);
    results.countCaption = std::move(heading.countCaption);
    results.timeCaption = std::move(heading.timeCaption);
    results.fault = heading.fault;
    if (results.fault)
        return results;

    const Result<PageTotal> total = countPages(*results.countCaption, kPerPage);
    if (!total)
        results.fault = total.error();
    else if (total->rule == PageTotal::Rule::LessThanOnePage)
        results.paging.pageTotal = "1"; // the slider stays unchanged
    else
        results.paging = offerPages(total->pages);
    return results;
}

} // namespace quarrynet

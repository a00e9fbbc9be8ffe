#include "search/image/results.h"

#include <utility>

#include "common/MarkerFinder.h"
#include "common/PageCutter.h"
#include "search/image/gallery.h"

namespace quarrynet {

namespace {

constexpr std::string_view kThumbnail = "src=/images?q=tbn";
constexpr Position kToPath = 4; // skips "src="
constexpr int kPerPage = 10;

/// Returns false when the page has no thumbnail.
bool findThumbnails(std::string_view page, std::vector<Position>& positions)
{
    Position p = findMarker(page, kThumbnail, 1);
    if (p == 0)
        return false;
    for (int i = 1; p != 0 && i <= kPerPage; ++i, p = findMarker(page, kThumbnail, p + 1))
        positions.push_back(p);
    return true;
}

std::optional<RuntimeError> cutThumbnails(std::string_view page, std::string_view host, ImageLists& lists)
{
    PageCutter cutter(page);
    MarkerFinder colon(page, ":");
    MarkerFinder blank(page, " ");

    for (const Position p : lists.positions) {
        const Position first = colon.find(p);
        const Position second = colon.find(first + 1);
        const Position end = blank.find(second);
        const Result<std::string> address = cutter.cut(second + 1, end - second - 1);
        if (!address)
            return address.error();
        lists.addresses.push_back(*address);

        const Result<std::string> path = cutter.cut(p + kToPath, end - p - kToPath);
        if (!path)
            return path.error();
        std::string thumbnail = "http://";
        thumbnail.append(host).append(*path);
        lists.thumbnails.push_back(std::move(thumbnail));
    }
    return {};
}

} // namespace

ImageResults parseImageResults(std::string_view page, std::string_view host, ImageLists lists)
{
    ImageResults results;
    results.lists = std::move(lists);
    if (!findThumbnails(page, results.lists.positions)) {
        results.nothingFound = true;
        return results;
    }
    results.fault = cutThumbnails(page, host, results.lists);
    if (results.fault)
        return results;

    ResultHeading heading = cutResultHeading(page);
    results.countCaption = std::move(heading.countCaption);
    results.timeCaption = std::move(heading.timeCaption);
    results.fault = heading.fault;
    if (results.fault)
        return results;
    results.gallery = galleryPage(results.lists.addresses, results.lists.thumbnails);

    const Result<PageTotal> total = countPages(*results.countCaption, kPerPage);
    if (!total) {
        results.fault = total.error();
        return results;
    }
    results.paging = offerPages(total->pages);
    if (total->rule == PageTotal::Rule::CountItself)
        results.paging.pageTotal = total->plainCount;
    return results;
}

} // namespace quarrynet

#include "search/image/results.h"

#include <algorithm>
#include <utility>

#include "common/MarkerFinder.h"
#include "common/PageCutter.h"
#include "search/image/gallery.h"

namespace quarrynet {

namespace {

constexpr std::string_view kThumbnail = "src=/images?q=tbn";
constexpr Position kToPath = 4; // skips "src="
constexpr int kPerPage = 10;
constexpr std::size_t kMostStatement = 4096; // bytes after a thumbnail that may state its picture's size

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

// Removes the digits that `text` begins with and returns them if they are a length in pixels, otherwise an empty text.
std::string_view takeLength(std::string_view& text)
{
    constexpr std::size_t kMostDigits = 5;
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::string_view length = text.substr(0, digits);
    text.remove_prefix(digits);
    return digits == 0 || digits > kMostDigits || length[0] == '0' ? std::string_view() : length;
}

bool skip(std::string_view& text, std::string_view prefix)
{
    const bool found = text.substr(0, prefix.size()) == prefix;
    if (found)
        text.remove_prefix(prefix.size());
    return found;
}

void skipBlanks(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
}

// Returns the part of `page` between the thumbnail whose path ends at `end` and the next one.
std::string_view textAfter(std::string_view page, Position end)
{
    const std::string_view rest =
        page.substr(std::min(static_cast<std::size_t>(std::max(end, Position{0})), page.size()));
    return rest.substr(0, rest.substr(0, kMostStatement).find(kThumbnail));
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
        lists.sizes.push_back(statedSize(textAfter(page, end)));
    }
    return {};
}

} // namespace

std::string statedSize(std::string_view text)
{
    text = text.substr(0, kMostStatement);
    for (std::size_t tag = text.find('>'); tag != std::string_view::npos; tag = text.find('>', tag + 1)) {
        std::string_view rest = text.substr(tag + 1);
        skipBlanks(rest);
        const std::string_view width = takeLength(rest);
        skipBlanks(rest);
        const bool times = skip(rest, "x") || skip(rest, "\xC3\x97") || skip(rest, "&times;");
        skipBlanks(rest);
        const std::string_view height = takeLength(rest);
        const bool ends = rest.empty() || std::string_view(" \t\r\n<,;-").find(rest[0]) != std::string_view::npos;
        if (!width.empty() && times && !height.empty() && ends)
            return std::string(width).append(" x ").append(height);
    }
    return {};
}

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

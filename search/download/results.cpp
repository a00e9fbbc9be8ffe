#include "search/download/results.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "common/MarkerFinder.h"
#include "common/PageCutter.h"
#include "common/cutting.h"
#include "common/numbers.h"

namespace quarrynet {

namespace {

constexpr double kPerPage = 25;

// Maximum number of rows after a page has run out of entries, however many it announces. Such rows only repeat earlier
// texts (see `RepetitionWatch`), so the omitted ones would show nothing new.
constexpr std::size_t kSurplusRows = 10'000;

/// Reads the count's text. Returns where it ends.
Position readCount(std::string_view page, DownloadResults& results)
{
    const Position found = findMarker(page, "Found:", 1);
    const Position begin = findMarker(page, "<b>", found);
    const Position end = findMarker(page, "</b>", begin);
    const Result<std::string_view> count = cut(page, begin + 3, end - begin - 3);
    results.countCaption = count ? std::string(*count) : std::string();
    return end;
}

PagingOffer offerDownloadPages(std::string_view countText)
{
    PagingOffer offer;
    const Result<double> count = strictNumber(countText);
    if (!count || *count <= kPerPage)
        return offer;
    const double pages = *count / kPerPage;
    offer.enableSlider = true;
    offer.pageTotal = "13"; // the directory never gives more pages, however many programs it found
    if (pages < 9) {
        const Result<std::int32_t> rounded = roundToInt32(pages); // rounded, so a partial last page may be out of reach
        offer.sliderMaximum = *rounded;
        offer.pageTotal = std::to_string(*rounded);
    }
    return offer;
}

/// Returns the number of rows that the range text after position `from` announces, or 0 if it is not a range.
double announcedRows(std::string_view page, Position from)
{
    const Position dash = findMarker(page, "-", from);
    const Position firstBegin = findMarker(page, "<b>", from) + 3;
    double offset = 0;
    if (const Result<std::string_view> text = cut(page, firstBegin, dash - firstBegin)) {
        if (const Result<double> first = strictNumber(*text))
            offset = *first - 1;
    }
    const Position lastBegin = dash + 1;
    const Position lastEnd = findMarker(page, "<", lastBegin);
    if (const Result<std::string_view> text = cut(page, lastBegin, lastEnd - lastBegin)) {
        if (const Result<double> last = strictNumber(*text))
            return *last - offset;
    }
    return 0;
}

/// Returns the number of whole rows in `announced`, which may also be negative, infinite or NaN.
std::size_t wholeRows(double announced)
{
    if (!(announced >= 1)) // also excludes NaN, such as infinity minus infinity
        return 0;
    return static_cast<std::size_t>(std::min(announced, 1e9));
}

/// Reads one row after the other. A search that finds nothing gives position 0, and the next search then begins at the
/// top of the page. So rows after the last entry get their texts from further up.
class RowReader
{
public:
    explicit RowReader(std::string_view page)
        : page_(page)
        , cutter_(page)
        , bold_(page, "<b>")
        , boldEnd_(page, "</b>")
        , class_(page, "class")
        , tagBegin_(page, "<")
        , tagEnd_(page, ">")
        , systems_(page, "OS:")
        , blankTag_(page, " <")
        , link_(page, "/redir?")
    {}

    /// Appends the row after position `p` and its link. Returns the position after which the next row begins.
    Position read(Position p, DownloadResults& results)
    {
        DownloadRow row;
        const Position name = bold_.find(p + 1);
        const Position nameEnd = boldEnd_.find(name);
        keep(name_, name + 3, nameEnd);
        row.name = name_;
        if (!cutter_.charge(name_.size()))
            exhausted_ = true;

        Position marker = class_.find(nameEnd);
        const Result<std::string_view> attribute = cut(page_, marker, 25);
        if (attribute && attribute->find("pick") != std::string_view::npos)
            marker = class_.find(marker + 10);
        const Position descriptionTag = tagEnd_.find(marker);
        const Position descriptionEnd = tagBegin_.find(descriptionTag);
        keep(row.description, descriptionTag + 1, descriptionEnd);

        const Position systems = tagEnd_.find(systems_.find(descriptionEnd)) + 1;
        const Position systemsEnd = blankTag_.find(systems);
        keep(row.systems, systems, systemsEnd);

        const Position size = boldEnd_.find(systemsEnd) + 4;
        const Position sizeEnd = tagBegin_.find(size);
        keep(row.size, size, sizeEnd);

        const Position license = boldEnd_.find(sizeEnd) + 4;
        const Position licenseEnd = tagBegin_.find(license);
        keep(row.license, license, licenseEnd);

        const Position link = link_.find(licenseEnd);
        const Position linkEnd = tagEnd_.find(link) - 1; // the closing quote of the attribute
        keep(lastLink_, link, linkEnd);
        if (!cutter_.charge(lastLink_.size()))
            exhausted_ = true;

        results.rows.push_back(std::move(row));
        results.links.push_back(lastLink_);
        return linkEnd + 1;
    }

    /// Appends again the row and link that were appended `period` rows ago.
    void repeat(std::size_t period, DownloadResults& results)
    {
        const std::size_t i = results.rows.size() - period;
        DownloadRow row = results.rows[i];
        std::string link = results.links[i];
        exhausted_ = !cutter_.charge(row.name.size() + row.description.size() + row.systems.size() + row.size.size() +
                                     row.license.size() + link.size());
        results.rows.push_back(std::move(row));
        results.links.push_back(std::move(link));
    }

    /// Returns whether the texts of all rows have become far longer than the page.
    bool exhausted() const { return exhausted_; }

private:
    void keep(std::string& field, Position begin, Position end)
    {
        Result<std::string> text = cutter_.cut(begin, end - begin);
        if (text)
            field = *text;
        else if (text.error() == RuntimeError::OutOfMemory)
            exhausted_ = true;
    }

    std::string_view page_;
    PageCutter cutter_;
    MarkerFinder bold_, boldEnd_, class_, tagBegin_, tagEnd_, systems_, blankTag_, link_;
    std::string name_, lastLink_; // kept because the next row may fall back on them
    bool exhausted_ = false;
};

/// Detects when rows begin to repeat. Rows that find all their markers advance through the page, so its length bounds
/// their number. A row that ends at or before its start had a search that found nothing, and the rest of such a row
/// does not depend on its start. So there are only as many such end positions as a row has searches, and the page is
/// read from its top no more often than that. A row's end depends on its start alone, so a position that is reached
/// again starts the same rows again.
class RepetitionWatch
{
public:
    /// Records that row number `rows` will start after `next`, at or before the start of the previous row. Returns how
    /// many rows repeat from now on, or 0 if they do not. Only the second round counts: in the first, rows may still
    /// have used a name or link from before it.
    std::size_t repeatingRows(Position next, std::size_t rows)
    {
        const auto turn = std::find_if(turns_.begin(), turns_.end(), [&](const Turn& t) { return t.at == next; });
        if (turn == turns_.end()) {
            turns_.push_back({next, rows, 1});
            return 0;
        }
        const std::size_t period = rows - turn->rows;
        turn->rows = rows;
        return ++turn->times > 2 ? period : 0;
    }

private:
    struct Turn
    {
        Position at;
        std::size_t rows;
        int times;
    };
    std::vector<Turn> turns_;
};

} // namespace

DownloadResults parseDownloadResults(std::string_view page)
{
    DownloadResults results;
    const Position start = findMarker(page, "main loop", 1);
    if (start == 0) {
        results.nothingFound = true;
        return results;
    }
    const Position countEnd = readCount(page, results);
    results.paging = offerDownloadPages(*results.countCaption);

    std::size_t count = wholeRows(announcedRows(page, countEnd));
    RowReader reader(page);
    RepetitionWatch watch;
    Position p = start;
    bool pastEntries = false;
    std::size_t period = 0; // how many of the latest rows repeat from now on; 0 before
    while (results.rows.size() < count && !reader.exhausted()) {
        if (period != 0) {
            reader.repeat(period, results);
            continue;
        }
        const Position next = reader.read(p, results);
        if (next <= p) {
            if (!pastEntries)
                count = std::min(count, results.rows.size() + kSurplusRows);
            pastEntries = true;
            period = watch.repeatingRows(next, results.rows.size());
        }
        p = next;
    }
    return results;
}

} // namespace quarrynet

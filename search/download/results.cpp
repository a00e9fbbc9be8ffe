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

// Rows that a page gives beyond its entries, however many it announces. See `RepetitionWatch` for why a page runs out
// of entries at all: from there on rows only repeat texts that it has given, so the missing ones would show nothing
// new.
constexpr std::size_t kSurplusRows = 10'000;

/// The count's text and where it ends.
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
    offer.pageTotal = "13"; // the directory never gives more, however many it found
    if (pages < 9) {
        const Result<std::int32_t> rounded = roundToInt32(pages); // not up: a last, partial page may be out of reach
        offer.sliderMaximum = *rounded;
        offer.pageTotal = std::to_string(*rounded);
    }
    return offer;
}

/// The rows that the range text behind position `from` announces; 0 when it is no range.
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

/// The whole rows in `announced`, which may be anything a page can say.
std::size_t wholeRows(double announced)
{
    if (!(announced >= 1)) // also what is no number any more, such as infinity less infinity
        return 0;
    return static_cast<std::size_t>(std::min(announced, 1e9));
}

/// Reads one row after the other. A search that finds nothing gives position 0, and the next one then begins at the
/// top of the page: so rows beyond the last entry take their texts from further up.
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

    /// Adds the row behind position `p` and its link; gives the position behind which the next one begins.
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

    /// Adds the row and link once more that were added `period` rows ago.
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

    /// The texts of all rows have become far longer than the page.
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
    std::string name_, lastLink_; // these outlive a row: the next one falls back on them
    bool exhausted_ = false;
};

/// Tells when the rows begin to repeat. Rows that find all their markers move on through the page, so their number is
/// bounded by its length. A row that leaves off at or above where it began had a search that found nothing, and what
/// follows such a search does not depend on the row: there are only as many of these positions as a row has searches,
/// and the page is read from its top no more often than that. Where a row leaves off depends on where it began alone,
/// so a position reached again begins the same rows again.
class RepetitionWatch
{
public:
    /// Row number `rows` will begin behind `next`, at or above where the one before began. Gives how many rows now
    /// repeat, 0 while they do not. Only the second round counts: in the first, rows may still have fallen back on a
    /// name or link from before it.
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
    std::size_t period = 0; // how many of the latest rows make up all that follow, once they repeat
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

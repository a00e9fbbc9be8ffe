#include "search/file/results.h"

#include <cstddef>
#include <utility>

#include "common/MarkerFinder.h"
#include "common/PageCutter.h"

namespace quarrynet {

namespace {

constexpr std::size_t kPerPage = 20;

// Only the scratch list's last entry is ever read, so discarding the oldest ones changes no row.
constexpr std::size_t kMostLinkPositions = 10'000;

class RowReader
{
public:
    explicit RowReader(std::string_view page)
        : page_(page)
        , cutter_(page)
        , boldBlank_(page, "<b> ")
        , bold_(page, "<b>")
        , boldEnd_(page, "</b>")
        , tagBegin_(page, "<")
        , tagEnd_(page, ">")
        , colon_(page, ":")
        , equals_(page, "=")
        , class_(page, "class")
        , blank_(page, " ")
        , directory_(page, "&lt;dir&gt;")
    {}

    std::optional<RuntimeError> readFiles(FileResults& results)
    {
        Position pos = findMarker(page_, "/form", 1); // the rows follow the search form
        while (results.rows.size() < kPerPage) {
            const Position bold = boldBlank_.find(pos + 1);
            if (bold == 0)
                break;
            FileRow row;
            const Position size = bold + 3;
            const Position sizeEnd = tagBegin_.find(size);
            if (!keep(row.size, size, sizeEnd))
                return fault_;
            row.size = std::string(trimBlanks(row.size));

            // Goes back ten bytes from the colon of the address's scheme, over "a href=", so that the next "=" is that
            // one.
            const Position link = colon_.find(sizeEnd) - 10;
            const Position path = equals_.find(link) + 1;
            const Position pathEnd = class_.find(path) - 1; // excludes the blank before "class"
            if (!keep(row.path, path, pathEnd))
                return fault_;

            const Position name = tagEnd_.find(pathEnd) + 1;
            const Position nameEnd = tagBegin_.find(name);
            if (!keep(row.name, name, nameEnd))
                return fault_;
            results.rows.push_back(std::move(row));
            pos = nameEnd + 1;
        }
        return {};
    }

    std::optional<RuntimeError> readDirectories(FileResults& results)
    {
        Position pos = 0; // the search for directories begins at the top again
        while (results.rows.size() < kPerPage) {
            const Position marker = directory_.find(pos + 1);
            if (marker == 0)
                break;
            FileRow row;
            row.size = "<Dir>";
            const Position begin = blank_.find(marker);
            const Result<std::string_view> segment = cut(page_, begin, bold_.find(begin) - begin);
            if (!segment)
                return segment.error();
            if (!readAddress(*segment, results.linkPositions, row.path))
                return fault_;

            const Position name = bold_.find(begin) + 3;
            const Position nameEnd = boldEnd_.find(name);
            if (!keep(row.name, name, nameEnd))
                return fault_;
            results.rows.push_back(std::move(row));
            pos = nameEnd;
        }
        return {};
    }

private:
    /// Reads the directory's address from the last link in `segment`, the text between its marker and its name.
    bool readAddress(std::string_view segment, std::vector<Position>& links, std::string& address)
    {
        // The first link is skipped, so a segment with one link gets the last position of an earlier row.
        const Position first = findMarker(segment, "<a", 1);
        for (Position link = findMarker(segment, "<a", first + 1); link != 0;
             link = findMarker(segment, "<a", link + 1))
            links.push_back(link);
        if (links.size() > kMostLinkPositions)
            links.erase(links.begin(), links.end() - static_cast<std::ptrdiff_t>(kMostLinkPositions));
        if (links.empty())
            return true;

        const Position begin = findMarker(segment, "q=", links.back()) + 2;
        const Position end = findMarker(segment, "class", begin) - 1;
        const Result<std::string_view> text = cut(segment, begin, end - begin);
        if (!text)
            return fail(text.error());
        if (!cutter_.charge(text->size()))
            return fail(RuntimeError::OutOfMemory);
        address = std::string(*text);
        return true;
    }

    bool keep(std::string& field, Position begin, Position end)
    {
        const Result<std::string> text = cutter_.cut(begin, end - begin);
        if (!text)
            return fail(text.error());
        field = *text;
        return true;
    }

    bool fail(RuntimeError fault)
    {
        fault_ = fault;
        return false;
    }

    std::string_view page_;
    PageCutter cutter_;
    MarkerFinder boldBlank_, bold_, boldEnd_, tagBegin_, tagEnd_, colon_, equals_, class_, blank_, directory_;
    std::optional<RuntimeError> fault_;
};

} // namespace

std::string_view nothingFoundText(bool sliderAvailable)
{
    return sliderAvailable ? "No more site found" : "No site found";
}

FileResults parseFileResults(std::string_view page, std::vector<Position> linkPositions)
{
    FileResults results;
    results.linkPositions = std::move(linkPositions);
    if (findMarker(page, "not found", 1) != 0) {
        results.nothingFound = true;
        results.sliderAvailable = false;
        return results;
    }
    RowReader reader(page);
    results.fault = reader.readFiles(results);
    if (!results.fault)
        results.fault = reader.readDirectories(results);
    if (!results.fault)
        results.sliderAvailable = results.rows.size() >= kPerPage;
    return results;
}

} // namespace quarrynet

#include "common/result_heading.h"

#include <cmath>

#include "common/cutting.h"
#include "common/numbers.h"

namespace quarrynet {

ResultHeading cutResultHeading(std::string_view page)
{
    ResultHeading heading;

    Position count = findMarker(page, "</b> of about <b>", 1) + 17;
    if (count == 17)
        count = findMarker(page, "</b> of <b>", 1) + 11;
    const Position countEnd = findMarker(page, "</b>", count);
    const Result<std::string_view> countText = cut(page, count, countEnd - count);
    if (!countText) {
        heading.fault = countText.error();
        return heading;
    }
    heading.countCaption = *countText;

    const Position time = findMarker(page, "<b>", countEnd) + 3;
    const Position timeEnd = findMarker(page, "</b>", time);
    const Result<std::string_view> timeText = cut(page, time, timeEnd - time);
    if (!timeText) {
        heading.fault = timeText.error();
        return heading;
    }
    heading.timeCaption = std::string(*timeText).append(kTimeUnit);
    return heading;
}

Result<PageTotal> countPages(std::string_view countText, std::int32_t perPage)
{
    std::string plain(countText);
    std::erase(plain, ',');
    const Result<double> count = strictNumber(plain);
    if (!count)
        return count.error();
    if (*count < perPage)
        return PageTotal{PageTotal::Rule::LessThanOnePage, 1, std::move(plain)};

    const Result<std::int32_t> whole = roundToInt32(*count);
    if (!whole)
        return whole.error();
    const double remainder = std::fmod(*count, perPage);
    // Deliberate: a multiple of a page gives the count itself as the number of pages, and a remainder of 5 or more that
    // rounds down adds no page.
    if (remainder == 0)
        return PageTotal{PageTotal::Rule::CountItself, *whole, std::move(plain)};
    const auto rounded = static_cast<std::int32_t>(std::nearbyint(*count / perPage));
    return PageTotal{PageTotal::Rule::Rounded, remainder < 5 ? rounded + 1 : rounded, std::move(plain)};
}

PagingOffer offerPages(std::int32_t pages)
{
    PagingOffer offer;
    offer.pageTotal = std::to_string(pages);
    offer.enableSlider = pages > 1;
    if (pages < 9)
        offer.sliderMaximum = pages;
    return offer;
}

} // namespace quarrynet

#include "common/paging_window.h"

#include <algorithm>
#include <limits>

#include "common/numbers.h"

namespace quarrynet {

namespace {

constexpr std::int32_t kStep = 9;

bool atMaximum(const PagingWindow& window)
{
    return window.value == window.maximum;
}

Result<PagingWindow> movedOn(const PagingWindow& window)
{
    if (window.maximum > std::numeric_limits<std::int32_t>::max() - kStep)
        return RuntimeError::Overflow;
    return PagingWindow{window.maximum, window.maximum + kStep, window.maximum};
}

Result<PagingWindow> endingAt(const PagingWindow& window, double total)
{
    const Result<std::int32_t> maximum = roundToInt32(total);
    if (!maximum)
        return maximum.error();
    return windowEndingAt(window, *maximum);
}

bool endsWithin(const PagingWindow& window, double total)
{
    return total < static_cast<double>(window.maximum) + kStep;
}

} // namespace

PagingWindow windowEndingAt(const PagingWindow& window, std::int32_t last)
{
    const std::int32_t maximum = std::max(1, last);
    return {window.minimum < maximum ? window.minimum : 1, maximum, std::min(window.value, maximum)};
}

Result<PagingWindow> widenedWindow(const PagingWindow& window, std::string_view pageTotal)
{
    if (!atMaximum(window))
        return window;
    const Result<double> total = strictNumber(pageTotal);
    if (!total)
        return total.error();
    return endsWithin(window, *total) ? endingAt(window, *total) : movedOn(window);
}

Result<PagingWindow> widenedWindowByLeadingTotal(const PagingWindow& window, std::string_view pageTotal)
{
    if (!atMaximum(window))
        return window;
    if (!endsWithin(window, leadingNumber(pageTotal)))
        return movedOn(window);
    const Result<double> total = strictNumber(pageTotal);
    if (!total)
        return total.error();
    return endingAt(window, *total);
}

Result<PagingWindow> widenedWindowWithoutTotal(const PagingWindow& window)
{
    return atMaximum(window) ? movedOn(window) : Result<PagingWindow>(window);
}

} // namespace quarrynet

#pragma once

#include <cstdint>
#include <string_view>

#include "common/runtime_error.h"

/// The result pages that a paging slider offers. It shows ten of them at a time; reaching the last one moves the window
/// on by nine.
namespace quarrynet {

/// Page numbers, 1-based. The defaults are those of a new search.
struct PagingWindow
{
    std::int32_t minimum = 1;
    std::int32_t maximum = 10;
    std::int32_t value = 1;

    bool operator==(const PagingWindow&) const = default;
};

/// `window` with `last` as its last page, or 1 where that is less. The value is not above it, and a window that would
/// begin at or behind its last page begins at 1, so that a person can always go back.
PagingWindow windowEndingAt(const PagingWindow& window, std::int32_t last);

/// The window after its value changed, for the web and the image search. While the value is below the maximum nothing
/// changes. At the maximum m, and with the total of result pages in `pageTotal` (decimal text) below m + 9, the maximum
/// becomes the total, as windowEndingAt() does it; otherwise the window runs from m to m + 9. Fails with
/// TypeMismatch when the total is needed and no number, with Overflow when a bound does not fit.
Result<PagingWindow> widenedWindow(const PagingWindow& window, std::string_view pageTotal);

/// As above for the download search, whose total is compared by its leading number (an empty text is 0) and must be a
/// number as a whole only where it becomes the maximum.
Result<PagingWindow> widenedWindowByLeadingTotal(const PagingWindow& window, std::string_view pageTotal);

/// As above for the file search, which knows no total: at the maximum the window always moves on.
Result<PagingWindow> widenedWindowWithoutTotal(const PagingWindow& window);

} // namespace quarrynet

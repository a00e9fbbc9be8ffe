#pragma once

#include <cstdint>
#include <string_view>

#include "common/runtime_error.h"

/// The result pages that a paging slider offers: ten at a time. Reaching the last one moves the window forward by nine.
namespace quarrynet {

/// Page numbers, 1-based. The defaults are those of a new search.
struct PagingWindow
{
    std::int32_t minimum = 1;
    std::int32_t maximum = 10;
    std::int32_t value = 1;

    bool operator==(const PagingWindow&) const = default;
};

/// Returns `window` with `last`, but at least 1, as its last page. The value is lowered to it if necessary, and a
/// window that would begin at or after its last page begins at 1, so that the user can always go back.
PagingWindow windowEndingAt(const PagingWindow& window, std::int32_t last);

/// Returns the window after its value changed, for the web and the image search. A value below the maximum changes
/// nothing. At the maximum m, if `pageTotal` (decimal text, the number of result pages) is below m + 9, the total
/// becomes the maximum, as in windowEndingAt(); otherwise the window becomes m to m + 9. Returns TypeMismatch when the
/// total is needed but is not a number, and Overflow when a bound does not fit.
Result<PagingWindow> widenedWindow(const PagingWindow& window, std::string_view pageTotal);

/// Does the same for the download search: compares the total by its leading number (0 for an empty text), and requires
/// a complete number only if it becomes the maximum.
Result<PagingWindow> widenedWindowByLeadingTotal(const PagingWindow& window, std::string_view pageTotal);

/// Does the same for the file search, which has no total: at the maximum, the window always moves forward.
Result<PagingWindow> widenedWindowWithoutTotal(const PagingWindow& window);

} // namespace quarrynet

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/cutting.h"
#include "common/result_heading.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// The hidden lists that outlive a parse: a page's entries are appended, one per result, in page order.
struct WebLists
{
    std::vector<std::string> addresses;     // List2
    std::vector<std::string> titles;        // List3, tags included
    std::vector<std::string> cleanedTitles; // List4, without "<b>" and "</b>"
};

/// A parsed page of the web search: everything that was cut before the end of the page or the first fault.
struct WebResults
{
    bool nothingFound = false;               // the page has no result; report that
    std::vector<Position> positions;         // List1: where each address begins
    WebLists lists;                          // the given lists with this page's entries
    std::size_t rows = 0;                    // rows to show: addresses[i] with cleanedTitles[i] ("" past its end)
    std::optional<std::string> countCaption; // leave captions that are not set unchanged
    std::optional<std::string> timeCaption;
    PagingOffer paging;
    std::optional<RuntimeError> fault; // apply all of the above first, then report it
};

/// Parses `page` (the response's body as bytes, not empty) in linear time. Returns the results and, as their fault,
/// InvalidProcedureCall for a missing marker, TypeMismatch or Overflow for the count, or OutOfMemory when the texts
/// exceed the limit of `PageCutter`.
WebResults parseWebResults(std::string_view page, WebLists lists = {});

} // namespace quarrynet

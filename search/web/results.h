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

/// The hidden lists that outlive a parse: entries of a page are added behind those that are there. One entry a result,
/// in page order.
struct WebLists
{
    std::vector<std::string> addresses;     // List2
    std::vector<std::string> titles;        // List3, tags included
    std::vector<std::string> cleanedTitles; // List4, without "<b>" and "</b>"
};

/// A parsed page of the web search: everything that was cut before the end, or before the fault that ended it.
struct WebResults
{
    bool nothingFound = false;               // the page holds no result; say so
    std::vector<Position> positions;         // List1: where each address begins
    WebLists lists;                          // the lists given, with this page's entries
    std::size_t rows = 0;                    // rows to show: addresses[i] with cleanedTitles[i] ("" beyond its end)
    std::optional<std::string> countCaption; // what is not set stays as it is
    std::optional<std::string> timeCaption;
    PagingOffer paging;
    std::optional<RuntimeError> fault; // apply all of the above first, then report it
};

/// Cuts the results out of `page` (the response's body, not empty; bytes). Linear in its length. Faults:
/// InvalidProcedureCall for a missing marker, TypeMismatch or Overflow for the count, OutOfMemory when the texts exceed
/// what `PageCutter` allows.
WebResults parseWebResults(std::string_view page, WebLists lists = {});

} // namespace quarrynet

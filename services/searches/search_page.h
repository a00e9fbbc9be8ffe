#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "text/languages.h"

/// Shared by the web search and the image search: the program sends both the same form and parses the same heading.
namespace quarrynet::services {

/// Returns everything after "q=" up to the end of the query: "&" and "#" may be part of what people typed.
std::string_view typedPart(std::string_view query);

/// Returns the number after "start=" among the parameters before q, or 0 when there is none.
std::int64_t startPart(std::string_view query);

/// Returns the line that says which results (counted from 1) out of how many the page shows, and how long the search
/// took. The program parses the first "</b> of about <b>" of a page as the count, and the next bold text as the time,
/// so this line must precede all results, which may contain the same text.
std::string resultsHeading(std::int64_t first, std::int64_t last, std::int64_t total, double seconds);

/// Returns links to the pages before and after the one that shows `pageSize` of `total` results after the first
/// `start`. `path` is that of the search.
std::string pageLinks(std::string_view path, std::string_view typed, std::int64_t start, std::int64_t pageSize,
                      std::int64_t total, Language language);

} // namespace quarrynet::services

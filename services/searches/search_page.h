#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// What the web search and the image search have in common: the program asks both in the same form, and reads the
/// same heading from both.
namespace quarrynet::services {

/// What follows "q=" to the very end of a query: people's "&" and "#" are part of what they typed.
std::string_view typedPart(std::string_view query);

/// The number behind "start=" among the parameters before q; 0 when there is none.
std::int64_t startPart(std::string_view query);

/// The line that says which results out of how many a page shows, counted from 1, and how long finding them took. The
/// program takes the first "</b> of about <b>" of a page for the count, and the bold text behind it for the time, so
/// this line has to stand before all results, whose matches may spell out the same.
std::string resultsHeading(std::int64_t first, std::int64_t last, std::int64_t total, double seconds);

/// Links to the pages before and behind the one that shows `pageSize` of `total` results after the first `start`.
/// `path` is the search's.
std::string pageLinks(std::string_view path, std::string_view typed, std::int64_t start, std::int64_t pageSize,
                      std::int64_t total);

} // namespace quarrynet::services

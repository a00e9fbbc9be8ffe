#pragma once

#include <string_view>

#include "common/cutting.h"

namespace quarrynet {

/// Searches one text repeatedly for one marker. It returns what `findMarker` returns, and remembers the scanned range:
/// a parser that searches for the same missing or distant marker in every row scans the page once, not once per row.
/// Searches that only go forward read the text once in total. `text` and `marker` must outlive the object; `marker`
/// must not be empty.
class MarkerFinder
{
public:
    MarkerFinder(std::string_view text, std::string_view marker);

    /// Returns the position of the first marker at or after `from` (below 1: from the start), or 0 if there is none.
    Position find(Position from);

private:
    std::string_view text_;
    std::string_view marker_;
    Position first_ = 0;    // the first marker of the text, 0 before the first search for it
    Position lastFrom_ = 1; // start of the latest other search, and
    Position lastAt_ = 0;   // the position that it found
    Position noneFrom_;     // there is no marker from here on
};

} // namespace quarrynet

#pragma once

#include <string_view>

#include "common/cutting.h"

namespace quarrynet {

/// Searches one text for one marker again and again, with the answers of `findMarker`, and remembers what it has
/// scanned: a parser that looks for the same missing or distant marker once a row costs one scan of the page, not one a
/// row. As long as the searches go forward, all of them together read the text once. Keeps views: text and marker must
/// outlive it. The marker is not empty.
class MarkerFinder
{
public:
    MarkerFinder(std::string_view text, std::string_view marker);

    /// The position of the first marker at or after `from` (below 1: from the start); 0 when there is none.
    Position find(Position from);

private:
    std::string_view text_;
    std::string_view marker_;
    Position first_ = 0;    // the very first marker, 0 until it was searched for
    Position lastFrom_ = 1; // the latest other search, and
    Position lastAt_ = 0;   // where it found the marker
    Position noneFrom_;     // from here on there is none
};

} // namespace quarrynet

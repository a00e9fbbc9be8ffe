#include "common/MarkerFinder.h"

#include <algorithm>

namespace quarrynet {

MarkerFinder::MarkerFinder(std::string_view text, std::string_view marker)
    : text_(text), marker_(marker), noneFrom_(static_cast<Position>(text.size()) + 1)
{}

Position MarkerFinder::find(Position from)
{
    from = std::max<Position>(from, 1);
    if (from >= noneFrom_)
        return 0;
    if (from <= first_)
        return first_;
    if (from >= lastFrom_ && from <= lastAt_)
        return lastAt_;

    const Position at = findMarker(text_, marker_, from);
    if (at == 0) {
        noneFrom_ = from;
    } else if (from == 1) {
        first_ = at;
    } else {
        lastFrom_ = from;
        lastAt_ = at;
    }
    return at;
}

} // namespace quarrynet

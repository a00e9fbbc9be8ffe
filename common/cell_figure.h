#pragma once

#include <optional>
#include <string_view>

namespace quarrynet {

/// Returns the number at the beginning of a cell's text, times its unit, or nothing if the text does not begin with a
/// number (such as "<Dir>" or an empty cell). Only for comparing cells of one column.
///
/// Digits may have a decimal point, and groups of three digits may be separated by a comma, a blank, a no-break blank
/// or an apostrophe ("1,234,567"); a comma that separates no such group is a decimal one. The units K, M, G, T and P,
/// followed by nothing, "B" or "iB", in any case, stand for powers of 1024, whichever of them the page writes; any
/// other word counts as 1. So "1.5 MB" gives 1572864.
std::optional<double> cellFigure(std::string_view text);

} // namespace quarrynet

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quarrynet {

/// Returns the keywords of `typed`, in order: the text before each blank, followed by that blank. The last keyword gets
/// a blank too. A blank at the start, or after another, gives an entry of one blank, as does an empty text.
std::vector<std::string> keywordEntries(std::string_view typed);

} // namespace quarrynet

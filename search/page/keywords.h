#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quarrynet {

/// The keywords of `typed`, in order: what stands before each blank, with that one blank behind it. The last keyword
/// gets a blank of its own. So a blank at the start, or a second one in a row, gives an entry that is a lone blank, and
/// an empty text gives one as well.
std::vector<std::string> keywordEntries(std::string_view typed);

} // namespace quarrynet

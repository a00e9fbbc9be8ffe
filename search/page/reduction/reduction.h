#pragma once

#include <string>
#include <string_view>

namespace quarrynet {

/// Returns the text of a page to search for keywords: `body` without its double quotes and then without its tags (see
/// TagRemoval for broken and nested markup, and for the costs). An unclosed "<" and the text after it stay. Returns
/// `body` unchanged if nothing would be left.
std::string reducedPage(std::string_view body);

} // namespace quarrynet

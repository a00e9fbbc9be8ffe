#pragma once

#include <string>
#include <string_view>

namespace quarrynet {

/// The text of a page that keywords are looked for in: `body` without its double quotes and then without its tags (see
/// TagRemoval for what that does to broken and nested markup, and for the costs). An unclosed "<" and what follows it
/// stays. When nothing would be left, `body` as it is.
std::string reducedPage(std::string_view body);

} // namespace quarrynet

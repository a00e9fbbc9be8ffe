#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/request_text.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// Returns the web search's request for `keywords` (as typed) to the engine `host`. Without `page`, it has the form of
/// a first search, which names no start; with `page` (1-based, 30 results each), that of a later search, even for page
/// 1. Returns Overflow when the start does not fit 32 bits.
Result<std::string> webRequest(std::string_view keywords, std::optional<std::int32_t> page, std::string_view host,
                               Route route);

} // namespace quarrynet

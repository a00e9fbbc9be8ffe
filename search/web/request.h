#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/request_text.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// The web search's request for `keywords` (as typed) to the engine `host`. Without `page` the form of a first search,
/// which names no start; with `page` (1-based, 30 results a page) the form of a later one, page 1 included. Fails with
/// Overflow when the start does not fit 32 bits.
Result<std::string> webRequest(std::string_view keywords, std::optional<std::int32_t> page, std::string_view host,
                               Route route);

} // namespace quarrynet

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/request_text.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// Returns the file search's request for `fileName` (as typed) to the engine `host`. Without `page`, it has the form of
/// a first search; with `page` (1-based, 20 results each, which the engine counts from 1), the paged form. Returns
/// Overflow when the first result's number does not fit 32 bits.
Result<std::string> fileRequest(std::string_view fileName, std::optional<std::int32_t> page, std::string_view host,
                                Route route);

} // namespace quarrynet

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/request_text.h"

namespace quarrynet {

/// The download search's request for `keywords` (as typed) to the directory `host`. Without `page` the form of a search
/// that never saw a page count, with `page` (1-based) the paged form.
std::string downloadRequest(std::string_view keywords, std::optional<std::int32_t> page, std::string_view host,
                            Route route);

} // namespace quarrynet

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/request_text.h"

namespace quarrynet {

/// Returns the download search's request for `keywords` (as typed) to the directory `host`. Without `page`, it has the
/// form for a tab that has not seen a page count yet; with `page` (1-based), the paged form.
std::string downloadRequest(std::string_view keywords, std::optional<std::int32_t> page, std::string_view host,
                            Route route);

} // namespace quarrynet

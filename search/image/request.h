#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/request_text.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// The page numbers (1-based) of the two sliders that an image request may use.
struct ImagePages
{
    std::int32_t imageSlider = 1;
    std::int32_t webSlider = 1;
};

/// Returns the image search's request for `keywords` (as typed) to the engine `host`. Without `pages`, it has the form
/// of a first search; with them, the paged form, ten results per page. A direct request uses the image slider's page; a
/// request through a proxy uses the web slider's, and its form is shorter. Returns Overflow when the start does not fit
/// 32 bits.
Result<std::string> imageRequest(std::string_view keywords, std::optional<ImagePages> pages, std::string_view host,
                                 Route route);

} // namespace quarrynet

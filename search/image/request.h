#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/request_text.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// The result pages (1-based) on which the two sliders stand that an image request may follow.
struct ImagePages
{
    std::int32_t imageSlider = 1;
    std::int32_t webSlider = 1;
};

/// The image search's request for `keywords` (as typed) to the engine `host`. Without `pages` the form of a first
/// search; with them the paged form, ten results a page. Directly, the page is the image slider's; through a proxy it
/// is the web slider's, and the form is shorter. Fails with Overflow when the start does not fit 32 bits.
Result<std::string> imageRequest(std::string_view keywords, std::optional<ImagePages> pages, std::string_view host,
                                 Route route);

} // namespace quarrynet

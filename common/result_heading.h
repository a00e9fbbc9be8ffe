#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/runtime_error.h"

/// What the web and the image search read from the heading of a result page: how many results the engine found, how
/// long it took, and how many pages follow from that.
namespace quarrynet {

/// What follows the engine's time where it is shown.
inline constexpr std::string_view kTimeUnit = " Second/s";

/// The captions, each there once it was cut, and the fault that ended the cutting.
struct ResultHeading
{
    std::optional<std::string> countCaption; // as the engine wrote it, thousands separators included
    std::optional<std::string> timeCaption;  // the engine's time and kTimeUnit
    std::optional<RuntimeError> fault;
};

/// The heading of `page`. The count stands behind "</b> of about <b>", or else "</b> of <b>"; where both are missing it
/// is cut from position 11 on. A missing end marker is an InvalidProcedureCall.
ResultHeading cutResultHeading(std::string_view page);

/// What a parser makes of the paging of its tab. What is not set stays as it is.
struct PagingOffer
{
    std::optional<std::string> pageTotal; // for the tab's hidden text field
    bool enableSlider = false;
    std::optional<std::int32_t> sliderMaximum;
};

/// Result pages that follow from a count.
struct PageTotal
{
    enum class Rule : std::uint8_t
    {
        LessThanOnePage, // pages is 1
        CountItself,     // the count is a whole multiple of a page, and pages is the count
        Rounded,
    };

    Rule rule;
    std::int32_t pages;
    std::string plainCount; // the count's text without its commas
};

/// The pages for the count in `countText` (commas are left out) with `perPage` results a page. Fails with TypeMismatch
/// when the count is no number, with Overflow when it is above the 32-bit range.
Result<PageTotal> countPages(std::string_view countText, std::int32_t perPage);

/// The slider for `pages` pages: available for more than one, its maximum lowered below nine.
PagingOffer offerPages(std::int32_t pages);

} // namespace quarrynet

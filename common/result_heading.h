#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/runtime_error.h"

/// The data that the web and the image search read from the heading of a result page: how many results the engine
/// found, how long it took, and the resulting number of pages.
namespace quarrynet {

/// The unit shown after the engine's time.
inline constexpr std::string_view kTimeUnit = " Second/s";

/// The captions that were cut, and the fault that ended the cutting.
struct ResultHeading
{
    std::optional<std::string> countCaption; // as the engine wrote it, with thousands separators
    std::optional<std::string> timeCaption;  // the engine's time followed by kTimeUnit
    std::optional<RuntimeError> fault;
};

/// Reads the heading of `page`. The count follows "</b> of about <b>", or else "</b> of <b>"; if both are missing, it
/// is cut from position 11 on. A missing end marker is an InvalidProcedureCall.
ResultHeading cutResultHeading(std::string_view page);

/// A parser's changes to the paging of its tab. Members that are not set change nothing.
struct PagingOffer
{
    std::optional<std::string> pageTotal; // for the tab's hidden text field
    bool enableSlider = false;
    std::optional<std::int32_t> sliderMaximum;
};

/// The number of result pages for a count.
struct PageTotal
{
    enum class Rule : std::uint8_t
    {
        LessThanOnePage, // pages is 1
        CountItself,     // the count is a multiple of a page, and pages is the count
        Rounded,
    };

    Rule rule;
    std::int32_t pages;
    std::string plainCount; // the count's text without its commas
};

/// Returns the pages for the count in `countText` (commas are ignored) with `perPage` results per page. Returns
/// TypeMismatch when the count is not a number, and Overflow when it exceeds the 32-bit range.
Result<PageTotal> countPages(std::string_view countText, std::int32_t perPage);

/// Returns the offer for `pages` pages: the slider is enabled for more than one, and its maximum is reduced for fewer
/// than nine.
PagingOffer offerPages(std::int32_t pages);

} // namespace quarrynet

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "common/cutting.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// Cuts the texts of results out of a page, within an allowance for all of them together. Entries of an honest page lie
/// side by side, so their texts sum up to less than the page. Entries of a broken one can all reach to the same distant
/// marker, and a few megabytes would become terabytes of text. The view of the page must outlive this object.
class PageCutter
{
public:
    /// With an allowance of four times the page's length or textAllowance(), whichever is more.
    explicit PageCutter(std::string_view page);

    /// With `allowance` bytes in textAllowance()'s place.
    PageCutter(std::string_view page, std::size_t allowance);

    /// As `cut`, but as a text of its own. Fails with OutOfMemory when the texts exceed the allowance.
    Result<std::string> cut(Position start, Position length);

    /// Counts a text that was made otherwise; false when it exceeds the allowance.
    bool charge(std::size_t length);

private:
    std::string_view page_;
    std::size_t left_;
};

} // namespace quarrynet

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "common/cutting.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// Cuts the texts of results out of a page, with a limit on their total length. Entries of a well-formed page do not
/// overlap, so their texts are shorter than the page. In a broken page, all entries can extend to the same distant
/// marker, so a few megabytes would become terabytes of text. The page must outlive this object.
class PageCutter
{
public:
    /// Sets the limit to four times the page's length or textAllowance(), whichever is greater.
    explicit PageCutter(std::string_view page);

    /// Uses `allowance` bytes instead of textAllowance().
    PageCutter(std::string_view page, std::size_t allowance);

    /// Returns a copy of what `cut` returns. Returns OutOfMemory when the texts exceed the limit.
    Result<std::string> cut(Position start, Position length);

    /// Counts the length of another text. Returns false when the limit is exceeded.
    bool charge(std::size_t length);

private:
    std::string_view page_;
    std::size_t left_;
};

} // namespace quarrynet

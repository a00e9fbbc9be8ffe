#include "common/PageCutter.h"

#include <algorithm>

#include "common/memory.h"

namespace quarrynet {

PageCutter::PageCutter(std::string_view page) : PageCutter(page, textAllowance()) {}

PageCutter::PageCutter(std::string_view page, std::size_t allowance)
    : page_(page), left_(std::max(allowance, 4 * page.size()))
{}

Result<std::string> PageCutter::cut(Position start, Position length)
{
    const Result<std::string_view> text = quarrynet::cut(page_, start, length);
    if (!text)
        return text.error();
    if (!charge(text->size()))
        return RuntimeError::OutOfMemory;
    return std::string(*text);
}

bool PageCutter::charge(std::size_t length)
{
    if (length > left_)
        return false;
    left_ -= length;
    return true;
}

} // namespace quarrynet

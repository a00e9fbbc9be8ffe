#include "common/page_cutter.h"

namespace quarrynet {

namespace {

constexpr std::size_t kFloor = std::size_t{16} << 20;

} // namespace

PageCutter::PageCutter(std::string_view page) : page_(page), left_(kFloor + 4 * page.size()) {}

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

#include "common/cutting.h"

#include <algorithm>

namespace quarrynet {

Position findMarker(std::string_view text, std::string_view marker, Position from)
{
    const Position first = std::max<Position>(from, 1);
    if (first - 1 > static_cast<Position>(text.size()))
        return 0;
    const std::size_t at = text.find(marker, static_cast<std::size_t>(first - 1));
    return at == std::string_view::npos ? 0 : static_cast<Position>(at) + 1;
}

Result<std::string_view> cut(std::string_view text, Position start, Position length)
{
    if (start < 1 || length < 0)
        return RuntimeError::InvalidProcedureCall;
    if (start > static_cast<Position>(text.size()))
        return std::string_view();
    return text.substr(static_cast<std::size_t>(start - 1), static_cast<std::size_t>(length));
}

std::string_view cutFrom(std::string_view text, Position start)
{
    const Position first = std::max<Position>(start, 1);
    if (first > static_cast<Position>(text.size()))
        return {};
    return text.substr(static_cast<std::size_t>(first - 1));
}

std::string_view trimBlanks(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

} // namespace quarrynet

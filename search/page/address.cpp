#include "search/page/address.h"

namespace quarrynet {

PageAddress splitAddress(std::string_view typed)
{
    constexpr std::string_view kScheme = "http://";
    if (typed.starts_with(kScheme))
        typed.remove_prefix(kScheme.size());
    const std::size_t slash = typed.find('/');
    if (slash == std::string_view::npos)
        return {std::string(typed), "/"};
    return {std::string(typed.substr(0, slash)), std::string(typed.substr(slash))};
}

} // namespace quarrynet

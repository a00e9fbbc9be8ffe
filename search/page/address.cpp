#include "search/page/address.h"

namespace quarrynet {

PageAddress splitAddress(std::string_view typed)
{
    constexpr std::string_view kPlainScheme = "http://";
    constexpr std::string_view kTlsScheme = "https://";
    const bool tls = typed.starts_with(kTlsScheme);
    if (tls)
        typed.remove_prefix(kTlsScheme.size());
    else if (typed.starts_with(kPlainScheme))
        typed.remove_prefix(kPlainScheme.size());
    const std::size_t slash = typed.find('/');
    if (slash == std::string_view::npos)
        return {std::string(typed), "/", tls};
    return {std::string(typed.substr(0, slash)), std::string(typed.substr(slash)), tls};
}

} // namespace quarrynet

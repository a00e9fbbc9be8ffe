#pragma once

#include <string>
#include <string_view>

namespace quarrynet {

/// The address of a page.
struct PageAddress
{
    std::string PageHost;
    std::string PagePath; // begins with "/"
    bool tls = false;     // whether the address began with "https://"
};

/// Splits an address as typed. Drops one leading "http://" or "https://" (exactly that). The host is the text before
/// the first "/", including any port; the path is the rest, or "/" if there is none. Nothing is validated.
PageAddress splitAddress(std::string_view typed);

} // namespace quarrynet

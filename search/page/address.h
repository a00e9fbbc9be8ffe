#pragma once

#include <string>
#include <string_view>

namespace quarrynet {

/// The address of a page.
struct PageAddress
{
    std::string PageHost;
    std::string PagePath; // begins with "/"
};

/// Splits an address as typed. Drops a leading "http://" (exactly that). The host is the text before the first "/",
/// including any port; the path is the rest, or "/" if there is none. Nothing is validated.
PageAddress splitAddress(std::string_view typed);

} // namespace quarrynet

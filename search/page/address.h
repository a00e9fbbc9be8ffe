#pragma once

#include <string>
#include <string_view>

namespace quarrynet {

/// Where a page is fetched.
struct PageAddress
{
    std::string PageHost;
    std::string PagePath; // begins with "/"
};

/// Splits an address as typed. A leading "http://" (exactly so) is dropped; the host is what stands before the first
/// "/", a port included, and the path what follows from there, or "/" alone. Nothing is checked.
PageAddress splitAddress(std::string_view typed);

} // namespace quarrynet

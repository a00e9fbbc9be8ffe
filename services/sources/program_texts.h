#pragma once

#include <string>
#include <string_view>

namespace quarrynet::services {

/// Returns the name that people read for a package's architecture: "amd64" gives "Linux (amd64)", "all" gives "Any
/// system", "hurd-i386" gives "Hurd (i386)".
std::string systemOf(std::string_view architecture);

/// Returns the license of a package for which no catalog states one, as far as its area in the archive shows it; nobody
/// promises that other areas have free software only. `section` is like "games" or "non-free/games".
std::string licenseOf(std::string_view section);

} // namespace quarrynet::services

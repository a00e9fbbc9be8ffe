#pragma once

#include <string>
#include <string_view>

namespace quarrynet::services {

/// What people read for a package's architecture: "amd64" is "Linux (amd64)", "all" is "Any system", "hurd-i386" is
/// "Hurd (i386)".
std::string systemOf(std::string_view architecture);

/// The license class that a package's area in the archive stands for. `section` is "games" or "non-free/games".
std::string licenseOf(std::string_view section);

} // namespace quarrynet::services

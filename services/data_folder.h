#pragma once

#include <string>

#include "services/outcome.h"

namespace quarrynet::services {

/// Where the index lives: `chosen` when it is not empty, else "quarrynet" below the user's data folder (XDG Base
/// Directory Specification). The folder is made when it is missing. Its path, or why there is none.
Outcome<std::string> openDataFolder(const std::string& chosen);

} // namespace quarrynet::services

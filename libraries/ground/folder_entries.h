#pragma once

#include <functional>
#include <string>
#include <system_error>

namespace quarrynet {

/// Calls `take` with the name of each entry of `folder` but "." and "..", in the system's order. Returns why the folder
/// cannot be read, or not to its end. std::filesystem has iterators for this, but the standard library ends the program
/// when they run out of memory.
std::error_code forEachEntry(const std::string& folder, const std::function<void(const std::string& name)>& take);

} // namespace quarrynet

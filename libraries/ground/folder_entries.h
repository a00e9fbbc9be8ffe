#pragma once

#include <functional>
#include <string>
#include <system_error>

namespace quarrynet {

/// Calls `take` with the name of each entry of `folder` except "." and "..", in the system's order. Returns the error
/// if the folder cannot be read completely. The iterators of std::filesystem are not used, because the standard library
/// terminates the program when they run out of memory.
std::error_code forEachEntry(const std::string& folder, const std::function<void(const std::string& name)>& take);

} // namespace quarrynet

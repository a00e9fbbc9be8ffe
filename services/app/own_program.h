#pragma once

#include <filesystem>
#include <string>

namespace quarrynet::services {

/// Returns the path of the running program, or the empty path where the system does not tell it.
std::filesystem::path ownProgram();

/// Returns the folder of the manual that belongs to `program`: "manual" beside it, or where an installation keeps
/// shared files. Empty when it is in neither place.
std::string manualFolder(const std::filesystem::path& program);

} // namespace quarrynet::services

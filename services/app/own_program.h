#pragma once

#include <filesystem>
#include <string>

namespace quarrynet::services {

/// Returns the path of the running program, or an empty path if the system does not provide it.
std::filesystem::path ownProgram();

/// Returns the folder of the manual that belongs to `program`: "manual" next to it, or in the shared files of an
/// installation. Returns an empty text if it is in neither place.
std::string manualFolder(const std::filesystem::path& program);

/// Returns the path of the program that makes thumbnails: next to `program`, or among the helper programs of an
/// installation. Returns the first place if it is in neither.
std::filesystem::path thumbnailProgram(const std::filesystem::path& program);

} // namespace quarrynet::services

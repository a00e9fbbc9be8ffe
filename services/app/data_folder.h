#pragma once

#include <string>
#include <sys/types.h>

#include "ground/Outcome.h"

namespace quarrynet::services {

/// Files in the data folder: the records of the crawls of the plan, and what one process at a time locks to use them.
inline constexpr const char* kCrawlRecords = "crawls.tsv";
inline constexpr const char* kCrawlLock = "crawls.lock";

/// Returns the folder that openDataFolder() opens, without looking whether it is there.
Outcome<std::string> dataFolderPath(const std::string& chosen);

/// The index holds private texts, so files made in the data folder, and older files there, are accessible to its user
/// only; so is the folder itself unless it contains other things.
///
/// Returns the folder of the index: `chosen` unless it is empty, else usualDataFolder(). Creates the folder if it is
/// missing. Returns a Failure when that is impossible.
Outcome<std::string> openDataFolder(const std::string& chosen);

/// Gives the index that root made to a user: changes the owner of the files in the data folder, and of the folder
/// unless it contains other things. Leaves alone what root does not own.
void handOver(const std::string& folder, uid_t user, gid_t group);

} // namespace quarrynet::services

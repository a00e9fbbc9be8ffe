#pragma once

#include <string>
#include <sys/types.h>

#include "ground/Outcome.h"

namespace quarrynet::services {

/// The index holds private texts, so what is made in the data folder is for its user alone, and files of older times
/// become so. The folder itself becomes so unless it holds other things, too.
///
/// Where the index lives: `chosen` when it is not empty, else "quarrynet" below the user's data folder (XDG Base
/// Directory Specification). The folder is made when it is missing. Its path, or why there is none.
Outcome<std::string> openDataFolder(const std::string& chosen);

/// Lets the user of these numbers read the index, which root has made: the files in the data folder become theirs, and
/// so does the folder unless it holds other things, too. Nothing happens to what root does not own.
void handOver(const std::string& folder, uid_t user, gid_t group);

} // namespace quarrynet::services

#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "ground/Outcome.h"

namespace quarrynet::services {

/// Passes a file that the package tool keeps to `take`, piece by piece, at most `most` bytes of it. The package tool
/// decompresses it, unless its name has no suffix of a compressed file. Fails when the file cannot be read; pieces
/// already passed stay passed.
Outcome<Done> readDownloadedFile(const std::string& path, std::uint64_t most,
                                 const std::function<void(std::string_view piece)>& take);

} // namespace quarrynet::services

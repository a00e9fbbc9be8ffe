#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "crawl/listed_directory.h"

namespace quarrynet::services {

/// Longer lines are skipped.
inline constexpr std::size_t kMaxListingLine = 8 * 1024;
/// Longer facts are ignored.
inline constexpr std::size_t kMaxUniqueFact = 256;

/// Parses an MLSD listing (RFC 3659, section 7). Skips lines in any other format, or whose name is not valid in a
/// directory.
std::vector<ListedEntry> readMlsd(std::string_view listing);

/// Parses a LIST listing in the same way. LIST has no standard format (RFC 959, section 4.1.3); those of Unix and
/// Windows servers are supported.
std::vector<ListedEntry> readList(std::string_view listing);

} // namespace quarrynet::services

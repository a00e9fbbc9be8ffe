#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ground/Outcome.h"
#include "index/sqlite.h"

/// What an index contains, for people who ask whether it is what they expect.
namespace quarrynet::services {

/// Each list of a summary has at most this many entries.
inline constexpr std::int64_t kMostSummarized = 100;

struct IndexSummary
{
    std::int64_t webPages = 0;
    std::int64_t pictures = 0;
    std::int64_t programs = 0;
    std::int64_t files = 0;       ///< files and directories of mirrors and crawled servers
    std::int64_t listedFiles = 0; ///< names of files in packages; up to kBlockNames - 1 too many
    std::vector<std::string> mirrors;
    std::vector<std::string> folders;
    std::vector<std::string> pictureFolders;
    std::vector<std::pair<std::string, std::int64_t>> crawls; ///< addresses, and times in seconds since 1970
};

/// Counts the rows. Takes some milliseconds, and fails when the database's time is up.
Outcome<IndexSummary> summarize(Database& index);

/// Returns when the index at `path` was written, in seconds since 1970; nothing if there is none or it cannot be looked
/// at.
std::optional<std::int64_t> indexTime(const std::string& path);

/// Returns when the index that is being made to replace the one at `path` was last written to; nothing if none is. A
/// run that was interrupted looks like one that has not written for a while.
std::optional<std::int64_t> unfinishedIndexTime(const std::string& path);

} // namespace quarrynet::services

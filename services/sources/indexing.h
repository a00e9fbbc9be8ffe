#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ground/Outcome.h"
#include "sources/document_folders.h"

namespace quarrynet::services {

/// The sources of an index.
struct IndexSources
{
    /// Files of package stanzas. If there are none, the machine's own package lists are used.
    std::vector<std::string> packageFiles = {};
    /// Address of the mirror that has the packages of `packageFiles`; ends in "/". If empty, searches find these
    /// packages by their home pages only. The machine's own lists name their mirrors.
    std::string mirror = {};
    /// Folders of HTML pages; missing ones are skipped.
    std::vector<std::string> folders = {};
    /// Folders of pictures; missing ones are skipped.
    std::vector<std::string> pictureFolders = {};
    /// Contents lists of that mirror's packages, plain or compressed. If there are neither these nor `packageFiles`,
    /// the machine's own contents lists are used.
    std::vector<std::string> contentsFiles = {};
    /// Software catalogs of that mirror's packages, plain or compressed. If there are neither these nor `packageFiles`,
    /// the machine's own catalogs are used.
    std::vector<std::string> catalogFiles = {};
    /// Replaces the index in use even if it is from a newer version or the new one has much less.
    bool force = false;
    /// As for IndexLock::take().
    std::function<bool()> again = {};
};

struct IndexCounts
{
    std::size_t packages = 0;
    std::size_t homePages = 0;
    std::size_t programs = 0;
    std::size_t catalogued = 0; ///< programs that a software catalog describes
    std::size_t documents = 0;
    std::size_t pictures = 0;
    std::size_t listedFiles = 0; ///< files in packages
    LeftOut leftOut;             ///< what could not be read, or exceeds a limit
};

/// For each of web pages, programs and pictures: if the index in use has at least kMinCompared of them, the new one
/// must have at least this share of that number.
inline constexpr double kLeastShare = 0.5;
inline constexpr std::int64_t kMinCompared = 100;

/// Makes a new index in the data folder; the old one stays in use until the new one is complete. What cannot be read is
/// left out and counted. Fails, unless `sources.force`, when the index in use is from a newer version or the new one
/// would have much less (kLeastShare). Calls `progress` with plain text lines without a line end.
Outcome<IndexCounts> buildIndex(const std::string& dataFolder, const IndexSources& sources,
                                const std::function<void(const std::string&)>& progress);

} // namespace quarrynet::services

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ground/Outcome.h"
#include "sources/document_folders.h"

namespace quarrynet::services {

/// What an index is made of.
struct IndexSources
{
    /// Files of package stanzas; when empty, the machine's own package lists.
    std::vector<std::string> packageFiles = {};
    /// The address, ending in "/", of the mirror that has the packages of `packageFiles`. When empty, they are found as
    /// home pages only. The machine's own lists say themselves where their packages are.
    std::string mirror = {};
    /// Folders of HTML pages. One that does not exist is passed over.
    std::vector<std::string> folders = {};
    /// Folders of pictures. One that does not exist is passed over.
    std::vector<std::string> pictureFolders = {};
    /// Whether the index is taken however little it has.
    bool force = false;
};

struct IndexCounts
{
    std::size_t packages = 0;
    std::size_t homePages = 0;
    std::size_t programs = 0;
    std::size_t documents = 0;
    std::size_t pictures = 0;
    LeftOut leftOut; ///< what could not be read, or is beyond a bound
};

/// A new index must have so much of the web pages, programs and pictures that the one in use has, each counted alone,
/// where that has at least kMinCompared of them.
inline constexpr double kLeastShare = 0.5;
inline constexpr std::int64_t kMinCompared = 100;

/// Makes a new index in the data folder; the old one stays in use until the new one is whole. What cannot be read is
/// left out and counted. Fails when the new index would be much poorer than the one in use (kLeastShare). `progress` is
/// told what is under way, in plain text lines without a line end.
Outcome<IndexCounts> buildIndex(const std::string& dataFolder, const IndexSources& sources,
                                const std::function<void(const std::string&)>& progress);

} // namespace quarrynet::services

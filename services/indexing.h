#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "services/outcome.h"

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
};

struct IndexCounts
{
    std::size_t packages = 0;
    std::size_t homePages = 0;
    std::size_t programs = 0;
    std::size_t documents = 0;
    std::size_t pictures = 0;
};

/// Makes a new index in the data folder; the old one stays in use until the new one is whole. `progress` is told what
/// is under way, in plain text lines without a line end.
Outcome<IndexCounts> buildIndex(const std::string& dataFolder, const IndexSources& sources,
                                const std::function<void(const std::string&)>& progress);

} // namespace quarrynet::services

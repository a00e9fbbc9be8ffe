#pragma once

#include <string>

#include "config/crawl_address.h"
#include "crawl/listed_directory.h"

namespace quarrynet::services {

/// Returns what lists the directories of the address's server, by the protocol of its scheme. Connects at the first
/// call. `certificates` (PEM) are trusted besides the system's.
DirectoryLister openSite(const CrawlAddress& address, const std::string& certificates = {});

} // namespace quarrynet::services

#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "ftp/crawl.h"
#include "ground/Outcome.h"

namespace quarrynet::services {

/// Puts what was crawled in the place of what the index had of that server's directory; `base` is its escaped address,
/// ending in "/". Searches see all of it at once when it returns. `again` as for IndexLock::take().
Outcome<Done> storeCrawl(const std::string& dataFolder, std::string_view base, std::int64_t time, Crawl crawl,
                         const std::function<bool()>& again = {});

} // namespace quarrynet::services

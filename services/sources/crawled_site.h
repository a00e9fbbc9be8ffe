#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "crawl/crawl.h"
#include "ground/Outcome.h"

namespace quarrynet::services {

/// Replaces what the index has of a server's directory by `crawl`. `base` is the escaped address and ends in "/".
/// Searches see all of it as soon as this returns. `again` is as for IndexLock::take().
Outcome<Done> storeCrawl(const std::string& dataFolder, std::string_view base, std::int64_t time, Crawl crawl,
                         const std::function<bool()>& again = {});

} // namespace quarrynet::services

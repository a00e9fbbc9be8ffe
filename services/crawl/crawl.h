#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "crawl/listed_directory.h"
#include "ground/Outcome.h"

namespace quarrynet::services {

/// The limits of a crawl. Whatever was listed before it stops is kept.
struct CrawlLimits
{
    std::size_t depth = 32; ///< levels of directories below the first one
    std::size_t entries = 1'000'000;
    std::chrono::seconds time = std::chrono::minutes(60);
    std::uint32_t rate = 10;               ///< maximum listings per second
    std::size_t bytes = 256 * 1024 * 1024; ///< maximum memory for entries
};

/// The interface of a crawl to its environment.
struct CrawlTools
{
    DirectoryLister list;
    std::function<std::chrono::steady_clock::time_point()> now;
    std::function<void(std::chrono::steady_clock::duration)> wait;
    std::function<void(const std::string&)> progress; ///< plain text lines without a line end
};

struct CrawledFile
{
    std::size_t folder = 0; ///< index into Crawl::folders
    std::string name;
    std::optional<std::int64_t> size = std::nullopt;
    bool directory = false;
};

struct Crawl
{
    std::vector<std::string> folders; ///< below the start, empty or ending in "/"
    std::vector<CrawledFile> files;   ///< including directories
    std::size_t refused = 0;          ///< directories that could not be listed
    std::string cut;                  ///< the limit that stopped the crawl; empty if it is complete
};

/// Lists the directory `start` (see CrawlAddress::path) and those below it, breadth first. A directory is entered once,
/// whatever links lead to it, as far as the server allows to detect that: by the "unique" facts of MLSD, and by a
/// listing equal to that of a directory above. Links in LIST output are not followed; they get the type of their target
/// if the crawl saw it. Fails when the first directory, or several in succession, cannot be listed.
Outcome<Crawl> crawl(std::string_view start, const CrawlLimits& limits, const CrawlTools& tools);

} // namespace quarrynet::services

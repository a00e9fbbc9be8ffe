#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ftp/FtpClient.h"
#include "ground/Outcome.h"

namespace quarrynet::services {

/// Where a crawl stops. What was listed until then is kept.
struct CrawlLimits
{
    std::size_t depth = 32; ///< directories below the first one
    std::size_t entries = 1'000'000;
    std::chrono::seconds time = std::chrono::minutes(60);
    std::uint32_t rate = 10;               ///< listings a second at most
    std::size_t bytes = 256 * 1024 * 1024; ///< of memory for what is kept of the listings
};

/// What a crawl needs from the world.
struct CrawlTools
{
    std::function<Outcome<FtpDirectory>(std::string_view path)> list; ///< as FtpClient::list()
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
    std::vector<CrawledFile> files;   ///< directories among them
    std::size_t refused = 0;          ///< directories that could not be listed
    std::string cut;                  ///< which limit ended it; empty: it came to its end
};

/// Lists the directory `start` (as FtpClient::list() takes it) and those below it, the nearer ones first. A directory
/// is entered once, by whatever links it can be reached, as far as the server lets know: by the "unique" facts of MLSD,
/// and where a listing repeats that of a directory above it. Links that LIST shows are not followed; they count as what
/// they lead to if that was seen. Fails when the first directory, or several one after the other, cannot be had.
Outcome<Crawl> crawl(std::string_view start, const CrawlLimits& limits, const CrawlTools& tools);

} // namespace quarrynet::services

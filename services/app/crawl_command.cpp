#include <chrono>
#include <cstdio>
#include <ctime>
#include <thread>
#include <utility>

#include "app/commands.h"
#include "app/data_folder.h"
#include "ftp/crawl.h"
#include "ground/percent_coding.h"
#include "index/database.h"
#include "sources/crawled_site.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

constexpr int kLockTries = 120;
constexpr std::chrono::seconds kLockPause{1};

} // namespace

int runCrawl(const Options& options)
{
    const auto complain = [](const Failure& failure) {
        std::fprintf(stderr, "quarrynet-services: %s\n", failure.message.c_str());
        return 1;
    };
    const auto tell = [](const std::string& line) { std::fprintf(stderr, "quarrynet-services: %s\n", line.c_str()); };
    const Outcome<FtpAddress> address = readFtpAddress(options.crawlAddress);
    if (!address)
        return complain(address.error());
    const Outcome<std::string> data = openDataFolder(options.dataFolder);
    if (!data)
        return complain(data.error());
    // An index with only crawled files would look complete.
    IndexPool pool(*data);
    if (const Outcome<IndexPool::Lease> index = pool.borrow(); !index)
        return complain(index.error());

    FtpClient client(address->site);
    const CrawlTools tools{[&client](std::string_view path) { return client.list(path); },
                           [] { return std::chrono::steady_clock::now(); },
                           [](std::chrono::steady_clock::duration time) { std::this_thread::sleep_for(time); }, tell};
    const CrawlLimits limits{options.crawlDepth, options.crawlEntries, std::chrono::minutes(options.crawlMinutes),
                             options.crawlRate};
    Outcome<Crawl> found = crawl(address->path, limits, tools);
    if (!found)
        return complain(found.error());
    const std::string base = address->site + "/" + encodePath(address->path);
    const std::string summary = "crawled " + withSeparators(static_cast<std::int64_t>(found->folders.size())) +
                                " directories with " + withSeparators(static_cast<std::int64_t>(found->files.size())) +
                                " names at " + base;
    const std::size_t refused = found->refused;
    const std::string cut = found->cut;
    // A long crawl must not be lost because another process is writing the index.
    int tries = 0;
    const Outcome<Done> stored =
        storeCrawl(*data, base, static_cast<std::int64_t>(std::time(nullptr)), std::move(*found), [&] {
            if (++tries >= kLockTries)
                return false;
            if (tries == 1)
                tell("waiting: another quarrynet-services is writing the index");
            std::this_thread::sleep_for(kLockPause);
            return true;
        });
    if (!stored)
        return complain(stored.error());
    tell(summary);
    if (refused > 0)
        tell(std::to_string(refused) + " directories could not be listed");
    if (!cut.empty())
        tell("the crawl stopped early: " + cut);
    return 0;
}

} // namespace quarrynet::services

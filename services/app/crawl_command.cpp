#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <utility>

#include "app/commands.h"
#include "app/data_folder.h"
#include "config/crawl_address.h"
#include "config/services_file.h"
#include "crawl/crawl.h"
#include "crawl/open_site.h"
#include "crawl/plan.h"
#include "ground/Descriptor.h"
#include "ground/durable_file.h"
#include "index/database.h"
#include "sources/crawled_site.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

constexpr int kLockTries = 120;
constexpr std::chrono::seconds kLockPause{1};

void tell(const std::string& line)
{
    std::fprintf(stderr, "quarrynet-services: %s\n", line.c_str());
}

std::int64_t timeNow()
{
    return static_cast<std::int64_t>(std::time(nullptr));
}

/// Crawls one server and replaces what the index has of it.
Outcome<Done> crawlSite(const std::string& data, const CrawlAddress& address, const CrawlLimits& limits,
                        const std::string& certificates)
{
    const CrawlTools tools{openSite(address, certificates), [] { return std::chrono::steady_clock::now(); },
                           [](std::chrono::steady_clock::duration time) { std::this_thread::sleep_for(time); }, tell};
    Outcome<Crawl> found = crawl(address.path, limits, tools);
    if (!found)
        return found.error();
    const std::string base = crawlBase(address);
    const std::string summary = "crawled " + withSeparators(static_cast<std::int64_t>(found->folders.size())) +
                                " directories with " + withSeparators(static_cast<std::int64_t>(found->files.size())) +
                                " names at " + base;
    const std::size_t refused = found->refused;
    const std::string cut = found->cut;
    // A long crawl must not be lost because another process is writing the index.
    int tries = 0;
    Outcome<Done> stored = storeCrawl(data, base, timeNow(), std::move(*found), [&] {
        if (++tries >= kLockTries)
            return false;
        if (tries == 1)
            tell("waiting: another quarrynet-services is writing the index");
        std::this_thread::sleep_for(kLockPause);
        return true;
    });
    if (!stored)
        return stored;
    tell(summary);
    if (refused > 0)
        tell(std::to_string(refused) + " directories could not be listed");
    if (!cut.empty())
        tell("the crawl stopped early: " + cut);
    return stored;
}

/// The records of the plan's crawls, in the data folder. Only one process at a time has them.
class RecordFile
{
public:
    /// Returns nothing while another process crawls the plan.
    static Outcome<std::optional<RecordFile>> open(const std::string& dataFolder)
    {
        const std::filesystem::path folder(dataFolder);
        Descriptor lock(::open((folder / kCrawlLock).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (!lock)
            return Failure{"cannot write to " + dataFolder + ": " + std::strerror(errno)};
        if (::flock(lock.number(), LOCK_EX | LOCK_NB) != 0) {
            if (errno == EWOULDBLOCK)
                return std::optional<RecordFile>();
            return Failure{"cannot lock the plan in " + dataFolder + ": " + std::strerror(errno)};
        }
        RecordFile file(std::move(lock), (folder / kCrawlRecords).string());
        std::error_code error;
        if (std::filesystem::file_size(file.path_, error) <= kMaxCrawlRecords && !error) {
            std::ifstream content(file.path_, std::ios::binary);
            file.records_ = readCrawlRecords(std::string(std::istreambuf_iterator<char>(content), {}));
        }
        return std::optional(std::move(file));
    }

    /// Forgets the servers that `keeps` does not have.
    void keepOnly(const std::vector<CrawlSetting>& settings)
    {
        std::erase_if(records_, [&settings](const CrawlRecord& record) {
            return std::none_of(settings.begin(), settings.end(), [&record](const CrawlSetting& setting) {
                return crawlBase(setting.address) == record.address;
            });
        });
    }

    CrawlRecord& recordOf(const std::string& address)
    {
        const auto known = std::find_if(records_.begin(), records_.end(),
                                        [&address](const CrawlRecord& record) { return record.address == address; });
        return known == records_.end() ? records_.emplace_back(CrawlRecord{address}) : *known;
    }

    Outcome<Done> save() const
    {
        struct stat status
        {};
        const bool exists = ::stat(path_.c_str(), &status) == 0;
        const std::error_code error =
            replaceFile(path_, formatCrawlRecords(records_), exists ? std::optional(status) : std::nullopt);
        if (error)
            return Failure{"cannot write " + path_ + ": " + error.message()};
        return Done{};
    }

private:
    RecordFile(Descriptor lock, std::string path) : lock_(std::move(lock)), path_(std::move(path)) {}

    Descriptor lock_;
    std::string path_;
    std::vector<CrawlRecord> records_;
};

/// Crawls the servers of the plan whose time has come, one after the other. A failure is told and recorded, and the
/// next server is crawled.
Outcome<Done> crawlPlan(const std::string& data, const std::vector<CrawlSetting>& settings,
                        const std::string& certificates)
{
    Outcome<std::optional<RecordFile>> opened = RecordFile::open(data);
    if (!opened)
        return opened.error();
    if (!*opened) {
        tell("another quarrynet-services is crawling the plan");
        return Done{};
    }
    RecordFile& file = **opened;
    file.keepOnly(settings);
    std::size_t crawled = 0;
    std::size_t failed = 0;
    for (const CrawlSetting& setting : settings) {
        CrawlRecord& record = file.recordOf(crawlBase(setting.address));
        if (!isCrawlDue(record, setting.interval, timeNow()))
            continue;
        const CrawlLimits limits{setting.depth, setting.entries, std::chrono::minutes(setting.minutes), setting.rate};
        const Outcome<Done> done = crawlSite(data, setting.address, limits, certificates);
        record.tried = timeNow();
        if (done) {
            ++crawled;
            record.succeeded = record.tried;
            record.failures = 0;
        } else {
            ++failed;
            ++record.failures;
            const std::int64_t wait = nextCrawl(record, setting.interval) - record.tried;
            tell(record.address + " was not crawled, and is due again in " + std::to_string(wait / 60) +
                 " minutes: " + done.error().message);
        }
        Outcome<Done> saved = file.save();
        if (!saved)
            return saved;
    }
    const std::string line = std::to_string(crawled) + " servers were crawled, " + std::to_string(failed) +
                             " failed, and " + std::to_string(settings.size() - crawled - failed) + " were not due";
    if (failed > 0)
        return Failure{line};
    tell(line);
    return Done{};
}

} // namespace

int runCrawl(const Options& options)
{
    const auto complain = [](const Failure& failure) {
        tell(failure.message);
        return 1;
    };
    const Expected<ServicesFile, FileFaults> config = loadServicesFile(options.configFile);
    if (!config) {
        for (const std::string& fault : config.error())
            tell(fault);
        return 1;
    }
    const Outcome<std::string> certificates = readCertificates(config->caFile);
    if (!certificates)
        return complain(certificates.error());
    Outcome<CrawlAddress> address = CrawlAddress();
    if (!options.crawlDue)
        address = readCrawlAddress(options.crawlAddress);
    if (!address)
        return complain(address.error());
    if (options.crawlDue && config->crawls.empty()) {
        tell("the configuration names no server to crawl; add one with [[crawl]]");
        return 0; // none is due, which is no failure of the timer that asks
    }
    const Outcome<std::string> data = openDataFolder(options.dataFolder);
    if (!data)
        return complain(data.error());
    // An index with only crawled files would look complete.
    IndexPool pool(*data, kMaxQueryTime, Reader::Owner);
    if (const Outcome<IndexPool::Lease> index = pool.borrow(); !index)
        return complain(index.error());
    const CrawlLimits limits{options.crawlDepth, options.crawlEntries, std::chrono::minutes(options.crawlMinutes),
                             options.crawlRate};
    const Outcome<Done> done = options.crawlDue ? crawlPlan(*data, config->crawls, *certificates)
                                                : crawlSite(*data, *address, limits, *certificates);
    return done ? 0 : complain(done.error());
}

} // namespace quarrynet::services

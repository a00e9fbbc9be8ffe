#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Which servers of a plan are to be crawled again, and the record of their last crawls.
namespace quarrynet::services {

/// What is known of the crawls of one server. Times are in seconds since 1970.
struct CrawlRecord
{
    std::string address;        ///< see crawlBase()
    std::int64_t tried = 0;     ///< when the last crawl ended; 0 if there was none
    std::int64_t succeeded = 0; ///< when the last one that succeeded did
    std::uint32_t failures = 0; ///< since then
};

/// After the first failure a server is tried again after this time, after each further one after double the time, up to
/// the last one and to its own interval.
inline constexpr std::chrono::seconds kFirstRetry = std::chrono::minutes(15);
inline constexpr std::chrono::seconds kLastRetry = std::chrono::hours(24);

/// Returns when a server with this interval is to be crawled again; 0 if it never was.
std::int64_t nextCrawl(const CrawlRecord& record, std::chrono::seconds interval);

/// Returns whether that time has come. A record from the future, made with a wrong clock, counts for nothing.
bool isCrawlDue(const CrawlRecord& record, std::chrono::seconds interval, std::int64_t now);

/// Larger files of records are not read.
inline constexpr std::size_t kMaxCrawlRecords = 1024 * 1024;

/// Parses lines "ADDRESS TAB TRIED TAB SUCCEEDED TAB FAILURES". Skips others; a server without a record is due.
std::vector<CrawlRecord> readCrawlRecords(std::string_view text);
std::string formatCrawlRecords(const std::vector<CrawlRecord>& records);

} // namespace quarrynet::services

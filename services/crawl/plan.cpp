#include "crawl/plan.h"

#include <algorithm>
#include <array>
#include <optional>

#include "ground/decimal.h"

namespace quarrynet::services {

std::int64_t nextCrawl(const CrawlRecord& record, std::chrono::seconds interval)
{
    if (record.tried == 0)
        return 0;
    std::chrono::seconds wait = interval;
    if (record.failures > 0) {
        std::chrono::seconds retry = kFirstRetry;
        for (std::uint32_t i = 1; i < record.failures && retry < kLastRetry; ++i)
            retry *= 2;
        wait = std::min({interval, retry, kLastRetry});
    }
    return record.tried + wait.count();
}

bool isCrawlDue(const CrawlRecord& record, std::chrono::seconds interval, std::int64_t now)
{
    return record.tried > now || nextCrawl(record, interval) <= now;
}

std::vector<CrawlRecord> readCrawlRecords(std::string_view text)
{
    std::vector<CrawlRecord> records;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        std::array<std::string_view, 4> fields;
        for (std::string_view& field : fields) {
            const std::size_t tab = std::min(line.find('\t'), line.size());
            field = line.substr(0, tab);
            line.remove_prefix(std::min(tab + 1, line.size()));
        }
        // Later than any clock says, but far from the end of the numbers.
        constexpr std::int64_t kMostTime = std::int64_t{1} << 40U;
        const std::optional<std::int64_t> tried = wholeNumberAs<std::int64_t>(fields[1]);
        const std::optional<std::int64_t> succeeded = wholeNumberAs<std::int64_t>(fields[2]);
        const std::optional<std::uint32_t> failures = wholeNumberAs<std::uint32_t>(fields[3]);
        if (!fields[0].empty() && tried && succeeded && failures && *tried < kMostTime && *succeeded < kMostTime)
            records.push_back({std::string(fields[0]), *tried, *succeeded, *failures});
    }
    return records;
}

std::string formatCrawlRecords(const std::vector<CrawlRecord>& records)
{
    std::string text;
    for (const CrawlRecord& record : records) {
        text.append(record.address).append("\t").append(std::to_string(record.tried)).append("\t");
        text.append(std::to_string(record.succeeded)).append("\t").append(std::to_string(record.failures)).append("\n");
    }
    return text;
}

} // namespace quarrynet::services

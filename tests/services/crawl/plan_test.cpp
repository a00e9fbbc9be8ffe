#include <gtest/gtest.h>

#include "crawl/plan.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet::services;

namespace {

constexpr std::chrono::seconds kWeek = std::chrono::hours(168);

} // namespace

TEST(CrawlPlan, ServerIsDueAtFirstAndThenAfterItsInterval)
{
    EXPECT_TRUE(isCrawlDue({"ftp://h/"}, kWeek, 1000));
    const CrawlRecord crawled{"ftp://h/", 1000, 1000, 0};
    EXPECT_EQ(nextCrawl(crawled, kWeek), 1000 + kWeek.count());
    EXPECT_FALSE(isCrawlDue(crawled, kWeek, 1000));
    EXPECT_FALSE(isCrawlDue(crawled, kWeek, 999 + kWeek.count()));
    EXPECT_TRUE(isCrawlDue(crawled, kWeek, 1000 + kWeek.count()));
    EXPECT_TRUE(isCrawlDue(crawled, kWeek, 999)) << "the clock was wrong";
}

TEST(CrawlPlan, FailuresAreTriedAgainEverLaterUpToABound)
{
    const auto wait = [](std::uint32_t failures, std::chrono::seconds interval) {
        return std::chrono::seconds(nextCrawl({"ftp://h/", 1000, 0, failures}, interval) - 1000);
    };
    EXPECT_EQ(wait(1, kWeek), kFirstRetry);
    EXPECT_EQ(wait(2, kWeek), 2 * kFirstRetry);
    EXPECT_EQ(wait(3, kWeek), 4 * kFirstRetry);
    EXPECT_EQ(wait(100, kWeek), kLastRetry);
    EXPECT_EQ(wait(4'000'000'000U, kWeek), kLastRetry);
    EXPECT_EQ(wait(100, std::chrono::hours(1)), std::chrono::hours(1));
}

TEST(CrawlPlan, RecordsReadBack)
{
    const std::vector<CrawlRecord> records{{"ftp://h/", 12, 10, 1}, {"https://h:1/a%20b/", 0, 0, 0}};
    const std::string text = formatCrawlRecords(records);
    EXPECT_EQ(text, "ftp://h/\t12\t10\t1\nhttps://h:1/a%20b/\t0\t0\t0\n");
    EXPECT_EQ(formatCrawlRecords(readCrawlRecords(text)), text);
    for (std::size_t length = 0; length < text.size(); ++length) {
        const std::string cut = formatCrawlRecords(readCrawlRecords(ExactCopy(text.substr(0, length)).view()));
        EXPECT_LE(cut.size(), length + 1) << length;
    }
}

TEST(CrawlPlan, BrokenRecordsAreSkipped)
{
    for (const std::string& text :
         {std::string("ftp://h/"), std::string("\t1\t1\t1"), std::string("ftp://h/\t-1\t1\t1"),
          std::string("ftp://h/\t99999999999999\t1\t1"), std::string("ftp://h/\t1\tx\t1"), std::string(5000, '\t'),
          std::string("\0\0\n\xff\n", 5), std::string("ftp://h/\t1\t1\t99999999999")})
        EXPECT_TRUE(readCrawlRecords(ExactCopy(text).view()).empty()) << text;
}

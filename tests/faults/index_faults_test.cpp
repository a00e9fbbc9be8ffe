#include <set>

#include <gtest/gtest.h>

#include "FaultyProgram.h"
#include "index_dump.h"
#include "sources/crawled_site.h"
#include "tests/services/support/service_support.h"

/// Each call that indexing makes fails once, in the real program. Then the new index is complete, or the old one stays.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

std::string stanza(const std::string& name)
{
    return "Package: " + name + "\nDescription: a fruit\nHomepage: http://" + name + ".example/\nFilename: pool/" +
           name + ".deb\n\n";
}

class IndexFaults : public testing::Test
{
protected:
    void SetUp() override
    {
        folder_.write("docs/manual.html", "<title>Manual</title>How to grow apples<img src=a.png>");
        folder_.write("pics/red apple.png", "no picture inside, which the index does not look at");
        folder_.write("list", stanza("plum"));
        ASSERT_EQ(run(0, 0), 0) << errors_;
        Crawl crawl;
        crawl.folders = {"pub/"};
        crawl.files = {{0, "crawled.zip", 5, false}, {0, "sub", std::nullopt, true}};
        ASSERT_TRUE(storeCrawl(data(), "ftp://ftp.example/", 1, crawl));
        old_ = fileContent(indexPath(data()));
        folder_.write("list", stanza("apple") + stanza("pear") + stanza("plum"));
        ASSERT_EQ(run(0, 0), 0) << errors_;
        whole_ = dumpOf(data());
        ASSERT_NE(whole_.find("crawled.zip"), std::string::npos) << whole_;
        ASSERT_NE(whole_.find("pear.example"), std::string::npos) << whole_;
        ASSERT_EQ(whole_.rfind("ok\n", 0), 0U) << whole_;
    }

    /// Indexes over the old index while the `number`-th call of these kinds fails. Returns the exit status.
    int run(long number, int kinds)
    {
        if (!old_.empty())
            folder_.write("data/index.sqlite", old_);
        FaultyProgram program({QUARRYNET_SERVICES, "index", "--data", data(), "--packages", folder_.path() + "/list",
                               "--mirror", "http://mirror.example", "--folder", folder_.path() + "/docs", "--pictures",
                               folder_.path() + "/pics"},
                              folder_.path(), number, kinds);
        const int status = program.wait();
        failed_ = program.failed();
        errors_ = program.errors();
        return status;
    }

    /// Runs and judges. Returns whether a call failed.
    bool judge(long number, int kinds)
    {
        const int status = run(number, kinds);
        SCOPED_TRACE("call " + std::to_string(number) + ", status " + std::to_string(status) + "\n" + errors_);
        if (status == 0) {
            // Unreadable contents of the folders are reported; everything else must be in the index.
            const bool told = errors_.find("left out, such as " + folder_.path()) != std::string::npos;
            const std::string now = dumpOf(data());
            if (told)
                EXPECT_NE(now.find("crawled.zip"), std::string::npos) << now;
            else
                EXPECT_EQ(now, whole_);
            EXPECT_TRUE(failed_ || !told);
        } else {
            EXPECT_TRUE(failed_);
            EXPECT_EQ(status, 1);
            EXPECT_EQ(errors_.rfind("quarrynet-services: "), errors_.find("quarrynet-services: ", last(errors_)));
            EXPECT_GT(errors_.size() - last(errors_), sizeof "quarrynet-services: ");
            EXPECT_EQ(fileContent(indexPath(data())), old_);
        }
        std::set<std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(data()))
            files.insert(entry.path().filename().string());
        // This file stays until the next run if its removal failed.
        files.erase("index.sqlite.new");
        EXPECT_EQ(files, (std::set<std::string>{"index.lock", "index.sqlite"}));
        return failed_;
    }

    /// Returns the offset of the last line.
    static std::size_t last(const std::string& lines)
    {
        const std::size_t end = lines.size() < 2 ? std::string::npos : lines.rfind('\n', lines.size() - 2);
        return end == std::string::npos ? 0 : end + 1;
    }

    /// Makes each of the first `eachUpTo` calls fail, then calls at growing distances (most of them are SQLite's),
    /// until none fails any more. Returns the last number.
    long judgeAll(int kinds, long eachUpTo)
    {
        const long number =
            failCallsUntil(eachUpTo, 40, [&](long call) { return judge(call, kinds) && !HasFailure(); });
        // The last run had no fault and has removed what earlier runs left behind.
        EXPECT_FALSE(std::filesystem::exists(indexPath(data()) + ".new"));
        return number;
    }

    std::string data() const { return folder_.path() + "/data"; }

    TemporaryFolder folder_;
    std::string old_;
    std::string whole_;
    std::string errors_;
    bool failed_ = false;
};

} // namespace

TEST_F(IndexFaults, Files)
{
    EXPECT_GT(judgeAll(QuarrynetFileFaults, 1000), 200);
}

TEST_F(IndexFaults, Memory)
{
    EXPECT_GT(judgeAll(QuarrynetMemoryFaults, 400), 3000);
}

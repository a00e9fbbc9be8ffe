#include <gtest/gtest.h>

#include "FaultyProgram.h"
#include "index_dump.h"
#include "tests/services/support/ftp_support.h"
#include "tests/services/support/service_support.h"

/// Each call that a crawl makes fails once, in the real program. Then the index has the whole crawl, or the program
/// reports what could not be listed, or the old index stays.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

class CrawlFaults : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::string list = folder_.write("list", "Package: apple\nHomepage: http://apple.example/\n");
        FaultyProgram index({QUARRYNET_SERVICES, "index", "--data", data(), "--packages", list, "--folder",
                             folder_.path() + "/none", "--pictures", folder_.path() + "/none"},
                            folder_.path(), 0, 0);
        ASSERT_EQ(index.wait(), 0) << index.errors();
        old_ = fileContent(indexPath(data()));
        FaultyProgram plain(crawl(), folder_.path(), 0, 0);
        ASSERT_EQ(plain.wait(), 0) << plain.errors();
        whole_ = dumpOf(data());
        ASSERT_NE(whole_.find("inner.zip"), std::string::npos) << whole_;
    }

    std::vector<std::string> crawl() const
    {
        return {QUARRYNET_SERVICES, "crawl", "--data", data(), "--rate", "1000", server_.site() + "/pub"};
    }

    bool judge(long number, int kinds)
    {
        folder_.write("data/index.sqlite", old_);
        FaultyProgram program(crawl(), folder_.path(), number, kinds);
        const int status = program.wait();
        const std::string errors = program.errors();
        SCOPED_TRACE("call " + std::to_string(number) + ", status " + std::to_string(status) + "\n" + errors);
        if (status == 0) {
            const std::string now = dumpOf(data());
            if (errors.find("could not be listed") != std::string::npos)
                EXPECT_NE(now.find("apple.example"), std::string::npos) << now;
            else
                EXPECT_EQ(now, whole_);
        } else {
            EXPECT_TRUE(program.failed());
            EXPECT_EQ(status, 1);
            EXPECT_NE(errors.find("quarrynet-services: "), std::string::npos);
            EXPECT_EQ(fileContent(indexPath(data())), old_);
        }
        return program.failed();
    }

    /// Makes each of the first `eachUpTo` calls fail, then calls at growing distances, until none fails any more.
    /// Returns the last number.
    long judgeAll(int kinds, long eachUpTo)
    {
        const long number =
            failCallsUntil(eachUpTo, 15, [&](long call) { return judge(call, kinds) && !HasFailure(); });
        EXPECT_FALSE(std::filesystem::exists(indexPath(data()) + ".new"));
        return number;
    }

    std::string data() const { return folder_.path() + "/data"; }

    TemporaryFolder folder_;
    TestServer server_{[](int socket) {
        MadeUpFtp::serve(socket, [](const std::string&, const std::string& path) {
            const bool outer = path == "pub" || path == "pub/" || path == "/pub" || path == "/pub/";
            return MadeUpFtp::Reply{226, outer ? "type=file;size=5; outer.zip\r\ntype=dir; sub\r\n"
                                               : "type=file;size=7; inner.zip\r\n"};
        });
    }};
    std::string old_;
    std::string whole_;
};

} // namespace

TEST_F(CrawlFaults, Files)
{
    EXPECT_GT(judgeAll(QuarrynetFileFaults, 150), 40);
}

TEST_F(CrawlFaults, Network)
{
    EXPECT_GT(judgeAll(QuarrynetNetworkFaults, 1000), 10);
}

TEST_F(CrawlFaults, Memory)
{
    EXPECT_GT(judgeAll(QuarrynetMemoryFaults, 100), 500);
}

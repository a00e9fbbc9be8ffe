#include <gtest/gtest.h>

#include "FaultyProgram.h"
#include "tests/services/support/live_support.h"
#include "tests/services/support/service_support.h"

/// Each call that `check` makes to read its configuration and to ask an instance fails once, in the real program. Then
/// it says that the instance answers, or why not.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

class LiveFaults : public testing::Test
{
protected:
    void SetUp() override
    {
        config_ = folder_.write("services.toml", "[web]\nsources = [\"" + server_.site() +
                                                     "\"]\n[image]\nsources = [\"" + server_.site() + "\"]\n");
        FaultyProgram plain(check(), folder_.path(), 0, 0);
        ASSERT_EQ(plain.wait(), 0) << plain.errors();
    }

    std::vector<std::string> check() const
    {
        return {QUARRYNET_SERVICES, "check", "--config", config_, "--data", folder_.path() + "/data"};
    }

    bool judge(long number, int kinds)
    {
        FaultyProgram program(check(), folder_.path(), number, kinds);
        const std::string table = program.readAll();
        const int status = program.wait();
        const std::string errors = program.errors();
        SCOPED_TRACE("call " + std::to_string(number) + ", status " + std::to_string(status) + "\n" + errors + table);
        if (status == 0) {
            // A line of output may be lost; what is said is true.
            EXPECT_EQ(table.find("FAILED"), std::string::npos);
        } else {
            EXPECT_TRUE(program.failed());
            EXPECT_EQ(status, 1);
            EXPECT_TRUE(errors.find("quarrynet-services: ") != std::string::npos ||
                        table.find("FAILED") != std::string::npos);
        }
        return program.failed();
    }

    long judgeAll(int kinds, long eachUpTo)
    {
        return failCallsUntil(eachUpTo, 15, [&](long call) { return judge(call, kinds) && !HasFailure(); });
    }

    TemporaryFolder folder_;
    LoopbackServer server_{[](const HttpRequest&) { return jsonResponse(searxJson("https://a.example/", 1, 10)); }};
    std::string config_;
};

} // namespace

TEST_F(LiveFaults, Files)
{
    EXPECT_GT(judgeAll(QuarrynetFileFaults, 150), 5);
}

TEST_F(LiveFaults, Network)
{
    EXPECT_GT(judgeAll(QuarrynetNetworkFaults | QuarrynetSocketStateFaults | QuarrynetWaitFaults, 1000), 10);
}

TEST_F(LiveFaults, Memory)
{
    EXPECT_GT(judgeAll(QuarrynetMemoryFaults, 100), 200);
}

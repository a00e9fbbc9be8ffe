#include <gtest/gtest.h>

#include "../core/faulty_exchange.h"
#include "faults.h"

/// Each allocation of a search fails once. Then the tab is idle, there was a message, and the next search shows its
/// whole result.

using namespace quarrynet;

TEST(ExchangeFaults, Memory)
{
    std::optional<FaultySearch> search;
    const long calls = failEveryCall(
        QuarrynetMemoryFaults, [&] { search.emplace(); }, [&] { search->search(); },
        [&](long number, bool failed) {
            SCOPED_TRACE("allocation " + std::to_string(number));
            EXPECT_TRUE(search->isIdle()) << search->connection << search->button << search->timer;
            EXPECT_EQ(search->messages >= 1, failed);
            EXPECT_EQ(search->body.value_or(std::string(kWholeBody)), kWholeBody);
            search->search();
            EXPECT_TRUE(search->isIdle());
            EXPECT_EQ(search->messages, 0);
            EXPECT_EQ(search->body, kWholeBody);
        });
    EXPECT_GE(calls, 12);
}

#include <gtest/gtest.h>

#include "faulty_exchange.h"

/// Each operation of the socket and the tab fails once, at each step of a search. Then the tab is idle, there was a
/// message, and the next search shows its whole result.

using namespace quarrynet;

namespace {

constexpr long kTooMany = 1000;

/// Makes the first operation fail, then the second and so on, until a search has fewer. Returns how many failed.
long failEachOperation(Fault fault, std::size_t errorAt)
{
    for (long number = 1; number < kTooMany; ++number) {
        SCOPED_TRACE("operation " + std::to_string(number) + ", error at event " + std::to_string(errorAt));
        FaultySearch search;
        search.failAt(number, fault);
        search.search(errorAt);
        EXPECT_TRUE(search.isIdle()) << search.connection << search.button << search.timer;
        EXPECT_GE(search.messages, search.failed || errorAt < FaultySearch::kEvents ? 1 : 0);
        EXPECT_TRUE(search.errors == search.messages || fault == Fault::MemoryBefore || fault == Fault::MemoryAfter);
        EXPECT_EQ(search.body.value_or(std::string(kWholeBody)), kWholeBody);
        const bool failed = search.failed;

        search.failAt(0, Fault::None);
        search.search();
        EXPECT_TRUE(search.isIdle());
        EXPECT_EQ(search.messages, 0);
        EXPECT_EQ(search.activity, "");
        EXPECT_EQ(search.body, kWholeBody);
        if (!failed)
            return number - 1;
        if (testing::Test::HasFailure())
            break;
    }
    return kTooMany;
}

class FetchSessionFaults : public testing::TestWithParam<Fault>
{};

} // namespace

TEST_P(FetchSessionFaults, EndASearchWithAMessageAndLeaveTheNextOneWhole)
{
    const long operations = failEachOperation(GetParam(), FaultySearch::kEvents);
    EXPECT_GE(operations, GetParam() == Fault::MemoryBefore || GetParam() == Fault::MemoryAfter ? 20 : 6);
    EXPECT_LT(operations, kTooMany);
}

TEST_P(FetchSessionFaults, OnTopOfAnErrorAtEachStep)
{
    for (std::size_t event = 0; event < FaultySearch::kEvents; ++event)
        EXPECT_LT(failEachOperation(GetParam(), event), kTooMany);
}

INSTANTIATE_TEST_SUITE_P(Each, FetchSessionFaults,
                         testing::Values(Fault::MemoryBefore, Fault::MemoryAfter, Fault::ErrorWithin,
                                         Fault::ErrorAfter),
                         [](const auto& chosen) {
                             switch (chosen.param) {
                             case Fault::MemoryBefore:
                                 return "MemoryBefore";
                             case Fault::MemoryAfter:
                                 return "MemoryAfter";
                             case Fault::ErrorWithin:
                                 return "ErrorWithin";
                             default:
                                 return "ErrorAfter";
                             }
                         });

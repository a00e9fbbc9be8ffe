#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "search/page/reduction/HashSlots.h"

using namespace quarrynet;

namespace {

// Values whose hash is the remainder of a division. The record with the number n is `values_[n - 1]`.
class Values
{
public:
    explicit Values(std::uint32_t hashes) : hashes_(hashes) {}

    void add(std::uint32_t value)
    {
        values_.push_back(value);
        slots_.add(value % hashes_, static_cast<std::uint32_t>(values_.size()));
    }
    std::uint32_t find(std::uint32_t value) const
    {
        return slots_.find(value % hashes_, [&](std::uint32_t number) {
            ++compared_;
            return values_[number - 1] == value;
        });
    }
    void expect(std::size_t count) { slots_.expect(count); }
    std::size_t compared() const { return compared_; }

private:
    std::uint32_t hashes_;
    HashSlots slots_;
    std::vector<std::uint32_t> values_;
    mutable std::size_t compared_ = 0;
};

} // namespace

TEST(HashSlots, AddedRecordsAreFoundAndOthersNot)
{
    Values values(0xFFFFFFFF);
    for (std::uint32_t i = 0; i < 30000; ++i) {
        ASSERT_EQ(values.find(3 * i), HashSlots::kNone);
        values.add(3 * i);
    }
    for (std::uint32_t i = 0; i < 30000; ++i) {
        ASSERT_EQ(values.find(3 * i), i + 1);
        ASSERT_EQ(values.find(3 * i + 1), HashSlots::kNone);
    }
}

TEST(HashSlots, EmptyTableFindsNothing)
{
    EXPECT_EQ(Values(10).find(7), HashSlots::kNone);
}

TEST(HashSlots, RecordsOfOneHashStayApart)
{
    Values values(2);
    for (std::uint32_t i = 0; i < 300; ++i)
        values.add(i);
    for (std::uint32_t i = 0; i < 300; ++i)
        ASSERT_EQ(values.find(i), i + 1);
    EXPECT_EQ(values.find(300), HashSlots::kNone);
}

TEST(HashSlots, RecordsOfOtherHashesAreNotCompared)
{
    Values values(0xFFFFFFFF);
    for (std::uint32_t i = 0; i < 1000; ++i)
        values.add(64 * i); // all of them start at the same slot of a small table
    EXPECT_EQ(values.find(64 * 1000), HashSlots::kNone);
    EXPECT_EQ(values.compared(), 0u);
}

TEST(HashSlots, FoundBehindWhatWasExpectedToo)
{
    Values values(0xFFFFFFFF);
    values.expect(100);
    for (std::uint32_t i = 0; i < 1000; ++i)
        values.add(i);
    for (std::uint32_t i = 0; i < 1000; ++i)
        ASSERT_EQ(values.find(i), i + 1);
}

#include <limits>
#include <map>

#include <gtest/gtest.h>

#include "index/name_blocks.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

std::string varint(std::uint64_t number)
{
    std::string bytes;
    appendVarint(bytes, number);
    return bytes;
}

std::vector<std::uint32_t> slotsOf(std::string_view text)
{
    std::vector<std::uint32_t> slots;
    forEachTrigram(text, [&slots](std::uint32_t slot) { slots.push_back(slot); });
    return slots;
}

} // namespace

TEST(Varint, NumbersReadBack)
{
    for (const std::uint64_t number : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{127}, std::uint64_t{128},
                                       std::uint64_t{300}, std::uint64_t{1} << 40U, (std::uint64_t{1} << 63U) - 1}) {
        const ExactCopy bytes(varint(number) + "x");
        std::string_view rest = bytes.view();
        EXPECT_EQ(takeVarint(rest), number);
        EXPECT_EQ(rest, "x");
    }
    EXPECT_EQ(varint(127).size(), 1U);
    EXPECT_EQ(varint(128).size(), 2U);
}

TEST(Varint, CutOrEndlessNumberIsNone)
{
    for (const std::string& bytes : {std::string(), std::string("\x80"), std::string("\xff\xff"),
                                     std::string(9, '\xff'), std::string(100, '\xff')}) {
        const ExactCopy copy(bytes);
        std::string_view rest = copy.view();
        EXPECT_FALSE(takeVarint(rest));
    }
}

TEST(Trigrams, LettersMatchInBothCases)
{
    EXPECT_EQ(slotsOf("ab"), std::vector<std::uint32_t>());
    EXPECT_EQ(slotsOf("AbC1"), slotsOf("aBc1"));
    EXPECT_EQ(slotsOf("abcd").size(), 2U);
    EXPECT_NE(slotsOf("abc"), slotsOf("acb"));
    for (const std::uint32_t slot : slotsOf(std::string("\xff\xff\xff\0\0\0z{|}~", 11)))
        EXPECT_LT(slot, kTrigramSlots);
}

TEST(TrigramLists, ListNamesEachBlockOnce)
{
    TrigramLists lists;
    lists.add(1, "abcabc");
    lists.add(7, "xabc");
    lists.add(300, "ABC");
    lists.add(301, "other");
    std::map<std::uint32_t, std::vector<std::uint32_t>> blocks;
    ASSERT_TRUE(lists.forEach([&blocks](std::uint32_t slot, std::string_view list) {
        blocks[slot] = readBlockList(ExactCopy(list).view());
        return Outcome<Done>(Done{});
    }));
    EXPECT_EQ(blocks[slotsOf("abc").front()], (std::vector<std::uint32_t>{1, 7, 300}));
    EXPECT_EQ(blocks[slotsOf("the").front()], (std::vector<std::uint32_t>{301}));
    EXPECT_FALSE(lists.forEach([](std::uint32_t, std::string_view) { return Outcome<Done>(Failure{"full"}); }));
}

TEST(TrigramLists, DamagedListEndsEarly)
{
    const std::string good = varint(3) + varint(4);
    EXPECT_EQ(readBlockList(good + varint(0) + varint(1)), (std::vector<std::uint32_t>{3, 7}));
    EXPECT_EQ(readBlockList(good + varint(std::numeric_limits<std::uint32_t>::max())),
              (std::vector<std::uint32_t>{3, 7}));
    EXPECT_EQ(readBlockList(good + "\xff"), (std::vector<std::uint32_t>{3, 7}));
    EXPECT_TRUE(readBlockList("").empty());
}

TEST(Places, PlacesReadBackFromAnyStart)
{
    const std::vector<ListedPlace> places{{0, 5}, {0, 9}, {200, 1}, {70000, 70000}};
    std::string bytes;
    appendPlaces(bytes, places);
    appendPlaces(bytes, {{4, 4}});
    const ExactCopy copy(bytes);
    std::string_view rest = copy.view();
    const std::optional<EncodedPlaces> first = takePlaces(rest);
    const std::optional<EncodedPlaces> second = takePlaces(rest);
    ASSERT_TRUE(first && second);
    EXPECT_TRUE(rest.empty());
    EXPECT_EQ(first->count, 4U);
    EXPECT_EQ(readPlaces(*first, 0, 10), places);
    EXPECT_EQ(readPlaces(*first, 2, 1), (std::vector<ListedPlace>{{200, 1}}));
    EXPECT_TRUE(readPlaces(*first, 4, 10).empty());
    EXPECT_EQ(readPlaces(*second, 0, 10), (std::vector<ListedPlace>{{4, 4}}));
}

TEST(Places, CutPlacesAreNone)
{
    std::string bytes;
    appendPlaces(bytes, {{1, 2}, {3, 4}});
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const ExactCopy copy(std::string_view(bytes).substr(0, length));
        std::string_view rest = copy.view();
        EXPECT_FALSE(takePlaces(rest)) << length;
    }
    EXPECT_LE(readPlaces({1000, "\x01\x02\x03"}, 0, 1000).size(), 1U);
}

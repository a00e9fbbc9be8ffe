#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ground/CurrentTask.h"
#include "thumbnails/ThumbnailCache.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

/// Requests entries from the cache and counts how many were made.
class Counted
{
public:
    explicit Counted(std::size_t bytes) : cache(bytes) {}

    ThumbnailCache::Thumbnail get(const std::string& key, ThumbnailCache::Thumbnail value)
    {
        return cache.get(key, [&] {
            ++made;
            return value;
        });
    }

    ThumbnailCache cache;
    std::atomic<int> made = 0;
};

} // namespace

TEST(ThumbnailCache, MakesEachOnce)
{
    Counted counted(1 << 20);
    EXPECT_EQ(counted.get("a", "1"), "1");
    EXPECT_EQ(counted.get("a", "2"), "1");
    EXPECT_EQ(counted.get("b", std::nullopt), std::nullopt);
    EXPECT_EQ(counted.get("b", "3"), std::nullopt);
    EXPECT_EQ(counted.made, 2);
}

TEST(ThumbnailCache, TheLeastRecentlyUsedGoesFirstAndTheBoundHolds)
{
    constexpr std::size_t kBound = 10'000;
    Counted counted(kBound);
    for (int i = 0; i < 100; ++i) {
        (void)counted.get(std::to_string(i), std::string(1000, 'x'));
        (void)counted.get("0", "kept by use");
        EXPECT_LE(counted.cache.bytes(), kBound);
    }
    EXPECT_EQ(counted.made, 100);
    (void)counted.get("99", "");
    EXPECT_EQ(counted.made, 100);
    (void)counted.get("1", "");
    EXPECT_EQ(counted.made, 101);
}

TEST(ThumbnailCache, WhatIsLargerThanTheCacheIsGivenButNotKept)
{
    Counted counted(1000);
    EXPECT_EQ(counted.get("a", std::string(5000, 'x')), std::string(5000, 'x'));
    EXPECT_EQ(counted.cache.bytes(), 0U);
    (void)counted.get("a", "");
    EXPECT_EQ(counted.made, 2);
}

TEST(ThumbnailCache, AskedByManyAtOnceItIsMadeOnce)
{
    Counted counted(1 << 20);
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            for (int key = 0; key < 200; ++key)
                EXPECT_EQ(counted.get(std::to_string(key), std::to_string(key)), std::to_string(key));
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counted.made, 200);
}

TEST(ThumbnailCache, AFaultWhileMakingLeavesTheKeyFree)
{
    Counted counted(1 << 20);
    EXPECT_THROW((void)counted.cache.get("a", []() -> ThumbnailCache::Thumbnail { throw std::runtime_error("x"); }),
                 std::runtime_error);
    EXPECT_EQ(counted.get("a", "1"), "1");
}

TEST(ThumbnailCache, WhatWasAbandonedIsNotKeptAndNotWaitedFor)
{
    Counted counted(1 << 20);
    std::atomic<bool> abandoned = true;
    {
        const CurrentTask task(abandoned);
        (void)counted.get("a", std::nullopt);
        (void)counted.cache.get("b", [&]() -> ThumbnailCache::Thumbnail {
            std::thread([&] {
                const CurrentTask other(abandoned);
                EXPECT_EQ(counted.get("b", "never made"), std::nullopt);
            }).join();
            return "1";
        });
    }
    EXPECT_EQ(counted.get("a", "2"), "2");
    EXPECT_EQ(counted.get("b", "3"), "3");
}

#include <vector>

#include <gtest/gtest.h>

#include "search/page/reduction/ListPool.h"

using namespace quarrynet;

namespace {

std::vector<int> elements(const ListPool<int>& pool, const ListPool<int>::List& list)
{
    const auto all = pool.of(list);
    return {all.begin(), all.end()};
}

} // namespace

TEST(ListPool, NewListIsEmpty)
{
    EXPECT_TRUE(ListPool<int>().of({}).empty());
}

TEST(ListPool, ListKeepsTheOrder)
{
    ListPool<int> pool;
    ListPool<int>::List list;
    pool.append(list, 5);
    EXPECT_EQ(elements(pool, list), std::vector<int>({5}));
    pool.append(list, 3);
    EXPECT_EQ(elements(pool, list), std::vector<int>({5, 3}));
    pool.append(list, 5);
    EXPECT_EQ(elements(pool, list), std::vector<int>({5, 3, 5}));
}

TEST(ListPool, ListsThatGrowByTurnsStayApart)
{
    ListPool<int> pool;
    std::vector<ListPool<int>::List> lists(500);
    std::vector<std::vector<int>> expected(lists.size());
    for (int round = 1; round <= 20; ++round) {
        for (std::size_t i = 0; i < lists.size(); i += static_cast<std::size_t>(round)) {
            pool.append(lists[i], round);
            expected[i].push_back(round);
        }
    }
    for (std::size_t i = 0; i < lists.size(); ++i)
        ASSERT_EQ(elements(pool, lists[i]), expected[i]) << i;
}

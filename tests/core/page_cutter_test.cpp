#include <algorithm>

#include <gtest/gtest.h>

#include "common/PageCutter.h"
#include "common/memory.h"

using namespace quarrynet;

TEST(PageCutter, CutsAsTheFreeFunctionDoes)
{
    PageCutter cutter("abcdef");
    EXPECT_EQ(*cutter.cut(2, 3), "bcd");
    EXPECT_EQ(*cutter.cut(5, 10), "ef");
    EXPECT_EQ(cutter.cut(1, -1).error(), RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(cutter.cut(0, 1).error(), RuntimeError::InvalidProcedureCall);
}

TEST(PageCutter, TextsFarBeyondThePageRunOutOfMemory)
{
    const std::string page(std::size_t{1} << 20, 'x');
    PageCutter cutter(page, std::size_t{20} << 20);
    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(cutter.cut(1, 1 << 20)) << i;
    EXPECT_EQ(cutter.cut(1, 1).error(), RuntimeError::OutOfMemory);
    EXPECT_EQ(cutter.cut(1, -1).error(), RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(*cutter.cut(1, 0), "");
}

TEST(PageCutter, ChargesCountAsCutsDo)
{
    PageCutter cutter("", std::size_t{16} << 20);
    EXPECT_TRUE(cutter.charge(std::size_t{16} << 20));
    EXPECT_FALSE(cutter.charge(1));
    EXPECT_TRUE(cutter.charge(0));
}

TEST(PageCutter, FourTimesThePageAreAlwaysAllowed)
{
    const std::string page(1000, 'x');
    PageCutter cutter(page, 3999);
    EXPECT_TRUE(cutter.charge(4000));
    EXPECT_FALSE(cutter.charge(1));
}

TEST(PageCutter, AllowsAShareOfTheMachinesMemory)
{
    PageCutter cutter("x");
    EXPECT_TRUE(cutter.charge(textAllowance()));
    EXPECT_FALSE(cutter.charge(1));
    EXPECT_GE(textAllowance(), std::min(physicalMemory() / 16, std::size_t{1} << 30));
    EXPECT_LE(textAllowance(), physicalMemory() / 16);
    EXPECT_EQ(responseAllowance(), physicalMemory() / 4);
}

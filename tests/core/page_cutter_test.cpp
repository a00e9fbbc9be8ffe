#include <gtest/gtest.h>

#include "common/page_cutter.h"

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
    PageCutter cutter(page);
    for (int i = 0; i < 20; ++i) // 16 MiB and four times the page
        ASSERT_TRUE(cutter.cut(1, 1 << 20)) << i;
    EXPECT_EQ(cutter.cut(1, 1).error(), RuntimeError::OutOfMemory);
    EXPECT_EQ(cutter.cut(1, -1).error(), RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(*cutter.cut(1, 0), "");
}

TEST(PageCutter, ChargesCountAsCutsDo)
{
    PageCutter cutter("");
    EXPECT_TRUE(cutter.charge(std::size_t{16} << 20));
    EXPECT_FALSE(cutter.charge(1));
    EXPECT_TRUE(cutter.charge(0));
}

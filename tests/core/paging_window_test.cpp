#include <limits>

#include <gtest/gtest.h>

#include "common/paging_window.h"

using namespace quarrynet;

namespace {

constexpr PagingWindow kAtTen{1, 10, 10};

} // namespace

TEST(WidenedWindow, BelowTheMaximumNothingChanges)
{
    const PagingWindow window{1, 10, 9};
    EXPECT_EQ(*widenedWindow(window, "25"), window);
    EXPECT_EQ(*widenedWindowByLeadingTotal(window, "25"), window);
    EXPECT_EQ(*widenedWindowWithoutTotal(window), window);
}

TEST(WidenedWindow, BelowTheMaximumTheTotalIsNotRead)
{
    EXPECT_TRUE(widenedWindow({1, 10, 9}, "no number"));
}

TEST(WidenedWindow, TwentyFivePagesAreReachedInTwoSteps)
{
    const PagingWindow next = *widenedWindow(kAtTen, "25");
    EXPECT_EQ(next, (PagingWindow{10, 19, 10}));
    EXPECT_EQ(*widenedWindow({next.minimum, next.maximum, 19}, "25"), (PagingWindow{10, 25, 19}));
}

TEST(WidenedWindow, TotalBelowNineMorePagesBecomesTheMaximum)
{
    EXPECT_EQ(*widenedWindow(kAtTen, "12"), (PagingWindow{1, 12, 10}));
    EXPECT_EQ(*widenedWindow(kAtTen, "18"), (PagingWindow{1, 18, 10}));
    EXPECT_EQ(*widenedWindow(kAtTen, "19"), (PagingWindow{10, 19, 10}));
    EXPECT_EQ(*widenedWindow(kAtTen, "50"), (PagingWindow{10, 19, 10}));
}

TEST(WidenedWindow, TotalBelowTheValueBecomesTheMaximumAndTheValueFollows)
{
    EXPECT_EQ(*widenedWindow(kAtTen, "9"), (PagingWindow{1, 9, 9}));
    EXPECT_EQ(*widenedWindow({10, 19, 19}, "15"), (PagingWindow{10, 15, 15}));
    EXPECT_EQ(*widenedWindowByLeadingTotal({10, 19, 19}, "15"), (PagingWindow{10, 15, 15}));
}

// The window would be 10 to 6, which is impossible; the slider used to keep the minimum and stay stuck until a new
// search.
TEST(WidenedWindow, TotalNotAboveTheMinimumBringsTheFirstPageBack)
{
    for (const auto& widened : {widenedWindow({10, 19, 19}, "6"), widenedWindowByLeadingTotal({10, 19, 19}, "6")})
        EXPECT_EQ(*widened, (PagingWindow{1, 6, 6}));
    EXPECT_EQ(*widenedWindow({10, 19, 19}, "10"), (PagingWindow{1, 10, 10}));
    EXPECT_EQ(*widenedWindow({10, 19, 19}, "11"), (PagingWindow{10, 11, 11}));
    for (const char* none : {"1", "0", "-5", "0.4"})
        EXPECT_EQ(*widenedWindow({10, 19, 19}, none), (PagingWindow{1, 1, 1})) << none;
}

TEST(WindowEndingAt, KeepsWhatLiesBelowTheLastPage)
{
    EXPECT_EQ(windowEndingAt({1, 10, 1}, 6), (PagingWindow{1, 6, 1}));
    EXPECT_EQ(windowEndingAt({10, 19, 12}, 14), (PagingWindow{10, 14, 12}));
    EXPECT_EQ(windowEndingAt({10, 19, 12}, 19), (PagingWindow{10, 19, 12}));
}

TEST(WindowEndingAt, BeginsAtOneWhereNothingWouldBeLeft)
{
    EXPECT_EQ(windowEndingAt({10, 19, 12}, 6), (PagingWindow{1, 6, 6}));
    EXPECT_EQ(windowEndingAt({10, 19, 12}, 10), (PagingWindow{1, 10, 10}));
    EXPECT_EQ(windowEndingAt({1, 10, 4}, 1), (PagingWindow{1, 1, 1}));
    EXPECT_EQ(windowEndingAt({10, 19, 12}, std::numeric_limits<std::int32_t>::min()), (PagingWindow{1, 1, 1}));
}

TEST(WidenedWindow, FractionsAreRoundedHalvesToEven)
{
    EXPECT_EQ(widenedWindow(kAtTen, "12.5")->maximum, 12);
    EXPECT_EQ(widenedWindow(kAtTen, "13.5")->maximum, 14);
}

TEST(WidenedWindow, TotalThatIsNoNumberIsATypeMismatch)
{
    EXPECT_EQ(widenedWindow(kAtTen, "").error(), RuntimeError::TypeMismatch);
    EXPECT_EQ(widenedWindow(kAtTen, "enabled").error(), RuntimeError::TypeMismatch);
    EXPECT_EQ(widenedWindow(kAtTen, "12 pages").error(), RuntimeError::TypeMismatch);
}

TEST(WidenedWindow, BoundsBeyond32BitsAreAnOverflow)
{
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(widenedWindow({1, kMost, kMost}, "99999999999").error(), RuntimeError::Overflow);
    EXPECT_EQ(widenedWindow(kAtTen, "-99999999999").error(), RuntimeError::Overflow);
    EXPECT_EQ(widenedWindowWithoutTotal({1, kMost - 8, kMost - 8}).error(), RuntimeError::Overflow);
    EXPECT_EQ(*widenedWindowWithoutTotal({1, kMost - 9, kMost - 9}), (PagingWindow{kMost - 9, kMost, kMost - 9}));
}

TEST(WidenedWindowByLeadingTotal, FixedThirteenCapsThePages)
{
    EXPECT_EQ(*widenedWindowByLeadingTotal(kAtTen, "13"), (PagingWindow{1, 13, 10}));
    EXPECT_EQ(*widenedWindowByLeadingTotal({1, 13, 13}, "13"), (PagingWindow{1, 13, 13}));
    EXPECT_EQ(*widenedWindowByLeadingTotal(kAtTen, "40"), (PagingWindow{10, 19, 10}));
}

TEST(WidenedWindowByLeadingTotal, EmptyTotalComparesAsZeroAndIsNoMaximum)
{
    EXPECT_EQ(widenedWindowByLeadingTotal(kAtTen, "").error(), RuntimeError::TypeMismatch);
}

TEST(WidenedWindowByLeadingTotal, TotalWithATailIsOnlyReadAsFarAsTheComparison)
{
    EXPECT_EQ(*widenedWindowByLeadingTotal(kAtTen, "40 pages"), (PagingWindow{10, 19, 10}));
    EXPECT_EQ(widenedWindowByLeadingTotal(kAtTen, "13 pages").error(), RuntimeError::TypeMismatch);
}

TEST(WidenedWindowWithoutTotal, MovesOnAtTheMaximumForEver)
{
    EXPECT_EQ(*widenedWindowWithoutTotal(kAtTen), (PagingWindow{10, 19, 10}));
    EXPECT_EQ(*widenedWindowWithoutTotal({10, 19, 19}), (PagingWindow{19, 28, 19}));
}

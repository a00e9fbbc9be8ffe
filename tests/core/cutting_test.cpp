#include <gtest/gtest.h>

#include "common/cutting.h"

using namespace quarrynet;

TEST(Find, PositionsStartAtOne)
{
    EXPECT_EQ(findMarker("abcabc", "a", 1), 1);
    EXPECT_EQ(findMarker("abcabc", "a", 2), 4);
    EXPECT_EQ(findMarker("abcabc", "A", 1), 0);
}

TEST(Find, FromBelowOneSearchesFromTheStart)
{
    EXPECT_EQ(findMarker("abc", "a", 0), 1);
    EXPECT_EQ(findMarker("abc", "a", -10), 1);
}

TEST(Find, FromBeyondTheEndFindsNothing)
{
    EXPECT_EQ(findMarker("abc", "c", 4), 0);
    EXPECT_EQ(findMarker("abc", "c", 1000), 0);
    EXPECT_EQ(findMarker("", "c", 1), 0);
}

TEST(Find, EmptyMarkerIsFoundWhereTheSearchBegins)
{
    EXPECT_EQ(findMarker("abc", "", 1), 1);
    EXPECT_EQ(findMarker("abc", "", 4), 4);
    EXPECT_EQ(findMarker("abc", "", 5), 0);
}

TEST(Find, NulAndHighBytesAreBytesLikeOthers)
{
    const std::string_view text("a\0\xff\0b", 5);
    EXPECT_EQ(findMarker(text, std::string_view("\0b", 2), 1), 4);
    EXPECT_EQ(findMarker(text, "\xff", 1), 3);
}

TEST(Cut, GivesTheTextFromAStart)
{
    EXPECT_EQ(*cut("abcdef", 2, 3), "bcd");
    EXPECT_EQ(*cut("abcdef", 2, 0), "");
}

TEST(Cut, BeyondTheEndIsShorterOrEmpty)
{
    EXPECT_EQ(*cut("abc", 3, 100), "c");
    EXPECT_EQ(*cut("abc", 4, 1), "");
    EXPECT_EQ(*cut("abc", 400, 1), "");
}

TEST(Cut, NegativeLengthOrStartBelowOneFails)
{
    EXPECT_EQ(cut("abc", 1, -1).error(), RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(cut("abc", 0, 1).error(), RuntimeError::InvalidProcedureCall);
}

TEST(CutFrom, GivesTheRest)
{
    EXPECT_EQ(cutFrom("abc", 2), "bc");
    EXPECT_EQ(cutFrom("abc", 4), "");
    EXPECT_EQ(cutFrom("abc", 99), "");
    EXPECT_EQ(cutFrom("abc", -1), "abc");
}

TEST(TrimBlanks, TakesSpacesOnly)
{
    EXPECT_EQ(trimBlanks("  a b  "), "a b");
    EXPECT_EQ(trimBlanks("\t a \n"), "\t a \n");
    EXPECT_EQ(trimBlanks("   "), "");
    EXPECT_EQ(trimBlanks(""), "");
}

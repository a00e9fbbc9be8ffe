#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/cell_figure.h"

using namespace quarrynet;

namespace {

constexpr double kKilo = 1024;
constexpr double kMega = kKilo * 1024;

} // namespace

TEST(CellFigure, Numbers)
{
    EXPECT_EQ(cellFigure("0"), 0.0);
    EXPECT_EQ(cellFigure("42"), 42.0);
    EXPECT_EQ(cellFigure("  7 "), 7.0);
    EXPECT_EQ(cellFigure("0.25"), 0.25);
    EXPECT_EQ(cellFigure(".5"), 0.5);
    EXPECT_EQ(cellFigure("3."), 3.0);
}

TEST(CellFigure, GroupsOfThreeDigitsBelongTogether)
{
    EXPECT_EQ(cellFigure("1,234"), 1234.0);
    EXPECT_EQ(cellFigure("1,234,567.5"), 1234567.5);
    EXPECT_EQ(cellFigure("12 345 KB"), 12345 * kKilo);
    EXPECT_EQ(cellFigure("12\xc2\xa0"
                         "345"),
              12345.0);
    EXPECT_EQ(cellFigure("1'000"), 1000.0);
}

TEST(CellFigure, AnotherCommaIsADecimalOne)
{
    EXPECT_EQ(cellFigure("1,5 MB"), 1.5 * kMega);
    EXPECT_EQ(cellFigure("1,2345"), 1.2345);
    EXPECT_EQ(cellFigure("1,"), 1.0);
}

TEST(CellFigure, UnitsArePowersOf1024)
{
    EXPECT_EQ(cellFigure("1K"), kKilo);
    EXPECT_EQ(cellFigure("1 kB"), kKilo);
    EXPECT_EQ(cellFigure("1.5 MB"), 1.5 * kMega);
    EXPECT_EQ(cellFigure("2\xc2\xa0MiB"), 2 * kMega);
    EXPECT_EQ(cellFigure("1G"), kKilo * kMega);
    EXPECT_EQ(cellFigure("1 TB"), kMega * kMega);
    EXPECT_EQ(cellFigure("1 pib"), kKilo * kMega * kMega);
    EXPECT_EQ(cellFigure("512 bytes"), 512.0);
    EXPECT_EQ(cellFigure("512 B"), 512.0);
}

TEST(CellFigure, OtherWordsAreNoUnits)
{
    EXPECT_EQ(cellFigure("3 minutes"), 3.0);
    EXPECT_EQ(cellFigure("3 parts"), 3.0);
    EXPECT_EQ(cellFigure("3 mbx"), 3.0);
    EXPECT_EQ(cellFigure("3%"), 3.0);
}

TEST(CellFigure, NothingWithoutANumberAtTheBeginning)
{
    for (const char* text : {"", " ", "<Dir>", "-", "unknown", "about 5", ",", ".", "-5", "\xff", "\xc2"})
        EXPECT_EQ(cellFigure(text), std::nullopt) << text;
    EXPECT_EQ(cellFigure(std::string_view("\0001", 2)), 1.0);
}

TEST(CellFigure, HugeTextsAreCut)
{
    const std::optional<double> huge = cellFigure(std::string(1'000'000, '9'));
    ASSERT_TRUE(huge);
    EXPECT_GT(*huge, 1e300);
    EXPECT_EQ(cellFigure(std::string(1'000'000, ' ') + "5"), std::nullopt);
    const std::optional<double> infinite = cellFigure(std::string(399, '9') + "T");
    ASSERT_TRUE(infinite);
    EXPECT_EQ(*infinite, *infinite); // a number, so that comparing it is an ordering
}

TEST(CellFigure, SizesOfAColumnSortByTheirAmount)
{
    const std::vector<std::string> sorted = {"0", "900", "1 KB", "1,000 KB", "1 MB", "999 MB", "1.2 GB"};
    std::vector<std::string> sizes(sorted.rbegin(), sorted.rend());
    std::sort(sizes.begin(), sizes.end(),
              [](const std::string& a, const std::string& b) { return cellFigure(a) < cellFigure(b); });
    EXPECT_EQ(sizes, sorted);
}

#include <string>

#include <gtest/gtest.h>

#include "common/result_heading.h"
#include "tests/core/page_samples.h"

using namespace quarrynet;

namespace {

std::int32_t pages(std::string_view count, std::int32_t perPage)
{
    return countPages(count, perPage)->pages;
}

} // namespace

TEST(CutResultHeading, AboutCountAndTime)
{
    const ResultHeading heading = cutResultHeading(samples::heading("1,230", "0.27"));
    EXPECT_EQ(heading.countCaption, "1,230");
    EXPECT_EQ(heading.timeCaption, "0.27 Second/s");
    EXPECT_FALSE(heading.fault);
}

TEST(CutResultHeading, ExactCountHasTheShorterMarker)
{
    const ResultHeading heading = cutResultHeading("<b>1</b> - <b>7</b> of <b>7</b>. <b>0.1</b>");
    EXPECT_EQ(heading.countCaption, "7");
    EXPECT_EQ(heading.timeCaption, "0.1 Second/s");
}

TEST(CutResultHeading, AboutMarkerGoesBeforeAnEarlierExactOne)
{
    EXPECT_EQ(cutResultHeading("</b> of <b>1</b></b> of about <b>2</b><b>3</b>").countCaption, "2");
}

TEST(CutResultHeading, WithoutAMarkerTheCountIsCutFromPositionEleven)
{
    const ResultHeading heading = cutResultHeading("0123456789count</b><b>time</b>");
    EXPECT_EQ(heading.countCaption, "count");
    EXPECT_EQ(heading.timeCaption, "time Second/s");
}

TEST(CutResultHeading, EmptyPageAndMissingCountEndAreFaults)
{
    EXPECT_EQ(cutResultHeading("").fault, RuntimeError::InvalidProcedureCall);
    const ResultHeading heading = cutResultHeading("</b> of about <b>12");
    EXPECT_EQ(heading.fault, RuntimeError::InvalidProcedureCall);
    EXPECT_FALSE(heading.countCaption);
}

TEST(CutResultHeading, WithoutATimeTheTextFromPositionThreeIsTaken)
{
    EXPECT_EQ(cutResultHeading("ab time</b> of <b>12</b>").timeCaption, " time Second/s");
}

TEST(CutResultHeading, UnclosedTimeLeavesTheCount)
{
    const ResultHeading heading = cutResultHeading("</b> of about <b>12</b> and <b>0.1");
    EXPECT_EQ(heading.countCaption, "12");
    EXPECT_FALSE(heading.timeCaption);
    EXPECT_EQ(heading.fault, RuntimeError::InvalidProcedureCall);
}

TEST(CountPages, ThirtyAPage)
{
    EXPECT_EQ(pages("1,234", 30), 42);
    EXPECT_EQ(pages("35", 30), 1);
    EXPECT_EQ(pages("60", 30), 60);
    EXPECT_EQ(pages("250", 30), 8);
    EXPECT_EQ(pages("29", 30), 1);
    EXPECT_EQ(pages("31", 30), 2);
    EXPECT_EQ(pages("44", 30), 1);
    EXPECT_EQ(pages("45", 30), 2); // 1.5
    EXPECT_EQ(pages("75", 30), 2); // 2.5
}

TEST(CountPages, TenAPage)
{
    EXPECT_EQ(pages("1,234", 10), 124);
    EXPECT_EQ(pages("1,235", 10), 124);
    EXPECT_EQ(pages("1,245", 10), 124);
    EXPECT_EQ(pages("7", 10), 1);
    EXPECT_EQ(pages("20", 10), 20);
    EXPECT_EQ(pages("95", 10), 10);
    EXPECT_EQ(pages("85", 10), 8);
    EXPECT_EQ(pages("1,230", 10), 1230);
}

TEST(CountPages, TheRuleIsNamed)
{
    EXPECT_EQ(countPages("9", 10)->rule, PageTotal::Rule::LessThanOnePage);
    EXPECT_EQ(countPages("-50", 10)->rule, PageTotal::Rule::LessThanOnePage);
    EXPECT_EQ(countPages("11", 10)->rule, PageTotal::Rule::Rounded);
    EXPECT_EQ(countPages("1,230", 10)->rule, PageTotal::Rule::CountItself);
    EXPECT_EQ(countPages("1,230", 10)->plainCount, "1230");
}

TEST(CountPages, CountThatIsNoNumberIsATypeMismatch)
{
    EXPECT_EQ(countPages("", 30).error(), RuntimeError::TypeMismatch);
    EXPECT_EQ(countPages(",", 30).error(), RuntimeError::TypeMismatch);
    EXPECT_EQ(countPages("many", 30).error(), RuntimeError::TypeMismatch);
    EXPECT_EQ(countPages("12<i>", 30).error(), RuntimeError::TypeMismatch);
    EXPECT_EQ(countPages(std::string_view("12\0", 3), 30).error(), RuntimeError::TypeMismatch);
}

TEST(CountPages, CountAbove32BitsIsAnOverflow)
{
    EXPECT_EQ(pages("2,147,483,647", 30), 71582788);
    EXPECT_EQ(countPages("2,147,483,648", 30).error(), RuntimeError::Overflow);
    EXPECT_EQ(countPages(std::string(400, '9'), 10).error(), RuntimeError::Overflow);
    EXPECT_EQ(pages("2,147,483,640", 10), 2147483640);
}

TEST(OfferPages, OnePageLowersTheMaximumAndLeavesTheSliderUnavailable)
{
    const PagingOffer offer = offerPages(1);
    EXPECT_EQ(offer.pageTotal, "1");
    EXPECT_FALSE(offer.enableSlider);
    EXPECT_EQ(offer.sliderMaximum, 1);
}

TEST(OfferPages, MaximumIsLoweredBelowNinePagesOnly)
{
    EXPECT_EQ(offerPages(2).sliderMaximum, 2);
    EXPECT_TRUE(offerPages(2).enableSlider);
    EXPECT_EQ(offerPages(8).sliderMaximum, 8);
    EXPECT_FALSE(offerPages(9).sliderMaximum);
    EXPECT_EQ(offerPages(1234).pageTotal, "1234");
}

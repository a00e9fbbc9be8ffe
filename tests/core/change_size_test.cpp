#include <initializer_list>
#include <limits>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/ChangeSize.h"

namespace quarrynet {
namespace {

using Property = LayoutProperty;
using testing::ElementsAre;
using testing::Optional;

// A control that has only the properties passed to its constructor.
class MadeUpControl : public LayoutControl
{
public:
    MadeUpControl(bool line, std::initializer_list<std::pair<const Property, double>> has)
        : properties(has), line_(line)
    {}

    bool isLine() const override { return line_; }

    std::optional<double> read(Property property) const override
    {
        const auto found = properties.find(property);
        return found == properties.end() ? std::nullopt : std::optional(found->second);
    }

    void write(Property property, std::int32_t value) override
    {
        written.push_back(property);
        if (const auto found = properties.find(property); found != properties.end())
            found->second = value;
    }

    std::map<Property, double> properties;
    std::vector<Property> written;

private:
    bool line_;
};

// A form that raises its resize notification as a window does: for each change of its size, before the setter returns.
class MadeUpForm : public LayoutForm
{
public:
    double height() const override { return height_; }
    double width() const override { return width_; }
    void setHeight(double height) override { resize(height, width_); }
    void setWidth(double width) override { resize(height_, width); }
    double fontSize() const override { return font; }
    bool maximised() const override { return isMaximised; }
    double screenHeight() const override { return screen.first; }
    double screenWidth() const override { return screen.second; }
    bool autoRedraw() const override { return redraw; }
    void setAutoRedraw(bool on) override
    {
        redraw = on;
        redrawHistory.push_back(on);
    }
    std::size_t count() const override { return announced ? *announced : controls.size(); }
    LayoutControl& control(std::size_t index) override { return *controls[index]; }

    MadeUpControl& add(bool line, std::initializer_list<std::pair<const Property, double>> has)
    {
        controls.push_back(std::make_unique<MadeUpControl>(line, has));
        return *controls.back();
    }

    MadeUpControl& box(double top, double left, double height, double width)
    {
        return add(false, {{Property::Top, top},
                           {Property::Left, left},
                           {Property::Height, height},
                           {Property::Width, width},
                           {Property::FontSize, 0}});
    }

    void resize(double height, double width)
    {
        height_ = height;
        width_ = width;
        if (layout) {
            ++notifications;
            lastFault = layout->FormResize(*this);
        }
    }

    std::vector<std::unique_ptr<MadeUpControl>> controls;
    std::optional<std::size_t> announced;
    ChangeSize* layout = nullptr;
    std::optional<RuntimeError> lastFault;
    int notifications = 0;
    double font = 8;
    bool isMaximised = false;
    std::pair<double, double> screen = {7290, 9690}; // height, width
    bool redraw = false;
    std::vector<bool> redrawHistory;

private:
    double height_ = 6400;
    double width_ = 9000;
};

class ChangeSizeTest : public testing::Test
{
protected:
    ChangeSizeTest() { form.layout = &layout; }

    // Records the layout of the form as designed, and sends the first notification.
    void record()
    {
        ASSERT_EQ(layout.Init(form, ScreenFit::Keep), std::nullopt);
        ASSERT_EQ(layout.FormResize(form), std::nullopt);
        form.notifications = 0;
    }

    ChangeSize layout;
    MadeUpForm form;
};

std::vector<double> boxOf(const MadeUpControl& control)
{
    return {control.properties.at(Property::Top), control.properties.at(Property::Left),
            control.properties.at(Property::Height), control.properties.at(Property::Width)};
}

TEST_F(ChangeSizeTest, DoubledFormDoublesBoxesAndFont)
{
    MadeUpControl& button = form.box(100, 200, 300, 400);
    record();
    form.resize(12400, 18000); // (12400 - 400) is twice (6400 - 400)
    EXPECT_THAT(boxOf(button), ElementsAre(200, 400, 600, 800));
    EXPECT_EQ(button.properties[Property::FontSize], 16);
}

TEST_F(ChangeSizeTest, HeightAloneScalesVerticallyAndLeavesFont)
{
    MadeUpControl& button = form.box(100, 200, 300, 400);
    record();
    form.resize(12400, 9000);
    EXPECT_THAT(boxOf(button), ElementsAre(200, 200, 600, 400));
    EXPECT_EQ(button.properties[Property::FontSize], 8);
}

TEST_F(ChangeSizeTest, FirstResizeAfterInitChangesNothingSecondScales)
{
    MadeUpControl& button = form.box(100, 200, 300, 400);
    ASSERT_EQ(layout.Init(form, ScreenFit::Keep), std::nullopt);
    form.resize(12400, 18000);
    EXPECT_THAT(boxOf(button), ElementsAre(100, 200, 300, 400));
    EXPECT_TRUE(button.written.empty());
    form.resize(12400, 18000);
    EXPECT_THAT(boxOf(button), ElementsAre(200, 400, 600, 800));
}

TEST_F(ChangeSizeTest, FirstResizeLeavesAutoRedrawOnLaterOnesRestoreIt)
{
    form.box(1, 2, 3, 4);
    ASSERT_EQ(layout.Init(form, ScreenFit::Keep), std::nullopt);
    form.resize(6400, 9000);
    EXPECT_THAT(form.redrawHistory, ElementsAre(true));
    EXPECT_TRUE(form.redraw);
    form.redraw = false;
    form.redrawHistory.clear();
    form.resize(6400, 9000);
    EXPECT_THAT(form.redrawHistory, ElementsAre(true, false));
}

TEST_F(ChangeSizeTest, InitialSizeLeavesPlacesAndSetsFormsFont)
{
    MadeUpControl& button = form.box(101, 203, 305, 407);
    button.properties[Property::FontSize] = 14;
    form.font = 10;
    record();
    form.resize(6400, 9000);
    EXPECT_THAT(boxOf(button), ElementsAre(101, 203, 305, 407));
    EXPECT_EQ(button.properties[Property::FontSize], 10);
}

TEST_F(ChangeSizeTest, InitScalesFormByScreenOverDesignScreen)
{
    MadeUpControl& button = form.box(100, 200, 300, 400);
    form.screen = {2 * 7290, 2 * 9690};
    ASSERT_EQ(layout.Init(form), std::nullopt);
    EXPECT_EQ(form.height(), 12800);
    EXPECT_EQ(form.width(), 18000);
    // The notification of the height is the first one, which is ignored; that of the width scales both directions.
    EXPECT_EQ(form.notifications, 2);
    EXPECT_THAT(boxOf(button), ElementsAre(206, 400, 620, 800)); // 100 and 300 times 12400 / 6000, rounded down
}

TEST_F(ChangeSizeTest, InitLeavesMaximisedFormAlone)
{
    form.isMaximised = true;
    form.screen = {20000, 30000};
    ASSERT_EQ(layout.Init(form), std::nullopt);
    EXPECT_EQ(form.notifications, 0);
    EXPECT_EQ(form.height(), 6400);
}

TEST_F(ChangeSizeTest, InitWithKeepLeavesFormAlone)
{
    form.screen = {20000, 30000};
    ASSERT_EQ(layout.Init(form, ScreenFit::Keep), std::nullopt);
    EXPECT_EQ(form.notifications, 0);
    EXPECT_EQ(form.width(), 9000);
}

TEST_F(ChangeSizeTest, SmallerThanHalfSnapsBackToHalfInThatDimension)
{
    MadeUpControl& button = form.box(600, 200, 300, 400);
    record();
    form.resize(1000, 9000);
    EXPECT_EQ(form.height(), 3200);
    EXPECT_EQ(form.width(), 9000);
    EXPECT_THAT(boxOf(button), ElementsAre(280, 200, 140, 400)); // times 2800 / 6000
    form.resize(6400, 4499);
    EXPECT_EQ(form.height(), 6400);
    EXPECT_EQ(form.width(), 4500);
    EXPECT_THAT(boxOf(button), ElementsAre(600, 100, 300, 200));
}

TEST_F(ChangeSizeTest, HalfOfOddSizeKeepsItsFraction)
{
    form.layout = nullptr;
    form.resize(6401, 9001);
    form.layout = &layout;
    record();
    form.resize(0, 0);
    EXPECT_EQ(form.height(), 3200.5);
    EXPECT_EQ(form.width(), 4500.5);
}

TEST_F(ChangeSizeTest, ExactlyHalfIsAllowed)
{
    record();
    form.resize(3200, 4500);
    EXPECT_EQ(form.notifications, 1);
}

TEST_F(ChangeSizeTest, PlaceBeyond16BitsIsRecordedAsZero)
{
    MadeUpControl& far = form.box(100, 32768, 300, 32767);
    record();
    form.resize(6400, 18000);
    EXPECT_THAT(boxOf(far), ElementsAre(100, 0, 300, 65534));
}

TEST_F(ChangeSizeTest, BrokenValuesAreRecordedAsZero)
{
    MadeUpControl& odd =
        form.box(std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity(), -32768, 32767.5);
    record();
    form.resize(6400, 9000);
    EXPECT_THAT(boxOf(odd), ElementsAre(0, 0, -32768, 0));
}

TEST_F(ChangeSizeTest, RecordsRoundToNearestHalvesToEven)
{
    MadeUpControl& button = form.box(100.5, 101.5, 0.49, 99.51);
    record();
    form.resize(6400, 9000);
    EXPECT_THAT(boxOf(button), ElementsAre(100, 102, 0, 100));
}

TEST_F(ChangeSizeTest, NegativePlacesRoundDown)
{
    MadeUpControl& hidden = form.box(-3, -75, 10, 10);
    record();
    form.resize(3400, 4500); // both ratios are 2
    EXPECT_THAT(boxOf(hidden), ElementsAre(-2, -38, 5, 5));
}

TEST_F(ChangeSizeTest, LineIsPlacedByItsEndPoints)
{
    MadeUpControl& line =
        form.add(true, {{Property::X1, 10}, {Property::Y1, 20}, {Property::X2, 30}, {Property::Y2, 40}});
    record();
    form.resize(12400, 27000);
    EXPECT_EQ(line.properties[Property::X1], 30);
    EXPECT_EQ(line.properties[Property::Y1], 40);
    EXPECT_EQ(line.properties[Property::X2], 90);
    EXPECT_EQ(line.properties[Property::Y2], 80);
    EXPECT_THAT(line.written, ElementsAre(Property::Y1, Property::X1, Property::Y2, Property::X2));
}

TEST_F(ChangeSizeTest, ControlWithoutPropertiesIsPassedOver)
{
    MadeUpControl& timer = form.add(false, {});
    MadeUpControl& button = form.box(100, 200, 300, 400);
    record();
    form.resize(12400, 18000);
    EXPECT_TRUE(timer.properties.empty());
    EXPECT_THAT(timer.written, ElementsAre(Property::Top, Property::Left, Property::Height, Property::Width,
                                           Property::FontSize, Property::RightMargin));
    EXPECT_THAT(boxOf(button), ElementsAre(200, 400, 600, 800));
}

TEST_F(ChangeSizeTest, RightMarginFollowsTheHeight)
{
    MadeUpControl& text = form.add(false, {{Property::RightMargin, 500}});
    record();
    form.resize(12400, 9000);
    EXPECT_EQ(text.properties[Property::RightMargin], 1000);
}

TEST_F(ChangeSizeTest, FontIsRoundedDownThenRaisedToEven)
{
    MadeUpControl& label = form.box(0, 0, 0, 0);
    record();
    const std::vector<std::pair<double, double>> widthsAndFonts = {
        {9000 / 0.8, 10}, {9000 / 0.75, 10}, {9000 / 0.86, 10}, {9000 / 0.7, 12}, {9000, 8}, {4500, 4}, {6000, 6}};
    for (const auto& [width, font] : widthsAndFonts) {
        form.resize(6400, width);
        EXPECT_EQ(label.properties[Property::FontSize], font) << "at a width of " << width;
    }
}

TEST_F(ChangeSizeTest, ManyResizesDoNotDrift)
{
    MadeUpControl& button = form.box(101, 203, 305, 407);
    record();
    for (int i = 0; i < 1000; ++i)
        form.resize(3300 + i * 7, 4600 + i * 11);
    form.resize(6400, 9000);
    EXPECT_THAT(boxOf(button), ElementsAre(101, 203, 305, 407));
}

TEST_F(ChangeSizeTest, FormWithoutControlsResizes)
{
    record();
    form.resize(8000, 12000);
    EXPECT_EQ(form.lastFault, std::nullopt);
}

TEST_F(ChangeSizeTest, FormBeyond16BitsIsOverflow)
{
    form.layout = nullptr;
    form.resize(32768, 9000);
    EXPECT_THAT(layout.Init(form), Optional(RuntimeError::Overflow));
    form.resize(6400, 40000);
    EXPECT_THAT(layout.Init(form), Optional(RuntimeError::Overflow));
    form.resize(32767, 32767);
    EXPECT_EQ(layout.Init(form, ScreenFit::Keep), std::nullopt);
}

TEST_F(ChangeSizeTest, MoreControlsThan16BitsCountIsOverflow)
{
    form.announced = 32769;
    EXPECT_THAT(layout.Init(form), Optional(RuntimeError::Overflow));
}

TEST_F(ChangeSizeTest, HeightOfTheCaptionAloneIsDivisionByZero)
{
    form.layout = nullptr;
    form.resize(700, 9000);
    MadeUpControl& button = form.box(1, 2, 3, 4);
    record();
    form.layout = &layout;
    form.resize(400, 9000);
    EXPECT_THAT(form.lastFault, Optional(RuntimeError::DivisionByZero));
    EXPECT_THAT(boxOf(button), ElementsAre(1, 2, 3, 4));
    EXPECT_TRUE(form.redraw); // the handler fails before it restores the flag
}

TEST_F(ChangeSizeTest, DesignOfTheCaptionAloneSkipsEveryVerticalStep)
{
    form.layout = nullptr;
    form.resize(400, 9000);
    MadeUpControl& button = form.box(1, 2, 3, 4);
    record();
    form.layout = &layout;
    form.resize(6400, 18000); // the vertical ratio is 0
    EXPECT_EQ(form.lastFault, std::nullopt);
    EXPECT_THAT(boxOf(button), ElementsAre(1, 4, 3, 8));
}

TEST_F(ChangeSizeTest, ControlsThatWentSinceInitAreNotTouched)
{
    form.box(1, 2, 3, 4);
    form.box(5, 6, 7, 8);
    record();
    form.controls.pop_back();
    form.resize(12400, 18000);
    EXPECT_THAT(boxOf(*form.controls[0]), ElementsAre(2, 4, 6, 8));
}

TEST_F(ChangeSizeTest, ControlsAddedSinceInitStayWhereTheyAre)
{
    form.box(1, 2, 3, 4);
    record();
    form.box(5, 6, 7, 8);
    form.resize(12400, 18000);
    EXPECT_THAT(boxOf(*form.controls[1]), ElementsAre(5, 6, 7, 8));
}

} // namespace
} // namespace quarrynet

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/memory.h"
#include "search/image/gallery.h"
#include "search/image/results.h"
#include "tests/core/page_samples.h"
#include "tests/support/test_data.h"

using namespace quarrynet;
using namespace quarrynet::samples;
using testing::ElementsAre;

namespace {

ImageResults parse(std::string_view page)
{
    return parseImageResults(ExactBytes(page), "engine.example");
}

} // namespace

TEST(ImageResults, TwelveThumbnailsGiveTen)
{
    const ImageResults results = parse(dataFile("image_results.html"));
    EXPECT_FALSE(results.fault);
    EXPECT_EQ(results.lists.positions.size(), 10u);
    ASSERT_EQ(results.lists.addresses.size(), 10u);
    ASSERT_EQ(results.lists.thumbnails.size(), 10u);
    EXPECT_EQ(results.lists.addresses.front(), "host1.example/pics/green_pear.jpg");
    EXPECT_EQ(results.lists.thumbnails.back(),
              "http://engine.example/images?q=tbn:Ab10C:host10.example/pics/red_apple.jpg");
    EXPECT_EQ(results.countCaption, "1,235");
    EXPECT_EQ(results.timeCaption, "0.08 Second/s");
    EXPECT_EQ(results.gallery, galleryPage(results.lists.addresses, results.lists.thumbnails));
    EXPECT_EQ(results.paging.pageTotal, "124");
    EXPECT_TRUE(results.paging.enableSlider);
    EXPECT_FALSE(results.paging.sliderMaximum);
}

TEST(ImageResults, AddressIsWhatFollowsTheSecondColon)
{
    const ImageResults results = parse(heading("1") + "src=/images?q=tbn:AbC:hostA/pics/a.jpg width=90");
    EXPECT_THAT(results.lists.addresses, ElementsAre("hostA/pics/a.jpg"));
    EXPECT_THAT(results.lists.thumbnails, ElementsAre("http://engine.example/images?q=tbn:AbC:hostA/pics/a.jpg"));
}

TEST(ImageResults, SizeIsWhatFollowsItsThumbnail)
{
    const auto thumbnail = [](const std::string& name) {
        return "<img src=/images?q=tbn:a:host/" + name + " width=90>";
    };
    const ImageResults results = parse(heading("3") + thumbnail("a") + "<br>a.jpg<br>640 x 480 - 23k" + thumbnail("b") +
                                       "<br>b" + thumbnail("c") + "<font color=green>1600&times;1200</font>");
    EXPECT_THAT(results.lists.sizes, ElementsAre("640 x 480", "", "1600 x 1200"));
}

TEST(ImageResults, SizeBeyondItsBoundIsNotFound)
{
    const auto page = [](std::size_t distance) {
        return heading("1") + "src=/images?q=tbn:a:host/a " + std::string(distance, 'x') + "<br>640 x 480<br>";
    };
    EXPECT_THAT(parse(page(4000)).lists.sizes, ElementsAre("640 x 480"));
    EXPECT_THAT(parse(page(4096)).lists.sizes, ElementsAre(""));
}

TEST(StatedSize, IsAtTheBeginningOfAText)
{
    for (const std::string_view text :
         {"<br>640 x 480", "<br>640x480</a>", "<br> \r\n640\tx 480 - 23k", "<p>plum 1 x 2<br>640 \xC3\x97 480, 23k",
          "><640 x 480>640 x 480;", ">640 x 480 pixels"})
        EXPECT_EQ(statedSize(text), "640 x 480") << text;
    EXPECT_EQ(statedSize(">99999 x 1"), "99999 x 1");
}

TEST(StatedSize, OtherTextsStateNone)
{
    using namespace std::string_view_literals;
    for (const std::string_view text :
         {""sv, ">"sv, "640 x 480"sv, ">apps/48x48/a.png"sv, ">48x48/a.png"sv, ">640 x"sv, ">640 x <b>480"sv,
          ">x 480"sv, ">0 x 480"sv, ">640 x 0"sv, ">640 x 0480"sv, ">100000 x 1"sv, ">-1 x 1"sv, ">640 X 480"sv,
          ">640 x 480px"sv, ">640\0x 480"sv, ">640 x 480\0"sv, ">\xFF x \xFF"sv, ">640 \xC3 480"sv})
        EXPECT_EQ(statedSize(text), "") << text;
}

TEST(ImageResults, PageWithoutAThumbnailChangesNothing)
{
    for (const std::string_view page : {"", "<html>no pictures</html>", "SRC=/IMAGES?Q=TBN:a:b "}) {
        const ImageResults results = parse(page);
        EXPECT_TRUE(results.nothingFound) << page;
        EXPECT_FALSE(results.countCaption);
        EXPECT_FALSE(results.gallery);
        EXPECT_FALSE(results.fault);
    }
}

TEST(ImageResults, CountsGiveTheirPages)
{
    const auto total = [](std::string_view count) { return parse(imagePage(count)).paging.pageTotal; };
    EXPECT_EQ(total("1,234"), "124");
    EXPECT_EQ(total("7"), "1");
    EXPECT_EQ(total("20"), "20");
    EXPECT_EQ(total("95"), "10");
    EXPECT_EQ(total("85"), "8");
}

TEST(ImageResults, WholeMultipleStoresTheCountsOwnText)
{
    EXPECT_EQ(parse(imagePage("1,230")).paging.pageTotal, "1230");
    EXPECT_EQ(parse(imagePage("0,020")).paging.pageTotal, "0020");
}

TEST(ImageResults, OnePageLowersTheMaximumOfTheUnavailableSlider)
{
    const ImageResults results = parse(imagePage("7"));
    EXPECT_FALSE(results.paging.enableSlider);
    EXPECT_EQ(results.paging.sliderMaximum, 1);
}

TEST(ImageResults, TwoPagesMakeTheSliderAvailable)
{
    const ImageResults results = parse(imagePage("16"));
    EXPECT_EQ(results.paging.pageTotal, "2");
    EXPECT_TRUE(results.paging.enableSlider);
    EXPECT_EQ(results.paging.sliderMaximum, 2);
}

TEST(ImageResults, NinePagesLeaveTheMaximum)
{
    const ImageResults results = parse(imagePage("89"));
    EXPECT_EQ(results.paging.pageTotal, "9");
    EXPECT_FALSE(results.paging.sliderMaximum);
}

TEST(ImageResults, MissingBlankEndsTheParseWithoutAGallery)
{
    const ImageResults results = parse("src=/images?q=tbn:a:one/a.jpg src=/images?q=tbn:b:two/b.jpg");
    EXPECT_EQ(results.fault, RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(results.lists.positions.size(), 2u);
    EXPECT_THAT(results.lists.addresses, ElementsAre("one/a.jpg"));
    EXPECT_THAT(results.lists.thumbnails, ElementsAre("http://engine.example/images?q=tbn:a:one/a.jpg"));
    EXPECT_FALSE(results.gallery);
}

TEST(ImageResults, MissingColonsTakeTheSearchToTheTop)
{
    const ImageResults results = parse("to: be cut src=/images?q=tbn x");
    // Both colons are missing: the second search starts at the beginning of the page and finds "to:". The address is
    // the empty text between it and the next blank, and the thumbnail's path would end before it begins.
    EXPECT_THAT(results.lists.addresses, ElementsAre(""));
    EXPECT_TRUE(results.lists.thumbnails.empty());
    EXPECT_EQ(results.fault, RuntimeError::InvalidProcedureCall);
}

TEST(ImageResults, UnclosedTimeKeepsTheCountAndTouchesNoFile)
{
    const ImageResults results = parse(thumbnail("h/a.jpg") + "</b> of <b>12</b> <b>0.1");
    EXPECT_EQ(results.countCaption, "12");
    EXPECT_FALSE(results.timeCaption);
    EXPECT_FALSE(results.gallery);
    EXPECT_EQ(results.fault, RuntimeError::InvalidProcedureCall);
}

TEST(ImageResults, CountThatIsNoNumberStillMakesTheGallery)
{
    const ImageResults results = parse(imagePage("many"));
    EXPECT_TRUE(results.gallery);
    EXPECT_FALSE(results.paging.pageTotal);
    EXPECT_EQ(results.fault, RuntimeError::TypeMismatch);
    EXPECT_EQ(parse(imagePage("3000000000")).fault, RuntimeError::Overflow);
}

TEST(ImageResults, PageCutAtAnyByteKeepsTheListsInStep)
{
    const std::string page = dataFile("image_results.html");
    for (std::size_t length = 1; length < page.size(); ++length) {
        const ImageResults results = parse(std::string_view(page).substr(0, length));
        ASSERT_LE(results.lists.thumbnails.size(), results.lists.addresses.size()) << length;
        ASSERT_LE(results.lists.addresses.size(), results.lists.positions.size()) << length;
        ASSERT_EQ(results.nothingFound, results.lists.positions.empty()) << length;
    }
}

TEST(ImageResults, BytesOfThePageReachTheGalleryUnchanged)
{
    const std::string address("h\0\xff\"<script>", 12);
    const ImageResults results = parse(heading("1") + thumbnail(address));
    ASSERT_TRUE(results.gallery);
    EXPECT_NE(results.gallery->find("<br>http://" + address + "</a>"), std::string::npos);
}

TEST(ImageResults, TextsThatAllReachToTheSameEndRunOutOfMemory)
{
    const ImageResults results =
        parse(repeated("src=/images?q=tbn:a:", 100) + std::string(textAllowance() / 8, 'x') + " ");
    EXPECT_EQ(results.fault, RuntimeError::OutOfMemory);
    EXPECT_FALSE(results.gallery);
}

#include <gtest/gtest.h>

#include "search/image/gallery.h"
#include "tests/support/test_data.h"

using namespace quarrynet;

TEST(Gallery, HeadIsTheReferenceFileByteForByte)
{
    EXPECT_EQ(galleryPage({}, {}), samples::dataFile("gallery_head.html"));
}

TEST(Gallery, RowsFollowTheHeadAndNothingFollowsThem)
{
    EXPECT_EQ(galleryPage({"h/a.jpg", "h/b.jpg"}, {"http://e/1", "http://e/2"}),
              samples::dataFile("gallery_head.html") +
                  "<p align=center><a href=\"http://h/a.jpg\" target=\"_blank\"><img src=\"http://e/1\"><br>"
                  "http://h/a.jpg</a><p>\r\n"
                  "<p align=center><a href=\"http://h/b.jpg\" target=\"_blank\"><img src=\"http://e/2\"><br>"
                  "http://h/b.jpg</a><p>\r\n");
}

TEST(Gallery, ThumbnailsDecideTheNumberOfRows)
{
    EXPECT_EQ(galleryPage({"h/a.jpg"}, {}), galleryPage({}, {}));
    EXPECT_TRUE(
        galleryPage({}, {"t"}).ends_with("href=\"http://\" target=\"_blank\"><img src=\"t\"><br>http://</a><p>\r\n"));
}

TEST(Gallery, BytesPassUnchanged)
{
    const std::string address("\xff\0\"<", 4);
    EXPECT_NE(galleryPage({address}, {"t"}).find("http://" + address + "</a>"), std::string::npos);
}

TEST(Gallery, FramePageShowsTheGallery)
{
    EXPECT_EQ(galleryFramePage(), "<HTML><frameset rows=100% border=0><frame noresize scrolling=auto name=blank "
                                  "src=images.html></frame></frameset></HTML>");
}

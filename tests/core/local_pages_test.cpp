#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/local_pages.h"
#include "tests/support/test_data.h"

using namespace quarrynet;
using namespace quarrynet::samples;

TEST(BlankFramePage, IsOneLineWithoutAnEnd)
{
    EXPECT_EQ(blankFramePage(), "<HTML><frameset rows=100% border=0><frame noresize scrolling=auto name=blank "
                                "src=blank.htm></frame></frameset></HTML>");
}

TEST(BlankPage, IsTheReferenceFileByteForByte)
{
    const std::string page = blankPage();
    EXPECT_EQ(page, dataFile("blank.htm"));
    EXPECT_EQ(page.size(), 1531u);
}

TEST(BlankPage, LineThirtyFourRunsIntoTheNext)
{
    const std::string page = blankPage();
    EXPECT_THAT(page, testing::HasSubstr("onKeyDown************ & vbcrlf    // ****"));
    EXPECT_EQ(static_cast<int>(std::count(page.begin(), page.end(), '\n')), 52);
    EXPECT_TRUE(page.ends_with("</body>\r\n</html>\r\n"));
}

TEST(PathInFolder, AddsTheSeparatorOnlyWhereItIsMissing)
{
#ifdef _WIN32
    EXPECT_EQ(pathInFolder("C:\\", "a.ini"), "C:\\a.ini");
    EXPECT_EQ(pathInFolder("C:\\q", "a.ini"), "C:\\q\\a.ini");
#else
    EXPECT_EQ(pathInFolder("/", "a.ini"), "/a.ini");
    EXPECT_EQ(pathInFolder("/q", "a.ini"), "/q/a.ini");
    EXPECT_EQ(pathInFolder("/q/", "a.ini"), "/q/a.ini");
    EXPECT_EQ(pathInFolder("/q\\", "a.ini"), "/q\\/a.ini");
#endif
}

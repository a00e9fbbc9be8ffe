#include <gtest/gtest.h>

#include "common/memory.h"
#include "search/download/redirect.h"
#include "tests/core/page_samples.h"
#include "tests/support/test_data.h"

using namespace quarrynet;
using namespace quarrynet::samples;

namespace {

std::string addressIn(std::string_view page)
{
    const Result<std::optional<std::string>> address = downloadAddress(ExactBytes(page));
    return address ? address->value_or("(none)") : "(fault)";
}

} // namespace

TEST(RedirectPath, PathWordGivesWayToWhatFollowsTheFirstEscapedSlash)
{
    EXPECT_EQ(*redirectPath("/redir?a=1&destUrl=http%3A%2F%2Fx%2Fy"), "/%2Fx%2Fy?a=1&destUrl=http%3A%2F%2Fx%2Fy");
}

TEST(RedirectPath, LinkWithoutAnEscapedSlashIsTakenFromItsThirdByte)
{
    EXPECT_EQ(*redirectPath("/go?redir"), "/go?o?redir");
    EXPECT_EQ(*redirectPath("/plain"), "/plain");
}

TEST(RedirectPath, EveryPathWordIsReplaced)
{
    EXPECT_EQ(*redirectPath("/redir/redir%2Fx"), "/x/x%2Fx");
}

TEST(RedirectPath, TailThatHoldsThePathWordIsReplacedOnce)
{
    EXPECT_EQ(*redirectPath("/redir?u=%2Fredir.zip"), "/redir.zip?u=%2Fredir.zip.zip");
}

TEST(RedirectPath, EmptyAndShortLinks)
{
    EXPECT_EQ(*redirectPath(""), "");
    EXPECT_EQ(*redirectPath("/"), "/");
    EXPECT_EQ(*redirectPath("redir"), "dir");
    EXPECT_EQ(*redirectPath("redir%2F"), "%2F");
}

TEST(RedirectPath, PathBeyondItsBoundIsOutOfMemory)
{
    EXPECT_EQ(redirectPath(repeated("redir", 100000) + "%2F" + std::string(1000000, 'x')).error(),
              RuntimeError::OutOfMemory);
    const std::size_t tail = textAllowance() / 2000;
    EXPECT_EQ(redirectPath(repeated("redir", 2000) + "%2F" + std::string(tail, 'x')).error(),
              RuntimeError::OutOfMemory);
    EXPECT_EQ(redirectPath(repeated("redir", 1000) + "%2F" + std::string(10000, 'x'))->size(), 10010003u);
}

TEST(RedirectPath, LinkOf26KilobytesIsAPath)
{
    const std::string link = repeated("redir", 2600) + "%2F" + std::string(13000, 'x');
    EXPECT_EQ(redirectPath(link)->size(), 2600U * 13000 + 13003);
}

TEST(RedirectPath, TailThatFormsThePathWordIsReplacedAgain)
{
    EXPECT_EQ(*redirectPath("rredir%2Fedir"), "edir%2Fedir");
    // Each "r" moves past the "edir"s after it.
    const std::string ends = "%2Fedirr";
    const std::string link = std::string(200, 'r') + repeated("edir", 100) + ends;
    std::string plain = link;
    for (std::size_t at = plain.find("redir"); at != std::string::npos; at = plain.find("redir"))
        plain.replace(at, 5, "edirr");
    EXPECT_TRUE(*redirectPath(link) == plain);
    // A link ten thousand times as long needs a hundred million times as many steps.
    EXPECT_EQ(redirectPath(std::string(2000000, 'r') + repeated("edir", 1000000) + ends).error(),
              RuntimeError::OutOfMemory);
}

TEST(LinkRequest, DirectAndProxied)
{
    EXPECT_TRUE(linkRequest("/a%2Fb", "d.example", Route::Direct)
                    .starts_with("GET /a%2Fb HTTP/1.1\r\nHOST: d.example\r\nConnection: close\r\nUser-Agent: "));
    EXPECT_TRUE(
        linkRequest("/a%2Fb", "d.example", Route::Proxy)
            .starts_with("GET http://d.example/a%2Fb HTTP/1.1\r\nHOST: d.example\r\nProxy-Connection: close\r\n"));
}

TEST(LinkRequest, LineBreaksInThePathAddNoHeader)
{
    EXPECT_TRUE(linkRequest("/a\r\nX-Evil: 1\n", "d.example", Route::Direct)
                    .starts_with("GET /aX-Evil: 1 HTTP/1.1\r\nHOST: d.example\r\n"));
}

TEST(DownloadAddress, IsDecodedAndLacksItsLastByte)
{
    EXPECT_EQ(addressIn("newlocation = \"http%3A%2F%2Fa%2Fb.zip\";"), "http://a/b.zi");
    EXPECT_EQ(addressIn(dataFile("download_link.html")), "http://files26.example/lemon.zip");
}

TEST(DownloadAddress, OtherEscapesStay)
{
    EXPECT_EQ(addressIn("newlocation = \"a%20%3a%2f%3A%253A.\";"), "a%20%3a%2f:%253A");
}

TEST(DownloadAddress, PageWithoutOneGivesNone)
{
    EXPECT_EQ(addressIn(""), "(none)");
    EXPECT_EQ(addressIn("newlocation=\"x\";"), "(none)");
    EXPECT_EQ(addressIn("NEWLOCATION = \"x\";"), "(none)");
}

TEST(DownloadAddress, PageThatEndsTooEarlyIsAFault)
{
    EXPECT_EQ(addressIn("newlocation = "), "(fault)");
    EXPECT_EQ(addressIn("newlocation = \""), "(fault)");
    EXPECT_EQ(addressIn("newlocation = \"abc\""), "(fault)");
    EXPECT_EQ(addressIn("newlocation = \";"), "(fault)");
    EXPECT_EQ(addressIn("newlocation = \"\";"), "(fault)");
    EXPECT_EQ(addressIn("newlocation = \"a\";"), "");
}

TEST(DownloadAddress, PageCutAtAnyByteGivesAWholeAddressOrNone)
{
    const std::string page = dataFile("download_link.html");
    for (std::size_t length = 0; length < page.size(); ++length) {
        const std::string address = addressIn(std::string_view(page).substr(0, length));
        ASSERT_TRUE(address == "(none)" || address == "(fault)" || address == "http://files26.example/lemon.zip");
    }
}

TEST(DownloadAddress, NulAndHighBytesPassThrough)
{
    EXPECT_EQ(addressIn(std::string_view("newlocation = \"a\0\xff.\";", 21)), std::string_view("a\0\xff", 3));
}

TEST(FallbackAddress, IsTheFrontPageWhenNothingIsSelected)
{
    EXPECT_EQ(fallbackAddress("d.example", ""), "http://d.example");
    EXPECT_EQ(fallbackAddress("d.example", "/redir?1"), "http://d.example/redir?1");
}

#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "search/download/request.h"
#include "search/file/request.h"
#include "search/image/request.h"
#include "search/web/request.h"

using namespace quarrynet;

namespace {

constexpr std::string_view kHost = "engine.example";
constexpr std::int32_t kHugePage = std::numeric_limits<std::int32_t>::max();

std::string withHead(const std::string& requestLine, Route route)
{
    return requestLine + "\r\nHOST: engine.example\r\n" +
           (route == Route::Proxy ? "Proxy-Connection: close" : "Connection: close") +
           "\r\nUser-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\nACCEPT: */*\r\n\r\n";
}

std::string direct(const std::string& requestLine)
{
    return withHead(requestLine, Route::Direct);
}

std::string proxied(const std::string& requestLine)
{
    return withHead(requestLine, Route::Proxy);
}

} // namespace

TEST(WebRequest, FirstPageNamesNoStart)
{
    EXPECT_EQ(*webRequest("  red  apple ", {}, kHost, Route::Direct),
              direct("GET /search?num=30&hl=en&filter=0&safe=off&q=red++apple HTTP/1.1"));
    EXPECT_EQ(*webRequest("red", {}, kHost, Route::Proxy),
              proxied("GET http://engine.example/search?num=30&hl=en&filter=0&safe=off&q=red HTTP/1.1"));
}

TEST(WebRequest, LaterPagesHaveTheStartBeforeSafe)
{
    EXPECT_EQ(*webRequest("red", 1, kHost, Route::Direct),
              direct("GET /search?num=30&hl=en&filter=0&start=0&safe=off&q=red HTTP/1.1"));
    EXPECT_EQ(*webRequest("red", 7, kHost, Route::Proxy),
              proxied("GET http://engine.example/search?num=30&hl=en&filter=0&start=180&safe=off&q=red HTTP/1.1"));
}

TEST(WebRequest, BlanksOnlySendAnEmptyQuery)
{
    EXPECT_EQ(*webRequest("  ", {}, kHost, Route::Direct),
              direct("GET /search?num=30&hl=en&filter=0&safe=off&q= HTTP/1.1"));
}

TEST(WebRequest, StartBeyond32BitsIsAnOverflow)
{
    EXPECT_EQ(webRequest("red", kHugePage, kHost, Route::Direct).error(), RuntimeError::Overflow);
}

TEST(ImageRequest, FirstPageInBothModes)
{
    EXPECT_EQ(*imageRequest("  red  car ", {}, kHost, Route::Direct),
              direct("GET /images?num=10&hl=en&filter=0&safe=off&q=red++car HTTP/1.1"));
    EXPECT_EQ(*imageRequest("  ", {}, kHost, Route::Proxy),
              proxied("GET http://engine.example/images?num=10&hl=en&filter=0&safe=off&q= HTTP/1.1"));
}

TEST(ImageRequest, DirectPagedFormFollowsTheImageSlider)
{
    EXPECT_EQ(*imageRequest("red", ImagePages{3, 9}, kHost, Route::Direct),
              direct("GET /images?num=10&svnum=10&hl=en&filter=0&start=20&safe=off&q=red&sa=N HTTP/1.1"));
    EXPECT_EQ(*imageRequest("red", ImagePages{1, 9}, kHost, Route::Direct),
              direct("GET /images?num=10&svnum=10&hl=en&filter=0&start=0&safe=off&q=red&sa=N HTTP/1.1"));
}

TEST(ImageRequest, ProxiedPagedFormFollowsTheWebSlider)
{
    EXPECT_EQ(*imageRequest("red", ImagePages{5, 1}, kHost, Route::Proxy),
              proxied("GET http://engine.example/images?num=10&hl=en&filter=0&start=0&safe=off&q=red HTTP/1.1"));
}

TEST(ImageRequest, OnlyTheSliderThatIsReadCanOverflow)
{
    EXPECT_EQ(imageRequest("red", ImagePages{kHugePage, 1}, kHost, Route::Direct).error(), RuntimeError::Overflow);
    EXPECT_TRUE(imageRequest("red", ImagePages{kHugePage, 1}, kHost, Route::Proxy));
}

TEST(DownloadRequest, FirstPageHasTwoSlashesThroughAProxyOnly)
{
    EXPECT_EQ(downloadRequest(" zip  tool ", {}, kHost, Route::Direct),
              direct("GET /3120-20-0-1-5.html?qt=zip++tool&ca=20 HTTP/1.1"));
    EXPECT_EQ(downloadRequest("zip", {}, kHost, Route::Proxy),
              proxied("GET http://engine.example//3120-20-0-1-5.html?qt=zip&ca=20 HTTP/1.1"));
}

TEST(DownloadRequest, PagedFormHasOneSlash)
{
    EXPECT_EQ(downloadRequest("zip", 1, kHost, Route::Proxy),
              proxied("GET http://engine.example/3120-20-0-1-5.html?qt=zip&ca=20 HTTP/1.1"));
    EXPECT_EQ(downloadRequest("zip", 13, kHost, Route::Direct),
              direct("GET /3120-20-0-13-5.html?qt=zip&ca=20 HTTP/1.1"));
}

TEST(FileRequest, FirstPageInBothModes)
{
    EXPECT_EQ(*fileRequest(" setup exe ", {}, kHost, Route::Direct),
              direct("GET /cgi-bin/s?t=f&d=&l=en&m=20&q=setup+exe HTTP/1.1"));
    EXPECT_EQ(*fileRequest("setup", {}, kHost, Route::Proxy),
              proxied("GET http://engine.example/cgi-bin/s?t=f&d=&l=en&m=20&q=setup HTTP/1.1"));
}

TEST(FileRequest, PagedFormCountsFromOne)
{
    EXPECT_EQ(*fileRequest("setup", 1, kHost, Route::Direct),
              direct("GET /cgi-bin/s?t=f&d=&l=en&m=20&q=setup&f=1 HTTP/1.1"));
    EXPECT_EQ(*fileRequest("setup", 2, kHost, Route::Proxy),
              proxied("GET http://engine.example/cgi-bin/s?t=f&d=&l=en&m=20&q=setup&f=21 HTTP/1.1"));
    EXPECT_EQ(*fileRequest("setup", 10, kHost, Route::Direct),
              direct("GET /cgi-bin/s?t=f&d=&l=en&m=20&q=setup&f=181 HTTP/1.1"));
}

TEST(FileRequest, NumberBeyond32BitsIsAnOverflow)
{
    EXPECT_EQ(fileRequest("setup", kHugePage, kHost, Route::Direct).error(), RuntimeError::Overflow);
}

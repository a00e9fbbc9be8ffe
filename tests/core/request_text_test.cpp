#include <limits>

#include <gtest/gtest.h>

#include "common/request_text.h"

using namespace quarrynet;

TEST(RouteFor, OnlyTheExactOffIsDirect)
{
    EXPECT_EQ(routeFor("off"), Route::Direct);
    EXPECT_EQ(routeFor("on"), Route::Proxy);
    EXPECT_EQ(routeFor("Off"), Route::Proxy);
    EXPECT_EQ(routeFor(""), Route::Proxy);
}

TEST(EncodeQuery, OuterBlanksGoInnerOnesBecomePlusSigns)
{
    EXPECT_EQ(encodeQuery("  red  apple "), "red++apple");
    EXPECT_EQ(encodeQuery(" setup exe "), "setup+exe");
    EXPECT_EQ(encodeQuery("word"), "word");
}

TEST(EncodeQuery, BlanksOnlyAndEmptyGiveTheEmptyQuery)
{
    EXPECT_EQ(encodeQuery("   "), "");
    EXPECT_EQ(encodeQuery(""), "");
}

TEST(EncodeQuery, NothingElseIsEncoded)
{
    EXPECT_EQ(encodeQuery("a&b#c%20\"d'+\tz"), "a&b#c%20\"d'+\tz");
    EXPECT_EQ(encodeQuery("\xc3\xa4 \xff"), "\xc3\xa4+\xff");
    EXPECT_EQ(encodeQuery(std::string_view("a\0 b", 4)), std::string_view("a\0+b", 4));
}

TEST(EngineRequest, DirectHasTheOriginForm)
{
    EXPECT_EQ(engineRequest("/a?b=c", "host.example", Route::Direct),
              "GET /a?b=c HTTP/1.1\r\n"
              "HOST: host.example\r\n"
              "Connection: close\r\n"
              "User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\n"
              "ACCEPT: */*\r\n"
              "\r\n");
}

TEST(EngineRequest, ProxyHasTheAbsoluteForm)
{
    EXPECT_EQ(engineRequest("/a?b=c", "host.example", Route::Proxy),
              "GET http://host.example/a?b=c HTTP/1.1\r\n"
              "HOST: host.example\r\n"
              "Proxy-Connection: close\r\n"
              "User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\n"
              "ACCEPT: */*\r\n"
              "\r\n");
}

TEST(FirstResultOfPage, IsCheckedArithmetic)
{
    EXPECT_EQ(*firstResultOfPage(1, 30, -30), 0);
    EXPECT_EQ(*firstResultOfPage(7, 30, -30), 180);
    EXPECT_EQ(*firstResultOfPage(2, 20, -19), 21);
    EXPECT_EQ(*firstResultOfPage(71582788, 30, -30), 2147483610);
}

TEST(FirstResultOfPage, ProductBeyond32BitsIsAnOverflowEvenWhereTheDifferenceFits)
{
    EXPECT_EQ(firstResultOfPage(71582789, 30, -30).error(), RuntimeError::Overflow);
    EXPECT_EQ(firstResultOfPage(std::numeric_limits<std::int32_t>::max(), 30, -30).error(), RuntimeError::Overflow);
    EXPECT_EQ(firstResultOfPage(-71582788, 30, -30).error(), RuntimeError::Overflow);
}

#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "config/crawl_address.h"

using namespace quarrynet;
using namespace quarrynet::services;

using Scheme = CrawlAddress::Scheme;

TEST(CrawlAddress, IsTakenApart)
{
    for (const auto& [text, scheme, site, path] :
         std::vector<std::tuple<std::string, Scheme, std::string, std::string>>{
             {"ftp://h", Scheme::Ftp, "ftp://h", ""},
             {"ftp://h/", Scheme::Ftp, "ftp://h", ""},
             {"ftp://h:2121/a%20b", Scheme::Ftp, "ftp://h:2121", "a b/"},
             {"ftp://h//a/b//", Scheme::Ftp, "ftp://h", "a/b/"},
             {"ftp://h/a?b", Scheme::Ftp, "ftp://h", "a?b/"},
             {"ftps://h:990/a", Scheme::Ftps, "ftps://h:990", "a/"},
             {"http://h/pub", Scheme::Http, "http://h", "pub/"},
             {"https://h:8443/", Scheme::Https, "https://h:8443", ""}}) {
        const Outcome<CrawlAddress> address = readCrawlAddress(text);
        ASSERT_TRUE(address) << text;
        EXPECT_EQ(address->scheme, scheme) << text;
        EXPECT_EQ(address->site, site);
        EXPECT_EQ(address->path, path);
    }
    EXPECT_EQ(crawlBase(*readCrawlAddress("https://h/a b%25/c")), "https://h/a%20b%25/c/");
}

TEST(CrawlAddress, OtherTextIsRejected)
{
    for (const char* text : {"", "h", "file:///h/", "gopher://h/", "FTP//h", "ftp://", "ftp:///a", "ftp://u:p@h/",
                             "https://u@h/", "ftp://h:x/", "ftp://h:/", "ftp://h h/", "ftp://h/a%0D%0ADELE",
                             "ftp://-\"/", "ftp://h%00/", "http://h/a%7F", "http://h/?C=N", "https://h/#a"})
        EXPECT_FALSE(readCrawlAddress(text)) << text;
    EXPECT_TRUE(readCrawlAddress("ftp://h/" + std::string(2000, 'a')));
    EXPECT_FALSE(readCrawlAddress("ftp://h/" + std::string(2100, 'a')));
}

#include <gtest/gtest.h>

#include "app/options.h"

using namespace quarrynet;
using namespace quarrynet::services;

TEST(ParseOptions, ReadsBothForms)
{
    const Outcome<Options> serve = parseOptions({"serve", "--port", "0", "--proxy-port=8080", "--data=/d=e"});
    ASSERT_TRUE(serve);
    EXPECT_EQ(serve->command, Options::Command::Serve);
    EXPECT_EQ(serve->port, 0);
    EXPECT_EQ(serve->proxyPort, 8080);
    EXPECT_EQ(serve->dataFolder, "/d=e");
    const Outcome<Options> index =
        parseOptions({"index", "--folder", "a", "--folder=b", "--packages", "p", "--pictures", "c"});
    ASSERT_TRUE(index);
    EXPECT_EQ(index->folders, (std::vector<std::string>{"a", "b"}));
    EXPECT_FALSE(index->ifNeeded);
    EXPECT_TRUE(parseOptions({"index", "--if-needed"})->ifNeeded);
    EXPECT_FALSE(parseOptions({"serve", "--if-needed"}));
    EXPECT_EQ(index->packageFiles, (std::vector<std::string>{"p"}));
    EXPECT_EQ(index->pictureFolders, (std::vector<std::string>{"c"}));
}

TEST(ParseOptions, CrawlTakesOneAddress)
{
    const Outcome<Options> crawl = parseOptions({"crawl", "--rate=2", "ftp://h/", "--depth", "3"});
    ASSERT_TRUE(crawl);
    EXPECT_EQ(crawl->command, Options::Command::Crawl);
    EXPECT_EQ(crawl->crawlAddress, "ftp://h/");
    EXPECT_EQ(crawl->crawlRate, 2U);
    EXPECT_EQ(crawl->crawlDepth, 3U);
    EXPECT_FALSE(parseOptions({"crawl"}));
    EXPECT_FALSE(parseOptions({"crawl", "ftp://a/", "ftp://b/"}));
    EXPECT_FALSE(parseOptions({"crawl", "ftp://a/", "--depth", "0"}));
    EXPECT_FALSE(parseOptions({"crawl", "ftp://a/", "--rate", "x"}));
}

TEST(ParseOptions, HelpAndVersion)
{
    EXPECT_EQ(parseOptions({"--help"})->command, Options::Command::Help);
    EXPECT_EQ(parseOptions({"serve", "--help"})->command, Options::Command::Help);
    EXPECT_EQ(parseOptions({"help"})->command, Options::Command::Help);
    EXPECT_EQ(parseOptions({"--version"})->command, Options::Command::Version);
}

TEST(ParseOptions, HelpNamesTheCommandsAndTheirOptions)
{
    const std::string all = parseOptions({"--help"})->help;
    for (const char* word : {"index", "crawl", "serve", "Exit status"})
        EXPECT_NE(all.find(word), std::string::npos) << word;
    EXPECT_EQ(parseOptions({"help"})->help, all);
    const std::string serve = parseOptions({"serve", "--help"})->help;
    for (const char* word : {"--port", "8780", "--user", "127.80.0.4", "--data"})
        EXPECT_NE(serve.find(word), std::string::npos) << word;
    EXPECT_EQ(serve.find("--mirror"), std::string::npos);
}

TEST(ParseOptions, ContentsListsAndCatalogsMayBeRepeated)
{
    EXPECT_EQ(parseOptions({"index", "--contents", "a", "--contents=b"})->contentsFiles,
              (std::vector<std::string>{"a", "b"}));
    EXPECT_TRUE(parseOptions({"index"})->contentsFiles.empty());
    EXPECT_EQ(parseOptions({"index", "--catalog", "a", "--catalog=b"})->catalogFiles,
              (std::vector<std::string>{"a", "b"}));
}

TEST(ParseOptions, CrawlTakesAnAddressOrThePlan)
{
    EXPECT_FALSE(parseOptions({"crawl"}));
    EXPECT_FALSE(parseOptions({"crawl", "--due", "ftp://h/"}));
    EXPECT_TRUE(parseOptions({"crawl", "--due", "--config", "c"})->crawlDue);
    EXPECT_EQ(parseOptions({"crawl", "https://h/"})->crawlAddress, "https://h/");
}

TEST(ParseOptions, NumbersAreDecimalAndTheLastOneCounts)
{
    EXPECT_EQ(parseOptions({"serve", "--port", "010"})->port, 10);
    EXPECT_EQ(parseOptions({"serve", "--port", "1", "--port", "2"})->port, 2);
    for (const char* port : {"0x50", " 80", "80 ", "8e1", "+80"})
        EXPECT_FALSE(parseOptions({"serve", "--port", port})) << port;
}

TEST(ParseOptions, StatusAsksAtPortsThatExist)
{
    EXPECT_FALSE(parseOptions({"status", "--port", "0"}));
    EXPECT_FALSE(parseOptions({"status", "--proxy-port", "0"}));
    EXPECT_EQ(parseOptions({"status", "--port", "1", "--proxy-port", "65535"})->port, 1);
    EXPECT_TRUE(parseOptions({"serve", "--port", "0", "--proxy-port", "0"}));
    EXPECT_EQ(parseOptions({"status", "--help"})->help.find("picks"), std::string::npos);
    EXPECT_NE(parseOptions({"serve", "--help"})->help.find("0 picks free ones"), std::string::npos);
}

TEST(ParseOptions, NamesWhatItDoesNotUnderstand)
{
    EXPECT_FALSE(parseOptions({}));
    EXPECT_NE(parseOptions({"dance"}).error().message.find("dance"), std::string::npos);
    EXPECT_NE(parseOptions({"serve", "--folder", "x"}).error().message.find("--folder"), std::string::npos);
    EXPECT_NE(parseOptions({"serve", "--port"}).error().message.find("--port"), std::string::npos);
    for (const char* mirror : {"mirror.example/d/", "http://", "file:///d/", "://h/"})
        EXPECT_NE(parseOptions({"index", "--mirror", mirror}).error().message.find(mirror), std::string::npos);
    EXPECT_TRUE(parseOptions({"index", "--mirror", "https://mirror.example/d"}));
    for (const char* port : {"65536", "-1", "x", "", "99999999999"})
        EXPECT_FALSE(parseOptions({"serve", "--port", port})) << port;
}

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/service_table.h"
#include "app/status_page.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet::services;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

namespace {

HttpRequest requestFor(const std::string& path)
{
    return {"GET", "127.80.0.1", path, "", false};
}

} // namespace

TEST(StatusPage, IsReadAsItWasWritten)
{
    const ServiceStatus status{
        "1.1.0", "web", "file:3: wrong", "none yet", 1700000000, 1700000001, {{"web pages", 5}, {"programs", 0}}};
    const std::optional<ServiceStatus> read = readStatus(ExactCopy(statusText(status)).view());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->version, "1.1.0");
    EXPECT_EQ(read->service, "web");
    EXPECT_EQ(read->fault, "file:3: wrong");
    EXPECT_EQ(read->indexFault, "none yet");
    EXPECT_EQ(read->indexTime, 1700000000);
    EXPECT_EQ(read->unfinishedIndexTime, 1700000001);
    EXPECT_THAT(read->counts, UnorderedElementsAre(Pair("web pages", 5), Pair("programs", 0)));
    EXPECT_LT(statusText(status).size(), kMaxStatusPage);
    const std::optional<ServiceStatus> least = readStatus(statusText({"1", "proxy", "", "", {}, {}, {}}));
    ASSERT_TRUE(least);
    EXPECT_EQ(least->fault, "");
    EXPECT_FALSE(least->indexTime);
}

TEST(StatusPage, PagesOfOtherProgramsAreNone)
{
    for (const std::string& page :
         {std::string(), std::string("<!DOCTYPE html>"), std::string("quarrynet-service"), std::string(100, '\0'),
          "quarrynet-services 1.1.0\n" + std::string(kMaxStatusPage, 'x'), std::string("quarrynet-services \n"),
          std::string("quarrynet-services 1 1\n"), std::string("quarrynet-services 9\x1b[2J\n"),
          std::string("quarrynet-services 1.1\xe2\x80\xae\n"), std::string("quarrynet-services 1.1.0\r\n"),
          std::string("quarrynet-services 1\0", 21), "quarrynet-services " + std::string(41, '1')})
        EXPECT_FALSE(readStatus(ExactCopy(page).view())) << page.substr(0, 40);
}

TEST(StatusPage, VersionsOfPackagesAreAccepted)
{
    for (const std::string& version : {std::string("1.1.0~rc1+git-2"), std::string(40, 'Z')}) {
        const std::optional<ServiceStatus> read = readStatus("quarrynet-services " + version);
        ASSERT_TRUE(read) << version;
        EXPECT_EQ(read->version, version);
    }
}

TEST(StatusPage, HostilePagesAreReadAsPlainLines)
{
    std::string page = "quarrynet-services 1.1\nservice: \xff\x1b]0;title\x07\xc2\x9b\nfault: \xe2\x80\xae";
    page.append(5000, 'f').append("\nindex fault: a\r\rb\nindex written: 99999999999999999999\nindex being made: -1\n");
    page.append("web pages: 1e9\nprograms: 7\nowned: 5\nno colon\n: \nfiles:7\nfiles: 8");
    for (std::size_t cut = 0; cut <= page.size(); ++cut)
        (void)readStatus(ExactCopy(page.substr(0, cut)).view());
    const std::optional<ServiceStatus> read = readStatus(ExactCopy(page).view());
    ASSERT_TRUE(read);
    for (const std::string& text : {read->version, read->service, read->fault, read->indexFault}) {
        EXPECT_THAT(text, Not(HasSubstr("\x1b")));
        EXPECT_THAT(text, Not(HasSubstr("\x07")));
        EXPECT_THAT(text, Not(HasSubstr("\xc2\x9b")));
        EXPECT_THAT(text, Not(HasSubstr("\xe2\x80\xae")));
        EXPECT_LE(text.size(), 400U);
    }
    EXPECT_EQ(read->indexFault, "a b");
    EXPECT_FALSE(read->indexTime);
    EXPECT_FALSE(read->unfinishedIndexTime);
    EXPECT_THAT(read->counts, UnorderedElementsAre(Pair("programs", 7), Pair("files", 8)));
}

TEST(StatusPage, AServiceSaysWhatItsIndexHasAndPassesOtherRequestsOn)
{
    const TemporaryFolder folder;
    IndexPool index(folder.path());
    const Router::Handler handler = withStatusPage("web", "", index, [](const HttpRequest& request) {
        HttpResponse response;
        response.body = "search at " + request.path;
        return response;
    });
    EXPECT_EQ(handler(requestFor("/search")).body, "search at /search");
    EXPECT_EQ(handler(requestFor("/status/")).body, "search at /status/");
    EXPECT_THAT(handler(requestFor("/status")).body, HasSubstr("index fault: there is no index yet"));
    IndexSources sources{{folder.write("list", "Package: apple\nHomepage: http://apple.example/\n")}};
    ASSERT_TRUE(buildIndex(folder.path(), sources, [](const std::string&) {}));
    folder.write("index.sqlite.new", "");
    const std::optional<ServiceStatus> status = readStatus(handler(requestFor("/status")).body);
    ASSERT_TRUE(status);
    EXPECT_EQ(status->indexFault, "");
    EXPECT_EQ(status->counts.at("web pages"), 1);
    EXPECT_TRUE(status->indexTime);
    EXPECT_TRUE(status->unfinishedIndexTime);
    EXPECT_THAT(handler(requestFor("/status")).body, Not(HasSubstr(folder.path())));
}

TEST(StatusPage, IsServedToTheProgramItselfAndByTheProxyButNotToForeignPages)
{
    HttpServer server;
    Router router;
    const TemporaryFolder folder;
    IndexPool index(folder.path());
    const Router::Handler handler =
        withStatusPage("web", "wrong", index, [](const HttpRequest&) { return HttpResponse{}; });
    router.add("127.80.0.1", handler);
    HttpRequest own = requestFor("/status");
    own.agent = std::string(kOwnAgent) + "1";
    EXPECT_THAT(router.answerAt(handler, own).body, HasSubstr("fault: wrong"));
    own.path = "/search";
    EXPECT_EQ(router.answerAt(handler, own).status, 508);
    HttpRequest foreign = requestFor("/status");
    foreign.host = "evil.example";
    EXPECT_EQ(router.answerAt(handler, foreign).status, 421);
    EXPECT_THAT(proxyStatusPage().body, HasSubstr("service: proxy"));
}

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "http/Router.h"
#include "live/searx_instances.h"
#include "tests/services/support/live_support.h"

using namespace quarrynet;
using namespace quarrynet::services;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Kind = SourceFault::Kind;

namespace {

Expected<SearxPage, SourceFault> ask(InstanceTable& table, const std::vector<std::string>& instances,
                                     const SearxQuery& query = {"words", 1, SearxCategory::General, "all",
                                                                SafeSearch::Off})
{
    FetchPool pool;
    Fetches fetches(pool);
    Expected<SearxPage, SourceFault> result = SourceFault{Kind::Index, "nothing was called", ""};
    askInstances(fetches, table, instances, query, std::chrono::steady_clock::now() + std::chrono::seconds(60),
                 [&result](Expected<SearxPage, SourceFault> page) { result = std::move(page); });
    fetches.run();
    return result;
}

SourceFault faultOf(const HttpServer::Handler& handler)
{
    const LoopbackServer server(handler);
    InstanceTable table;
    const Expected<SearxPage, SourceFault> page = ask(table, {server.site()});
    if (page) {
        ADD_FAILURE() << "it answers";
        return {};
    }
    EXPECT_EQ(page.error().source, server.site());
    return page.error();
}

SourceFault faultOfStatus(int status, std::vector<std::pair<std::string, std::string>> fields = {})
{
    return faultOf([&](const HttpRequest&) { return statusResponse(status, fields); });
}

} // namespace

TEST(SearxInstances, AsksAsTheConfigurationSays)
{
    LoopbackServer server([](const HttpRequest&) { return jsonResponse(searxJson("https://a.example/", 1, 3)); });
    InstanceTable table;
    const auto page = ask(table, {server.site() + "/searx"},
                          {"\xC3\xA4 & #+%2B \"x\"", 3, SearxCategory::Images, "pt-BR", SafeSearch::Strict});
    ASSERT_TRUE(page);
    EXPECT_EQ(page->answer.rows.size(), 3U);
    EXPECT_EQ(page->instance, server.site() + "/searx");
    const HttpRequest request = server.requests().at(0);
    EXPECT_EQ(request.path, "/searx/search");
    EXPECT_EQ(request.query, "q=%C3%A4%20%26%20%23%2B%252B%20%22x%22&categories=images&pageno=3&language=pt-BR&"
                             "safesearch=2&format=json");
}

TEST(SearxInstances, EachRefusalHasItsReason)
{
    EXPECT_EQ(faultOfStatus(403).kind, Kind::NoJson);
    EXPECT_EQ(faultOfStatus(500).kind, Kind::Status);
    EXPECT_EQ(faultOfStatus(404).detail, "status 404");
    const SourceFault limit = faultOfStatus(429, {{"Retry-After", "30"}});
    EXPECT_EQ(limit.kind, Kind::RateLimit);
    EXPECT_EQ(limit.retry, std::chrono::seconds(30));
    EXPECT_EQ(faultOfStatus(429).retry, std::chrono::seconds(60));
    EXPECT_EQ(faultOfStatus(503, {{"Retry-After", "7"}}).retry, std::chrono::seconds(7));
    const SourceFault moved = faultOfStatus(301, {{"Location", "https://new.example/search?q=words"}});
    EXPECT_EQ(moved.kind, Kind::Moved);
    EXPECT_EQ(moved.detail, "https://new.example/search");
    EXPECT_EQ(faultOf([](const HttpRequest&) { return jsonResponse("<html>"); }).kind, Kind::Nonsense);
    EXPECT_EQ(faultOf([](const HttpRequest&) { return jsonResponse(std::string(kMaxSearxAnswer + 1, ' ')); }).kind,
              Kind::Nonsense);
    const SourceFault engines = faultOf([](const HttpRequest&) {
        return jsonResponse(R"({"results": [], "unresponsive_engines": [["one", "timeout"], ["two", "denied"]]})");
    });
    EXPECT_EQ(engines.kind, Kind::Engines);
    EXPECT_EQ(engines.detail, "one (timeout), two (denied)");
}

TEST(SearxInstances, NoResultsAreNoFault)
{
    const LoopbackServer server([](const HttpRequest&) { return jsonResponse(R"({"results": []})"); });
    InstanceTable table;
    EXPECT_TRUE(ask(table, {server.site()}));
}

TEST(SearxInstances, TheProgramItselfIsNoSource)
{
    Router router;
    bool searched = false;
    const Router::Handler service = [&searched](const HttpRequest&) {
        searched = true;
        return HttpResponse();
    };
    EXPECT_EQ(faultOf([&](const HttpRequest& request) { return router.answerAt(service, request); }).kind, Kind::Loop);
    EXPECT_FALSE(searched);
}

TEST(SearxInstances, InstancesAreTriedInTurnTheLastThatAnsweredFirst)
{
    bool firstAnswers = false;
    LoopbackServer first([&firstAnswers](const HttpRequest&) {
        return firstAnswers ? jsonResponse(searxJson("https://first.example/", 1, 1)) : statusResponse(500);
    });
    LoopbackServer second([](const HttpRequest&) { return jsonResponse(searxJson("https://second.example/", 1, 1)); });
    const std::vector<std::string> instances{first.site(), second.site()};
    InstanceTable table;
    EXPECT_EQ(ask(table, instances)->instance, second.site());
    firstAnswers = true;
    EXPECT_EQ(ask(table, instances)->instance, second.site());
    EXPECT_EQ(first.count(), 1U);
    EXPECT_THAT(table.order({"a", "b", second.site(), "c"}), ElementsAre(second.site(), "a", "b", "c"));
}

TEST(SearxInstances, ARateLimitIsKeptUntilItsEnd)
{
    LoopbackServer server([](const HttpRequest&) { return statusResponse(429, {{"Retry-After", "30"}}); });
    LoopbackServer other([](const HttpRequest&) { return jsonResponse(searxJson("https://other.example/", 1, 1)); });
    auto now = std::chrono::steady_clock::now();
    InstanceTable table([&now] { return now; });
    EXPECT_EQ(ask(table, {server.site()}).error().retry, std::chrono::seconds(30));
    now += std::chrono::seconds(29);
    const auto again = ask(table, {server.site()});
    EXPECT_EQ(again.error().kind, Kind::RateLimit);
    EXPECT_EQ(again.error().retry, std::chrono::seconds(1));
    EXPECT_EQ(ask(table, {server.site(), other.site()})->instance, other.site());
    EXPECT_EQ(server.count(), 1U) << "it was not asked again";
    now += std::chrono::seconds(1);
    EXPECT_FALSE(ask(table, {server.site()}));
    EXPECT_EQ(server.count(), 2U);
}

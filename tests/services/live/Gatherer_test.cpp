#include <atomic>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ground/CurrentTask.h"
#include "live/Gatherer.h"
#include "tests/services/support/ftp_support.h"
#include "tests/services/support/live_support.h"

using namespace quarrynet;
using namespace quarrynet::services;
using ::testing::ElementsAre;
using ::testing::SizeIs;
using Kind = SourceFault::Kind;

namespace {

/// Answers with pages of ten rows, `most` rows in total.
HttpServer::Handler pagesOf(const std::string& base, int most = 1'000'000)
{
    return [base, most](const HttpRequest& request) {
        const int page = std::stoi(parameterOf(request, "pageno"));
        return jsonResponse(searxJson(base, page * 10 - 9, std::min(page * 10, most)));
    };
}

Outcome<Gatherer::IndexPage> noIndex(std::int64_t)
{
    ADD_FAILURE() << "the index was asked";
    return Failure{"none"};
}

Gatherer::AskIndex indexOf(int total, int pageSize = 30)
{
    return [total, pageSize](std::int64_t start) -> Outcome<Gatherer::IndexPage> {
        Gatherer::IndexPage page{total, {}};
        for (int i = static_cast<int>(start) + 1; i <= total && page.rows.size() < static_cast<std::size_t>(pageSize);
             ++i)
            page.rows.push_back({"index:" + std::to_string(i), "", "", "", true});
        return page;
    };
}

ServiceSettings settingsOf(const std::vector<std::vector<std::string>>& sources)
{
    ServiceSettings settings;
    settings.sources.clear();
    for (const auto& instances : sources)
        settings.sources.push_back({instances, 1});
    settings.wait = std::chrono::seconds(20);
    return settings;
}

std::vector<std::string> addressesOf(const Gathered& gathered)
{
    std::vector<std::string> addresses;
    for (const GatheredRow& row : gathered.rows)
        addresses.push_back(row.address);
    return addresses;
}

std::vector<std::string> numbered(const std::string& base, int first, int last)
{
    std::vector<std::string> texts;
    for (int i = first; i <= last; ++i)
        texts.push_back(base + std::to_string(i));
    return texts;
}

class GathererTest : public ::testing::Test
{
protected:
    Gatherer make(const std::vector<std::vector<std::string>>& sources, Gatherer::Limits limits = {})
    {
        return Gatherer(pool_, table_, settingsOf(sources), SearxCategory::General, limits, [this] { return now_; });
    }

    FetchPool pool_;
    InstanceTable table_;
    std::chrono::steady_clock::time_point now_ = std::chrono::steady_clock::now();
};

} // namespace

TEST_F(GathererTest, PagesAreGatheredAheadAndCutAnew)
{
    LoopbackServer server(pagesOf("https://a.example/", 65));
    Gatherer gatherer = make({{server.site()}});
    const Gathered first = gatherer.gather("words", 0, 30, noIndex);
    EXPECT_EQ(addressesOf(first), numbered("https://a.example/", 1, 30));
    EXPECT_TRUE(first.faults.empty());
    EXPECT_EQ(first.total, 31) << "the next page has at least one";
    EXPECT_EQ(server.count(), 3U);
    const Gathered second = gatherer.gather("words", 30, 30, noIndex);
    EXPECT_EQ(addressesOf(second), numbered("https://a.example/", 31, 60));
    EXPECT_EQ(second.total, 61);
    const std::size_t asked = server.count();
    EXPECT_EQ(asked, 6U);
    EXPECT_EQ(addressesOf(gatherer.gather("words", 0, 30, noIndex)), addressesOf(first));
    EXPECT_EQ(gatherer.gather("words", 0, 30, noIndex).total, 61) << "paging back does not shrink it";
    EXPECT_EQ(server.count(), asked) << "kept pages are not asked again";
    const Gathered third = gatherer.gather("words", 60, 30, noIndex);
    EXPECT_EQ(addressesOf(third), numbered("https://a.example/", 61, 65));
    EXPECT_EQ(third.total, 65);
    const Gathered beyond = gatherer.gather("words", 90, 30, noIndex);
    EXPECT_TRUE(beyond.rows.empty());
    EXPECT_EQ(beyond.total, 65);
}

TEST_F(GathererTest, SourcesAreMergedInTurnAndDoublesDropped)
{
    LoopbackServer a(pagesOf("https://a.example/", 4));
    LoopbackServer b([](const HttpRequest& request) {
        return jsonResponse(parameterOf(request, "pageno") == "1" ? R"({"results": [{"url": "https://a.example/2"},
            {"url": "https://b.example/1"}, {"url": "https://b.example/1"}, {"title": "no address"},
            {"url": "https://b.example/2"}]})"
                                                                  : R"({"results": []})");
    });
    Gatherer gatherer = make({{a.site()}, {}, {b.site()}});
    const Gathered gathered = gatherer.gather("words", 0, 30, indexOf(2));
    EXPECT_THAT(addressesOf(gathered),
                ElementsAre("https://a.example/1", "index:1", "https://a.example/2", "https://a.example/3", "index:2",
                            "https://b.example/1", "https://a.example/4", "https://b.example/2"));
    EXPECT_EQ(gathered.total, 8);
}

TEST_F(GathererTest, TheIndexCountsWithAllItsRows)
{
    LoopbackServer server(pagesOf("https://a.example/", 10));
    Gatherer gatherer = make({{server.site()}, {}});
    const Gathered gathered = gatherer.gather("words", 0, 30, indexOf(500));
    EXPECT_THAT(gathered.rows, SizeIs(30));
    EXPECT_GE(gathered.total, 500);
    EXPECT_LE(gathered.total, 510);
    EXPECT_EQ(gatherer.gather("words", 480, 30, indexOf(500)).rows.size(), 30U);
    EXPECT_EQ(gatherer.gather("words", 510, 30, indexOf(500)).rows.size(), 0U);
}

TEST_F(GathererTest, DoublesThatWaitAreCountedOnce)
{
    Gatherer gatherer = make({{}, {}});
    const Gathered gathered = gatherer.gather("words", 0, 30, indexOf(40, 40));
    EXPECT_THAT(gathered.rows, SizeIs(30));
    EXPECT_EQ(gathered.total, 40);
}

TEST_F(GathererTest, AFaultOfOneSourceLeavesTheOthersRows)
{
    LoopbackServer broken([](const HttpRequest&) { return statusResponse(403); });
    LoopbackServer good(pagesOf("https://a.example/", 5));
    Gatherer gatherer = make({{broken.site()}, {good.site()}, {}});
    const Gathered gathered = gatherer.gather(
        "words", 0, 30, [](std::int64_t) -> Outcome<Gatherer::IndexPage> { return Failure{"there is no index"}; });
    EXPECT_EQ(addressesOf(gathered), numbered("https://a.example/", 1, 5));
    ASSERT_EQ(gathered.faults.size(), 2U);
    EXPECT_EQ(gathered.faults[0].kind, Kind::NoJson);
    EXPECT_EQ(gathered.faults[1].kind, Kind::Index);
    EXPECT_EQ(gathered.faults[1].detail, "there is no index");
    EXPECT_EQ(gathered.total, 5);
}

TEST_F(GathererTest, ASourceThatRecoversGoesOn)
{
    std::atomic<bool> down = false;
    LoopbackServer server([&down, pages = pagesOf("https://a.example/")](const HttpRequest& request) {
        return down ? statusResponse(500) : pages(request);
    });
    Gatherer gatherer = make({{server.site()}});
    EXPECT_EQ(gatherer.gather("words", 0, 10, noIndex).rows.size(), 10U);
    down = true;
    const Gathered failed = gatherer.gather("words", 10, 10, noIndex);
    EXPECT_TRUE(failed.rows.empty());
    EXPECT_THAT(failed.faults, SizeIs(1));
    EXPECT_EQ(gatherer.gather("words", 0, 10, noIndex).rows.size(), 10U) << "what was gathered is kept";
    down = false;
    EXPECT_EQ(addressesOf(gatherer.gather("words", 10, 10, noIndex)), numbered("https://a.example/", 11, 20));
}

TEST_F(GathererTest, EndlessPagesEnd)
{
    LoopbackServer same([](const HttpRequest&) { return jsonResponse(searxJson("https://same.example/", 1, 10)); });
    LoopbackServer one([](const HttpRequest& request) {
        return jsonResponse(searxJson("https://one.example/" + parameterOf(request, "pageno") + "/", 1, 1));
    });
    Gatherer repeating = make({{same.site()}});
    const Gathered gathered = repeating.gather("words", 0, 30, noIndex);
    EXPECT_EQ(gathered.rows.size(), 10U);
    EXPECT_EQ(gathered.total, 10);
    EXPECT_LE(same.count(), 4U);
    Gatherer::Limits limits;
    limits.pages = 25;
    Gatherer slow = make({{one.site()}}, limits);
    EXPECT_EQ(slow.gather("words", 0, 30, noIndex).rows.size(), 10U) << "ten pages for one response";
    EXPECT_EQ(one.count(), 10U);
    EXPECT_EQ(slow.gather("words", 0, 30, noIndex).rows.size(), 20U);
    const Gathered last = slow.gather("words", 0, 30, noIndex);
    EXPECT_EQ(last.rows.size(), 25U);
    EXPECT_EQ(last.total, 25);
    slow.gather("words", 0, 1'000, noIndex);
    EXPECT_EQ(one.count(), 25U);
    EXPECT_EQ(slow.gather("words", 900'000'000'000, 30, noIndex).rows.size(), 0U);
}

TEST_F(GathererTest, ResultsAreKeptForSomeTimeOnlyAndInBoundedNumber)
{
    LoopbackServer server(pagesOf("https://a.example/", 5));
    Gatherer::Limits limits;
    limits.searches = 2;
    Gatherer gatherer = make({{server.site()}}, limits);
    const auto askedFor = [&](const std::string& words) {
        const std::size_t before = server.count();
        EXPECT_EQ(gatherer.gather(words, 0, 5, noIndex).rows.size(), 5U);
        return server.count() - before;
    };
    EXPECT_EQ(askedFor("a"), 1U);
    EXPECT_EQ(askedFor("  a "), 0U) << "blanks around the words do not count";
    now_ += limits.keep;
    EXPECT_EQ(askedFor("a"), 1U);
    EXPECT_EQ(askedFor("b"), 1U);
    EXPECT_EQ(askedFor("c"), 1U);
    EXPECT_EQ(askedFor("d"), 1U);
    EXPECT_EQ(askedFor("d"), 0U);
    EXPECT_EQ(askedFor("a"), 1U);
}

TEST_F(GathererTest, WordsWithoutCharactersAskNobody)
{
    LoopbackServer server(pagesOf("https://a.example/"));
    Gatherer gatherer = make({{server.site()}, {}});
    for (const std::string& words : {std::string(), std::string(" \t\r\n"), std::string(3, '\0')}) {
        EXPECT_TRUE(gatherer.gather(words, 0, 30, noIndex).rows.empty());
        EXPECT_EQ(server.count(), 0U);
    }
    gatherer.gather("\xFF\"'<>&" + std::string(100'000, 'x'), 0, 10, indexOf(0));
    EXPECT_EQ(parameterOf(server.requests().at(0), "q").substr(0, 30), "%C3%BF%22%27%3C%3E%26xxxxxxxxx");
}

TEST_F(GathererTest, AnEndThatArrivesEarlyLosesNoEarlierPage)
{
    std::atomic<bool> ended = false;
    LoopbackServer server([&ended](const HttpRequest& request) {
        const int page = std::stoi(parameterOf(request, "pageno"));
        if (page == 3) {
            ended = true;
            return jsonResponse(R"({"results": [], "unresponsive_engines": [["a", "timeout"]]})");
        }
        while (page == 2 && !ended)
            std::this_thread::yield();
        // The blanks delay the second page further.
        return jsonResponse(searxJson("https://a.example/", page * 10 - 9, page * 10) +
                            std::string(page == 2 ? 3'000'000 : 0, ' '));
    });
    Gatherer gatherer = make({{server.site()}});
    const Gathered gathered = gatherer.gather("words", 0, 30, noIndex);
    EXPECT_EQ(addressesOf(gathered), numbered("https://a.example/", 1, 20));
    EXPECT_TRUE(gathered.faults.empty());
    EXPECT_EQ(gathered.total, 20);
    EXPECT_EQ(server.count(), 3U);
}

TEST_F(GathererTest, ASilentSourceHasNoMoreThanItsTime)
{
    const Listener silent;
    LoopbackServer good(pagesOf("https://a.example/", 5));
    ServiceSettings settings = settingsOf({{"http://127.0.0.1:" + std::to_string(silent.port())}, {good.site()}});
    settings.wait = std::chrono::seconds(2);
    Gatherer gatherer(pool_, table_, settings, SearxCategory::General);
    const Gathered gathered = gatherer.gather("words", 0, 30, noIndex);
    EXPECT_EQ(addressesOf(gathered), numbered("https://a.example/", 1, 5));
    ASSERT_EQ(gathered.faults.size(), 1U);
    EXPECT_EQ(gathered.faults[0].kind, Kind::TimeOut);
}

TEST_F(GathererTest, FewSearchesWaitForLong)
{
    const Listener silent;
    Gatherer::Limits limits;
    limits.patience = std::chrono::seconds(0);
    limits.patient = 0;
    Gatherer gatherer = make({{"http://127.0.0.1:" + std::to_string(silent.port())}}, limits);
    const Gathered gathered = gatherer.gather("words", 0, 30, noIndex);
    ASSERT_EQ(gathered.faults.size(), 1U);
    EXPECT_EQ(gathered.faults[0].kind, Kind::TimeOut);
}

TEST_F(GathererTest, AnAbandonedSearchEndsAtOnce)
{
    const Listener silent;
    Gatherer gatherer = make({{"http://127.0.0.1:" + std::to_string(silent.port())}});
    const std::atomic<bool> abandoned = true;
    const CurrentTask task(abandoned);
    EXPECT_TRUE(gatherer.gather("words", 0, 30, noIndex).rows.empty());
}

TEST_F(GathererTest, EqualSearchesAtTheSameTimeAskOnce)
{
    LoopbackServer server(pagesOf("https://a.example/", 5));
    Gatherer gatherer = make({{server.site()}});
    std::vector<std::thread> threads;
    std::atomic<std::size_t> rows = 0;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] { rows += gatherer.gather("words", 0, 5, noIndex).rows.size(); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(rows, 40U);
    EXPECT_EQ(server.count(), 1U);
}

#include <atomic>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "http/Router.h"
#include "index/database.h"
#include "live/Gatherer.h"
#include "search/image/request.h"
#include "search/image/results.h"
#include "search/web/request.h"
#include "search/web/results.h"
#include "searches/ImageService.h"
#include "searches/WebService.h"
#include "sources/indexing.h"
#include "tests/services/support/live_support.h"
#include "tests/services/support/service_support.h"
#include "text/markup.h"

/// Tests the pages of searches over live sources with the program's own requests and parsers.

using namespace quarrynet;
using namespace quarrynet::services;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

constexpr const char* kWebHost = "127.80.0.1";
constexpr const char* kImageHost = "127.80.0.2";

ServiceSettings settingsOf(const std::vector<std::vector<std::string>>& sources)
{
    ServiceSettings settings;
    settings.sources.clear();
    for (const auto& instances : sources)
        settings.sources.push_back({instances, 1});
    settings.wait = std::chrono::seconds(20);
    return settings;
}

class LivePages : public ::testing::Test
{
protected:
    LivePages() : index_(data_.path()) {}

    void build(const std::string& stanzas)
    {
        const Outcome<IndexCounts> counts = buildIndex(
            data_.path(), {{input_.write("list", stanzas)}, "http://mirror.example/", {}}, [](const std::string&) {});
        ASSERT_TRUE(counts) << counts.error().message;
    }

    void ask(const std::vector<std::vector<std::string>>& sources)
    {
        webLive_ = std::make_unique<Gatherer>(pool_, table_, settingsOf(sources), SearxCategory::General);
        imageLive_ = std::make_unique<Gatherer>(pool_, table_, settingsOf(sources), SearxCategory::Images);
        web_ = std::make_unique<WebService>(index_, std::string("http://") + kWebHost, webLive_.get());
        image_ = std::make_unique<ImageService>(index_, kImageHost, nullptr, imageLive_.get());
    }

    template <class Service>
    static HttpResponse respond(Service& service, const std::string& bytes)
    {
        const HeadState head = RequestReader().take(ExactCopy(bytes).view());
        const auto* request = std::get_if<HttpRequest>(&head);
        EXPECT_NE(request, nullptr) << bytes;
        return request == nullptr ? HttpResponse() : service.answer(*request);
    }

    WebResults web(const std::string& typed, int page = 1)
    {
        const HttpResponse response = respond(*web_, *webRequest(typed, page, kWebHost, Route::Direct));
        EXPECT_EQ(response.status, 200) << response.body;
        WebResults results = parseWebResults(ExactCopy(response.body).view());
        EXPECT_FALSE(results.fault);
        return results;
    }

    ImageResults image(const std::string& typed, int page = 1)
    {
        const HttpResponse response =
            respond(*image_, *imageRequest(typed, ImagePages{page, page}, kImageHost, Route::Direct));
        EXPECT_EQ(response.status, 200) << response.body;
        ImageResults results = parseImageResults(ExactCopy(response.body).view(), kImageHost);
        EXPECT_FALSE(results.fault);
        return results;
    }

    HttpResponse get(const std::string& address)
    {
        const std::string rest = address.substr(address.find("://") == std::string::npos ? 0 : 7);
        HttpRequest request;
        request.method = "GET";
        request.host = rest.substr(0, rest.find('/'));
        const std::string target = rest.substr(rest.find('/'));
        request.path = target.substr(0, target.find('?'));
        request.query = target.find('?') == std::string::npos ? "" : target.substr(target.find('?') + 1);
        return request.host == kWebHost ? web_->answer(request) : image_->answer(request);
    }

    TemporaryFolder data_;
    TemporaryFolder input_;
    IndexPool index_;
    FetchPool pool_;
    InstanceTable table_;
    std::unique_ptr<Gatherer> webLive_;
    std::unique_ptr<Gatherer> imageLive_;
    std::unique_ptr<WebService> web_;
    std::unique_ptr<ImageService> image_;
};

} // namespace

TEST_F(LivePages, HostileTextsReachTheProgramAsText)
{
    const std::string title =
        "<p><a href=http://evil.example></a> <b>x</b> &e= </b> of about <b>9</b> src=/images?q=tbn:1:a ";
    LoopbackServer server([&title](const HttpRequest&) {
        std::string json = R"({"results": [)";
        for (const char* number : {"1", "2"}) {
            json.append(R"({"url": "https://a.example/)").append(number).append(R"(><p><a href=x", "content": ")");
            json.append(title).append(R"(", "img_src": "https://a.example/:  <img src=/images?q=tbn:)").append(number);
            json.append(R"(", "title": ")").append(title).append("\"},");
        }
        json.pop_back();
        return jsonResponse(json + "]}");
    });
    ask({{server.site()}});
    const WebResults found = web("words");
    ASSERT_EQ(found.rows, 2U);
    EXPECT_EQ(found.lists.addresses[0], "https://a.example/1%3E%3Cp%3E%3Ca%20href=x");
    EXPECT_EQ(found.lists.cleanedTitles[0], escapeText(title.substr(0, title.size() - 1)));
    EXPECT_EQ(found.countCaption, "2");
    const ImageResults pictures = image("words");
    ASSERT_EQ(pictures.lists.addresses.size(), 2U);
    EXPECT_THAT(pictures.lists.addresses[0], StartsWith("127.80.0.2/go/"));
    EXPECT_EQ(pictures.countCaption, "2");
}

TEST_F(LivePages, TheSliderGoesOnWhileThereIsMore)
{
    LoopbackServer server([](const HttpRequest& request) {
        const int page = std::stoi(parameterOf(request, "pageno"));
        return jsonResponse(searxJson("https://a.example/", page * 10 - 9, std::min(page * 10, 75)));
    });
    ask({{server.site()}});
    EXPECT_EQ(web("words", 1).paging.pageTotal, "2");
    EXPECT_EQ(web("words", 2).paging.pageTotal, "3");
    const WebResults third = web("words", 3);
    EXPECT_EQ(third.rows, 15U);
    EXPECT_EQ(third.lists.addresses[0], "https://a.example/61");
    EXPECT_EQ(third.countCaption, "75");
    EXPECT_TRUE(web("words", 4).nothingFound);
    EXPECT_EQ(image("words", 1).lists.addresses.size(), 10U);
}

TEST_F(LivePages, IndexAndInstancesAreMerged)
{
    build("Package: apple\nDescription: a red apple\nHomepage: http://apple.example/\nFilename: apple.deb\n");
    LoopbackServer server([](const HttpRequest&) {
        return jsonResponse(R"({"results": [{"url": "https://a.example/", "title": "live apple"},
                                            {"url": "http://apple.example/", "title": "twice"}]})");
    });
    ask({{}, {server.site()}});
    const WebResults found = web("apple");
    ASSERT_EQ(found.rows, 2U);
    EXPECT_EQ(found.lists.addresses[0], "http://apple.example/");
    EXPECT_THAT(found.lists.titles[0], HasSubstr("<b>"));
    EXPECT_EQ(found.lists.addresses[1], "https://a.example/");
}

TEST_F(LivePages, ASourceWithoutAnswerIsARowThatLeadsToHelp)
{
    LoopbackServer refuses([](const HttpRequest&) { return statusResponse(403); });
    LoopbackServer answers([](const HttpRequest&) { return jsonResponse(searxJson("https://a.example/", 1, 12)); });
    ask({{refuses.site()}, {answers.site()}, {}});
    const WebResults found = web("words");
    ASSERT_EQ(found.rows, 14U);
    EXPECT_EQ(found.lists.cleanedTitles[0], refuses.site().substr(7) + ": JSON is not enabled (403)");
    EXPECT_THAT(found.lists.cleanedTitles[1], StartsWith("The index: cannot answer: "));
    EXPECT_EQ(found.lists.addresses[2], "https://a.example/1");
    const HttpResponse help = get(found.lists.addresses[0]);
    EXPECT_EQ(help.status, 200);
    EXPECT_THAT(help.body, HasSubstr("search.formats"));
    const ImageResults pictures = image("words");
    ASSERT_EQ(pictures.lists.addresses.size(), 10U);
    EXPECT_THAT(pictures.lists.addresses[0], StartsWith("127.80.0.2/help/source-no-json?"));
    EXPECT_THAT(get(pictures.lists.addresses[0]).body, HasSubstr("search.formats"));
    EXPECT_EQ(get(pictures.lists.thumbnails[0]).contentType, "image/png");
    EXPECT_THAT(pictures.lists.addresses[2], StartsWith("127.80.0.2/go/"));
}

TEST_F(LivePages, OnlyFaultsAreAPageToo)
{
    LoopbackServer refuses([](const HttpRequest&) { return statusResponse(429); });
    ask({{refuses.site()}});
    EXPECT_EQ(web("words").rows, 1U);
    EXPECT_EQ(image("words").lists.addresses.size(), 1U);
    EXPECT_EQ(web("words", 3).rows, 1U);
    EXPECT_EQ(refuses.count(), 1U) << "both searches keep the limit";
}

TEST_F(LivePages, PicturesLeadToTheirRealAddresses)
{
    LoopbackServer server([](const HttpRequest&) {
        return jsonResponse(R"({"results": [{"url": "https://p.example/", "title": "1",
            "img_src": "https://i.example:8443/a:b c.jpg?x=y", "thumbnail_src": "https://t.example/1.png",
            "resolution": "1600x1200"}]})");
    });
    ask({{server.site()}});
    const ImageResults pictures = image("words");
    ASSERT_EQ(pictures.lists.addresses.size(), 1U);
    EXPECT_EQ(pictures.lists.sizes, std::vector<std::string>{"1600 x 1200"});
    const std::string address = pictures.lists.addresses[0];
    EXPECT_THAT(address, HasSubstr("/i.example%3A8443%2Fa%3Ab%20c.jpg"));
    const HttpResponse response = get(address);
    EXPECT_EQ(response.status, 302);
    ASSERT_FALSE(response.fields.empty());
    EXPECT_EQ(response.fields[0].second, "https://i.example:8443/a:b%20c.jpg?x=y");
    EXPECT_EQ(get(pictures.lists.thumbnails[0]).status, 200);
    for (const char* place : {"/go/", "/go/0", "/go/0123456789abcdef/i.example/a.jpg", "/go//https://evil.example/"})
        EXPECT_EQ(get(std::string("http://127.80.0.2") + place).status, 404) << place;
    EXPECT_EQ(get("http://127.80.0.2/images?q=tbn:0:127.80.0.2/go/0/x").status, 404);
    EXPECT_EQ(get("http://127.80.0.2/images?q=tbn:0:127.80.0.2").status, 404);
}

TEST_F(LivePages, BrowsersCannotShortenTheAddressOfAPicture)
{
    LoopbackServer server([](const HttpRequest&) {
        return jsonResponse(R"({"results": [{"url": "https://p.example/", "title": "1",
            "img_src": "https://i.example/a/../../../..\\..\\x.png"}]})");
    });
    ask({{server.site()}});
    const ImageResults pictures = image("words");
    ASSERT_EQ(pictures.lists.addresses.size(), 1U);
    const std::string& address = pictures.lists.addresses[0];
    const std::size_t token = address.find("/go/") + 4;
    const std::string shown = address.substr(address.find('/', token) + 1);
    EXPECT_THAT(shown, StartsWith("i.example%2Fa%2F..%2F..%2F..%2F..%5C..%5Cx.png"));
    EXPECT_EQ(get(address).status, 302);
    EXPECT_EQ(get(pictures.lists.thumbnails[0]).status, 200);
}

TEST_F(LivePages, FaultRowsAreNotCounted)
{
    LoopbackServer refuses([](const HttpRequest&) { return statusResponse(403); });
    LoopbackServer nine([](const HttpRequest& request) {
        const int most = parameterOf(request, "categories") == "images" ? 9 : 29;
        return jsonResponse(searxJson("https://a.example/", 1, parameterOf(request, "pageno") == "1" ? most : 0));
    });
    ask({{refuses.site()}, {nine.site()}});
    const WebResults found = web("words");
    EXPECT_EQ(found.rows, 30U);
    EXPECT_EQ(found.countCaption, "29");
    EXPECT_EQ(found.paging.pageTotal, "1");
    const ImageResults pictures = image("words");
    EXPECT_EQ(pictures.lists.addresses.size(), 10U);
    EXPECT_EQ(pictures.countCaption, "9");
    EXPECT_EQ(pictures.paging.pageTotal, "1");
}

TEST_F(LivePages, FaultRowsHideNoPicture)
{
    std::atomic<int> most = 9;
    LoopbackServer refuses([](const HttpRequest&) { return statusResponse(403); });
    LoopbackServer answers([&most](const HttpRequest& request) {
        const bool first = parameterOf(request, "pageno") == "1";
        return jsonResponse(searxJson("https://a.example/", 1, first ? most.load() : 0));
    });
    for (; most <= 31; ++most) {
        ask({{refuses.site()}, {answers.site()}});
        std::set<std::string> captions;
        std::size_t rows = 0;
        int pages = 1;
        for (int page = 1; page <= pages; ++page) {
            const ImageResults pictures = image("words", page);
            EXPECT_LE(pictures.lists.addresses.size(), 10U);
            for (const std::string& address : pictures.lists.addresses) {
                if (address.find("/go/") == std::string::npos)
                    continue;
                captions.insert(address.substr(address.rfind("%2F")));
                ++rows;
            }
            // The program itself takes a total of 25 for two pages.
            pages = std::stoi(pictures.countCaption.value_or("0")) / 10 + 1;
        }
        EXPECT_EQ(rows, static_cast<std::size_t>(most)) << most;
        EXPECT_EQ(captions.size(), static_cast<std::size_t>(most)) << most;
        EXPECT_THAT(image("words", 1).lists.addresses[0], StartsWith("127.80.0.2/help/source-no-json?"))
            << "it has the fault whether further pages were asked for or not";
    }
}

TEST_F(LivePages, ARealInstanceIsSearched)
{
    const TemporaryFolder folder;
    const PythonServer searx({QUARRYNET_SEARX_INSTANCE, folder.path(), "json"}, "/usr/bin/python3");
    ASSERT_FALSE(searx.ready().empty());
    ask({{"http://127.0.0.1:" + searx.ready()}});
    const WebResults first = web("page", 1);
    ASSERT_EQ(first.rows, 30U);
    EXPECT_EQ(first.lists.addresses[0], "https://pages.example/1?a=b&c=d");
    EXPECT_EQ(first.lists.cleanedTitles[29], "The 30. page & more");
    EXPECT_EQ(first.countCaption, "31");
    const WebResults second = web("page", 2);
    EXPECT_EQ(second.rows, 5U);
    EXPECT_EQ(second.countCaption, "35");
    EXPECT_TRUE(web("nothing of that kind").nothingFound);
    const ImageResults pictures = image("picture", 3);
    EXPECT_EQ(pictures.lists.addresses.size(), 5U);
    EXPECT_THAT(pictures.lists.addresses[0], HasSubstr("/pictures.example%2F21.jpg"));
}

TEST_F(LivePages, ARealInstanceWithoutJsonIsNamed)
{
    const TemporaryFolder folder;
    const PythonServer searx({QUARRYNET_SEARX_INSTANCE, folder.path(), "html"}, "/usr/bin/python3");
    ASSERT_FALSE(searx.ready().empty());
    ask({{"http://127.0.0.1:" + searx.ready()}});
    const WebResults found = web("page");
    ASSERT_EQ(found.rows, 1U);
    EXPECT_THAT(found.lists.cleanedTitles[0], HasSubstr("JSON is not enabled"));
}

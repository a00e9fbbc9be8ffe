#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include <benchmark/benchmark.h>

#include "http/HttpServer.h"
#include "index/database.h"
#include "live/Gatherer.h"
#include "searches/WebService.h"

/// Measures a web search over an instance on the loopback that answers at once with ten rows a page: its first page
/// from kept results, and fresh, compared with fetching the same three answers and nothing else. The targets are 2 ms
/// for the first, and 10 ms more than the counterpart for the second.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

/// Returns an answer with ten rows of usual length, in the shape of an instance.
std::string answerOf(const std::string& page)
{
    std::string json = R"({"query": "q", "number_of_results": 0, "results": [)";
    for (int i = 0; i < 10; ++i) {
        const std::string number = page + std::to_string(i);
        json.append(i > 0 ? "," : "").append(R"({"url": "https://pages.example/)").append(number);
        json.append(R"(", "title": "A title of usual length for the page )").append(number);
        json.append(R"(", "content": ")").append(200, 'x').append(R"(", "engine": "one", "engines": ["one", "two"],
            "parsed_url": ["https", "pages.example", "/", "", "", ""], "positions": [1, 2], "score": 1.5,
            "category": "general", "template": "default.html", "publishedDate": null})");
    }
    return json.append(R"(], "answers": [], "suggestions": ["a", "b"], "unresponsive_engines": []})");
}

class Instance
{
public:
    Instance()
    {
        port_ = std::get<std::uint16_t>(server_.listen("127.0.0.1", 0, [](const HttpRequest& request) {
            HttpResponse response;
            response.contentType = "application/json";
            const std::size_t page = request.query.find("pageno=") + 7;
            response.body = answerOf(request.query.substr(page, request.query.find('&', page) - page));
            return response;
        }));
        thread_ = std::thread([this] { server_.run(); });
        folder_ = std::filesystem::temp_directory_path() / "quarrynet-no-index";
        index_ = std::make_unique<IndexPool>(folder_.string());
        ServiceSettings settings;
        settings.sources = {{{site()}, 1}};
        live_ = std::make_unique<Gatherer>(pool_, table_, settings, SearxCategory::General);
        web_ = std::make_unique<WebService>(*index_, "http://127.80.0.1", live_.get());
    }
    ~Instance()
    {
        server_.stop();
        thread_.join();
    }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    std::string site() const { return "http://127.0.0.1:" + std::to_string(port_); }
    FetchPool& pool() { return pool_; }

    /// Returns the length of the results page.
    std::size_t search(const std::string& words)
    {
        HttpRequest request;
        request.method = "GET";
        request.path = "/search";
        request.query = "num=30&start=0&q=" + words;
        return web_->answer(request).body.size();
    }

private:
    HttpServer server_;
    std::uint16_t port_ = 0;
    std::thread thread_;
    std::filesystem::path folder_;
    std::unique_ptr<IndexPool> index_;
    FetchPool pool_;
    InstanceTable table_;
    std::unique_ptr<Gatherer> live_;
    std::unique_ptr<WebService> web_;
};

Instance& instance()
{
    static Instance only;
    return only;
}

/// Never the same, so that nothing is kept.
std::string freshWords()
{
    static int number = 0;
    return "words" + std::to_string(++number);
}

void keptSearch(benchmark::State& state)
{
    instance().search("kept");
    for (auto _ : state)
        benchmark::DoNotOptimize(instance().search("kept"));
}

void freshSearch(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(instance().search(freshWords()));
}

/// The counterpart: the first answer, then two at once.
void answersAlone(benchmark::State& state)
{
    const auto fetch = [](Fetches& fetches, const std::string& words, int page, const Fetches::Done& done) {
        FetchOrder order;
        order.address = searxAddress(instance().site(), {words, page, SearxCategory::General, "all", SafeSearch::Off});
        order.maxBytes = kMaxSearxAnswer;
        order.end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        fetches.start(std::move(order), done);
    };
    for (auto _ : state) {
        const std::string words = freshWords();
        Fetches fetches(instance().pool());
        fetch(fetches, words, 1, [&](const Fetched&) {
            fetch(fetches, words, 2, [](const Fetched&) {});
            fetch(fetches, words, 3, [](const Fetched&) {});
        });
        fetches.run();
    }
}

BENCHMARK(keptSearch)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(freshSearch)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(answersAlone)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

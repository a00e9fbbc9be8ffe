#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "http/HttpServer.h"
#include "http/Router.h"
#include "live/RemoteThumbnails.h"
#include "search/image/request.h"
#include "search/image/results.h"
#include "searches/ImageService.h"
#include "searches/signs.h"
#include "tests/services/support/service_support.h"
#include "tests/support/test_data.h"

/// Tests pictures of the internet from the program's search to their thumbnails and addresses.

using namespace quarrynet;
using namespace quarrynet::services;
using quarrynet::samples::dataFile;
using ::testing::Contains;
using ::testing::Pair;

namespace {

constexpr const char* kHost = "127.80.0.2";

/// An instance that lists one picture, and serves it itself.
class RemotePicturesTest : public ::testing::Test
{
protected:
    RemotePicturesTest()
    {
        port_ = std::get<std::uint16_t>(server_.listen("127.0.0.1", 0, [this](const HttpRequest& request) {
            HttpResponse response;
            if (request.path == "/small.png") {
                response.contentType = "image/png";
                response.body = dataFile("pictures/sample.png");
            } else {
                response.contentType = "application/json";
                response.body = R"({"query": "q", "results": [{"url": "https://page.example/", "title": "Red car",)"
                                R"( "img_src": "https://pictures.example/red car.jpg?size=1",)"
                                R"( "thumbnail_src": ")" +
                                site() + R"(/small.png"}]})";
            }
            return response;
        }));
        thread_ = std::thread([this] { server_.run(); });
        settings_.sources = {SourceSetting{{site()}, 1}};
        settings_.wait = std::chrono::seconds(20);
    }
    ~RemotePicturesTest() override
    {
        server_.stop();
        thread_.join();
    }

    std::string site() const { return "http://127.0.0.1:" + std::to_string(port_); }

    static HttpResponse ask(ImageService& service, const std::string& text)
    {
        const HeadState head = RequestReader().take(ExactCopy(text).view());
        return service.answer(std::get<HttpRequest>(head));
    }

    /// Searches with the program's request, and returns the first row of its parser.
    static std::pair<std::string, std::string> search(ImageService& service)
    {
        const std::string request = *imageRequest("car", std::nullopt, kHost, Route::Direct);
        const ImageResults read = parseImageResults(ask(service, request).body, kHost);
        EXPECT_EQ(read.lists.addresses.size(), 1U);
        if (read.lists.addresses.empty())
            return {};
        return {read.lists.addresses[0], read.lists.thumbnails[0]};
    }

    static HttpResponse get(ImageService& service, const std::string& address)
    {
        const std::string target = address.substr(address.find(kHost) + std::string(kHost).size());
        return ask(service, "GET " + target + " HTTP/1.1\r\nHost: " + kHost + "\r\n\r\n");
    }

    TemporaryFolder data_;
    IndexPool index_{data_.path()};
    ServiceSettings settings_;
    InstanceTable table_;
    FetchPool sources_;
    Thumbnailer thumbnailer_{QUARRYNET_THUMBNAILS, {std::chrono::seconds(60), 2}};
    HttpServer server_;
    std::uint16_t port_ = 0;
    std::thread thread_;
};

} // namespace

TEST_F(RemotePicturesTest, ThumbnailIsMadeAndTheClickLeadsToThePicture)
{
    Gatherer live(sources_, table_, settings_, SearxCategory::Images);
    FetchPool pictures;
    RemoteThumbnails thumbnails(pictures, thumbnailer_);
    ImageService service(index_, kHost, &thumbnailer_, &live, &thumbnails);
    const auto [address, thumbnail] = search(service);

    const HttpResponse made = get(service, thumbnail.substr(std::string("http://").size()));
    EXPECT_EQ(made.status, 200);
    EXPECT_TRUE(pictureFormat(made.body));
    EXPECT_NE(made.body, placeholder());
    EXPECT_THAT(made.fields, Contains(Pair("Cache-Control", "max-age=86400")));

    const HttpResponse led = get(service, address);
    EXPECT_EQ(led.status, 302);
    EXPECT_THAT(led.fields, Contains(Pair("Location", "https://pictures.example/red%20car.jpg?size=1")));
}

TEST_F(RemotePicturesTest, PrivateAddressShowsThePlaceholder)
{
    Gatherer live(sources_, table_, settings_, SearxCategory::Images);
    FetchPool pictures({}, Reach::PublicOnly);
    RemoteThumbnails thumbnails(pictures, thumbnailer_, {std::chrono::seconds(2), 1'000'000, 1'000'000});
    ImageService service(index_, kHost, &thumbnailer_, &live, &thumbnails);
    const auto [address, thumbnail] = search(service);
    const HttpResponse made = get(service, thumbnail.substr(std::string("http://").size()));
    EXPECT_EQ(made.status, 200);
    EXPECT_EQ(made.body, placeholder());
    EXPECT_THAT(made.fields, Contains(Pair("Cache-Control", "no-store")));
}

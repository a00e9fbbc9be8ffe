#include <atomic>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ground/CurrentTask.h"
#include "http/HttpServer.h"
#include "live/RemoteThumbnails.h"
#include "tests/services/support/service_support.h"
#include "tests/support/test_data.h"
#include "thumbnails/picture_format.h"

using namespace quarrynet;
using namespace quarrynet::services;
using quarrynet::samples::dataFile;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// A server of pictures on a free loopback port. Its handlers are called by path; other paths get 404.
class PictureServer
{
public:
    explicit PictureServer(std::map<std::string, std::function<HttpResponse()>> answers) : answers_(std::move(answers))
    {
        port_ = std::get<std::uint16_t>(
            server_.listen("127.0.0.1", 0, [this](const HttpRequest& request) { return answer(request); }));
        thread_ = std::thread([this] { server_.run(); });
    }
    ~PictureServer()
    {
        server_.stop();
        thread_.join();
    }
    PictureServer(const PictureServer&) = delete;
    PictureServer& operator=(const PictureServer&) = delete;

    std::string address(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(port_) + path; }
    std::vector<std::string> asked()
    {
        const std::lock_guard lock(mutex_);
        return asked_;
    }

private:
    HttpResponse answer(const HttpRequest& request)
    {
        {
            const std::lock_guard lock(mutex_);
            asked_.push_back(request.path);
        }
        const auto found = answers_.find(request.path);
        return found == answers_.end() ? errorResponse(404, "") : found->second();
    }

    std::map<std::string, std::function<HttpResponse()>> answers_;
    std::mutex mutex_;
    std::vector<std::string> asked_;
    HttpServer server_;
    std::uint16_t port_ = 0;
    std::thread thread_;
};

std::function<HttpResponse()> body(std::string bytes, std::string type = "image/png")
{
    return [bytes = std::move(bytes), type = std::move(type)] {
        HttpResponse response;
        response.contentType = type;
        response.body = bytes;
        return response;
    };
}

std::function<HttpResponse()> redirect(std::string target)
{
    return [target = std::move(target)] {
        HttpResponse response = errorResponse(302, "");
        response.fields.emplace_back("Location", target);
        return response;
    };
}

/// Waits until the task of its thread is abandoned, as a server that never answers makes a client wait.
HttpResponse silence()
{
    while (!CurrentTask::abandoned())
        std::this_thread::yield();
    return errorResponse(500, "");
}

class RemoteThumbnailsTest : public testing::Test
{
protected:
    std::optional<std::string> get(const std::string& picture, const std::string& thumbnail = {})
    {
        return thumbnails_.get({picture, thumbnail});
    }

    const std::string png_ = dataFile("pictures/sample.png");
    FetchPool pool_;
    Thumbnailer thumbnailer_{QUARRYNET_THUMBNAILS, {std::chrono::seconds(60), 4}};
    RemoteThumbnails::Limits limits_{std::chrono::seconds(60), 100'000, 1'000'000};
    RemoteThumbnails thumbnails_{pool_, thumbnailer_, limits_};
};

} // namespace

TEST_F(RemoteThumbnailsTest, RasterPicturesByTheirContent)
{
    PictureServer server({{"/png", body(png_, "text/html")},
                          {"/jpeg", body(dataFile("pictures/sample.jpg"))},
                          {"/gif", body(dataFile("pictures/sample.gif"))},
                          {"/webp", body(dataFile("pictures/sample.webp"))}});
    for (const char* path : {"/png", "/jpeg", "/gif", "/webp"}) {
        const std::optional<std::string> made = get(server.address(path));
        ASSERT_TRUE(made) << path;
        EXPECT_TRUE(pictureFormat(*made)) << path;
        EXPECT_NE(*made, png_) << "it was made anew";
    }
}

TEST_F(RemoteThumbnailsTest, OtherContentIsNoPictureAndAskedForOnce)
{
    PictureServer server({{"/svg", body(dataFile("pictures/sample.svg"), "image/svg+xml")},
                          {"/html", body("<html>", "image/png")},
                          {"/empty", body("")},
                          {"/nul", body(std::string(1000, '\0'))},
                          {"/cut", body(png_.substr(0, png_.size() / 2))},
                          {"/large", body(png_ + std::string(100'000, 'x'))}});
    for (const char* path : {"/svg", "/html", "/empty", "/nul", "/large", "/missing"}) {
        EXPECT_FALSE(get(server.address(path))) << path;
        EXPECT_FALSE(get(server.address(path))) << path;
    }
    EXPECT_THAT(server.asked(), ElementsAre("/svg", "/html", "/empty", "/nul", "/large", "/missing"));
    get(server.address("/cut")); // whatever the decoder makes of it
}

TEST_F(RemoteThumbnailsTest, ThePicturesOwnThumbnailComesFirst)
{
    PictureServer server({{"/picture", body(png_)}, {"/small", body(png_)}, {"/broken", body("<html>")}});
    EXPECT_TRUE(get(server.address("/picture"), server.address("/small")));
    EXPECT_THAT(server.asked(), ElementsAre("/small"));
    EXPECT_TRUE(get(server.address("/picture"), server.address("/broken")));
    EXPECT_TRUE(get(server.address("/picture"), server.address("/small")));
    EXPECT_THAT(server.asked(), ElementsAre("/small", "/broken", "/picture"));
}

TEST_F(RemoteThumbnailsTest, RedirectsAreFollowedWithinBounds)
{
    PictureServer other({{"/picture", body(png_)}});
    PictureServer server({{"/1", redirect("/2")},
                          {"/2", redirect(other.address("/picture"))},
                          {"/loop", redirect("/loop")},
                          {"/file", redirect("file:///etc/passwd")},
                          {"/ftp", redirect("ftp://127.0.0.1/a.png")}});
    EXPECT_TRUE(get(server.address("/1")));
    EXPECT_FALSE(get(server.address("/loop")));
    EXPECT_FALSE(get(server.address("/file")));
    EXPECT_FALSE(get(server.address("/ftp")));
    EXPECT_EQ(server.asked().size(), 2U + static_cast<std::size_t>(kMostRedirects) + 1 + 2);
}

TEST(MayRedirectPicture, NeverLosesItsEncryption)
{
    EXPECT_TRUE(mayRedirectPicture("http://a/", "http://b/"));
    EXPECT_TRUE(mayRedirectPicture("http://a/", "HTTPS://b/"));
    EXPECT_TRUE(mayRedirectPicture("https://a/", "https://b/"));
    EXPECT_FALSE(mayRedirectPicture("https://a/", "http://a/"));
    EXPECT_FALSE(mayRedirectPicture("Https://a/", "http://a/"));
    EXPECT_FALSE(mayRedirectPicture("http://a/", "file:///a"));
    EXPECT_FALSE(mayRedirectPicture("http://a/", ""));
}

TEST_F(RemoteThumbnailsTest, ServersThatFailAreAskedAgain)
{
    std::atomic<int> count = 0;
    PictureServer server({{"/busy", [&] { return ++count == 1 ? errorResponse(503, "") : body(png_)(); }}});
    EXPECT_FALSE(get(server.address("/busy")));
    EXPECT_TRUE(get(server.address("/busy")));
    EXPECT_TRUE(get(server.address("/busy")));
    EXPECT_EQ(count, 2);
}

TEST_F(RemoteThumbnailsTest, OneThatNeverComesIsGivenUpAndDelaysNoOther)
{
    PictureServer server({{"/silent", silence}, {"/picture", body(png_)}});
    std::atomic<bool> abandoned = false;
    std::atomic<bool> ended = false;
    std::thread waits([&] {
        const CurrentTask task(abandoned);
        EXPECT_FALSE(get(server.address("/silent")));
        ended = true;
    });
    while (server.asked().empty())
        std::this_thread::yield();
    EXPECT_TRUE(get(server.address("/picture")));
    EXPECT_FALSE(ended);
    abandoned = true;
    waits.join();

    limits_.time = std::chrono::milliseconds(1);
    RemoteThumbnails hasty(pool_, thumbnailer_, limits_);
    EXPECT_FALSE(hasty.get({server.address("/silent"), ""}));
}

TEST_F(RemoteThumbnailsTest, APictureThatNobodyDecodedIsFetchedAgain)
{
    PictureServer server({{"/picture", body(png_)}});
    const TemporaryFolder folder;
    const std::string silent = folder.write("silent", "#!/bin/sh\nexec cat >/dev/null\n");
    ::chmod(silent.c_str(), 0755);
    std::size_t asked = 0;
    for (const std::string& program : {folder.path() + "/none", std::string("/bin/true"), silent}) {
        Thumbnailer thumbnailer(program, {std::chrono::milliseconds(50), 1});
        RemoteThumbnails thumbnails(pool_, thumbnailer, limits_);
        EXPECT_FALSE(thumbnails.get({server.address("/picture"), ""})) << program;
        EXPECT_FALSE(thumbnails.get({server.address("/picture"), ""})) << program;
        EXPECT_EQ(server.asked().size(), asked += 2) << program;
    }
}

TEST_F(RemoteThumbnailsTest, ManyWhoWantTheSameShareItsTime)
{
    constexpr std::size_t kMany = 10;
    PictureServer server({{"/silent", silence}});
    limits_.time = std::chrono::milliseconds(500);
    RemoteThumbnails thumbnails(pool_, thumbnailer_, limits_);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kMany; ++i)
        threads.emplace_back([&] { EXPECT_FALSE(thumbnails.get({server.address("/silent"), ""})); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_LT(server.asked().size(), kMany) << "whoever waited for another has no further time";
}

TEST_F(RemoteThumbnailsTest, PrivateAddressesAreReachedOnlyIfAllowed)
{
    PictureServer server({{"/picture", body(png_)}});
    FetchPool publicOnly({}, Reach::PublicOnly);
    RemoteThumbnails thumbnails(publicOnly, thumbnailer_, limits_);
    const std::string port = server.address("").substr(std::string("http://127.0.0.1").size());
    for (const std::string& host :
         {std::string("127.0.0.1"), std::string("localhost"), std::string("0x7f.1"), std::string("2130706433"),
          std::string("0"), std::string("[::1]"), std::string("[::ffff:127.0.0.1]"), std::string("[::ffff:7f00:1]")})
        EXPECT_FALSE(thumbnails.get({"http://" + host + port + "/picture", ""})) << host;
    EXPECT_THAT(server.asked(), IsEmpty());
    EXPECT_TRUE(get(server.address("/picture")));
}

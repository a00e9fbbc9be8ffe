#include <filesystem>
#include <fstream>
#include <set>

#include <gtest/gtest.h>

#include "ground/percent_coding.h"
#include "http/Router.h"
#include "search/image/request.h"
#include "search/image/results.h"
#include "searches/ImageService.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"
#include "tests/support/test_data.h"
#include "text/markup.h"

/// Tests the image search with the program's own requests and parser.

using namespace quarrynet;
using namespace quarrynet::services;
using quarrynet::samples::dataFile;

namespace {

constexpr const char* kHost = "127.80.0.2";

class Images : public ::testing::Test
{
protected:
    void SetUp() override
    {
        router_.add(kHost, [this](const HttpRequest& request) { return service_.answer(request); });
    }

    std::string add(const std::string& name) const
    {
        return input_.write("pics/" + name, dataFile("pictures/sample.png"));
    }

    void build()
    {
        IndexSources sources;
        sources.packageFiles = {input_.write("list", "")};
        sources.pictureFolders = {input_.path() + "/none", input_.path() + "/pics"};
        const Outcome<IndexCounts> counts = buildIndex(data_.path(), sources, [](const std::string&) {});
        ASSERT_TRUE(counts) << counts.error().message;
    }

    HttpResponse get(const std::string& target, Route route = Route::Direct)
    {
        const std::string prefix = route == Route::Proxy ? std::string("http://") + kHost : "";
        return ask("GET " + prefix + target + " HTTP/1.1\r\nHOST: " + kHost + "\r\n\r\n", route);
    }

    HttpResponse ask(const std::string& bytes, Route route)
    {
        const HeadState head = RequestReader().take(ExactCopy(bytes).view());
        const auto* request = std::get_if<HttpRequest>(&head);
        if (request == nullptr)
            return std::get<HttpResponse>(head);
        const auto handler = [this](const HttpRequest& asked) { return service_.answer(asked); };
        return route == Route::Direct ? router_.answerAt(handler, *request) : router_.answerAsProxy(*request);
    }

    /// Returns the addresses on all pages of a search, parsed from both forms of the request and on both routes.
    std::vector<std::string> readBack(const std::string& typed)
    {
        std::vector<std::string> addresses;
        for (int page = 1;; ++page) {
            const Outcome<ImageAnswer> held = service_.search(decodeQueryValue(typed), (page - 1) * 10);
            EXPECT_TRUE(held);
            for (const Route route : {Route::Direct, Route::Proxy}) {
                const HttpResponse response = ask(*imageRequest(typed, ImagePages{page, page}, kHost, route), route);
                EXPECT_EQ(response.status, 200);
                compare(response.body, *held);
                if (page == 1) {
                    compare(ask(*imageRequest(typed, std::nullopt, kHost, route), route).body, *held);
                }
            }
            for (const ImageHit& hit : held->hits)
                addresses.push_back(hit.address);
            if (held->start + 10 >= held->total)
                return addresses;
        }
    }

    static void compare(const std::string& page, const ImageAnswer& held)
    {
        const ImageResults read = parseImageResults(page, kHost);
        EXPECT_FALSE(read.fault);
        ASSERT_EQ(read.nothingFound, held.hits.empty()) << page;
        ASSERT_EQ(read.lists.addresses.size(), held.hits.size());
        for (std::size_t i = 0; i < held.hits.size(); ++i) {
            EXPECT_EQ(read.lists.addresses[i], held.hits[i].address);
            EXPECT_EQ(read.lists.thumbnails[i], std::string("http://") + kHost + held.hits[i].thumbnail);
        }
        if (!held.hits.empty()) {
            EXPECT_EQ(read.countCaption, withSeparators(held.total));
            ASSERT_TRUE(read.timeCaption);
            EXPECT_EQ(read.timeCaption->find_first_not_of("0123456789."), 5U) << *read.timeCaption;
        }
    }

    std::string thumbnailOf(const std::string& address) { return "/images?q=tbn:1:" + address; }

    TemporaryFolder data_;
    TemporaryFolder input_;
    IndexPool pool_{data_.path()};
    Thumbnailer thumbnailer_{QUARRYNET_THUMBNAILS, {std::chrono::seconds(60), 1}};
    ImageService service_{pool_, kHost, &thumbnailer_};
    Router router_;
};

} // namespace

TEST_F(Images, PagesAreReadBackWhole)
{
    for (int i = 0; i < 37; ++i)
        add("red car " + std::to_string(i) + ".png");
    add("blue car.png");
    build();
    const std::vector<std::string> found = readBack("  red  car ");
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()).size(), 37U);
    EXPECT_EQ(readBack("car").size(), 38U);
    EXPECT_EQ(readBack("car -red"), (std::vector<std::string>{"127.80.0.2/pictures/1/blue%20car.png"}));
    EXPECT_TRUE(readBack("ship").empty());
    EXPECT_TRUE(readBack("   ").empty());
}

TEST_F(Images, NamesAndWordsThatSpellTheMarkersAreReadBackWhole)
{
    const std::string marker = "car src=/images?q=tbn:x:y z";
    add(marker + ".png");
    add("car <b>of about</b> <b> &lt; \"quoted\" 'x' #1 100% a+b \xC3\xA4 \xFF.png");
    add("car:a::b c.png");
    build();
    EXPECT_EQ(readBack("car").size(), 3U);
    EXPECT_EQ(readBack("images?q=tbn:x:y z").size(), 1U);
    EXPECT_TRUE(readBack("none src=/images?q=tbn:a:b c </b> of about <b>").empty());
    for (const std::string& address : readBack("car")) {
        EXPECT_EQ(address.find_first_of(" \"'<>:&#?"), std::string::npos) << address;
        EXPECT_EQ(get(address.substr(address.find('/'))).contentType, "image/png") << address;
        EXPECT_EQ(get(thumbnailOf(address)).contentType, "image/jpeg") << address;
        EXPECT_EQ(get(thumbnailOf(address), Route::Proxy).status, 200) << address;
    }
}

TEST_F(Images, TheLastParameterOfThePagedFormIsNoWord)
{
    add("N.png");
    add("red N.png");
    build();
    const HttpResponse paged = get("/images?num=10&svnum=10&hl=en&filter=0&start=0&safe=off&q=red&sa=N");
    EXPECT_EQ(parseImageResults(paged.body, kHost).lists.addresses.size(), 1U);
    const HttpResponse first = get("/images?num=10&hl=en&filter=0&safe=off&q=red&sa=N");
    EXPECT_TRUE(parseImageResults(first.body, kHost).nothingFound);
}

TEST_F(Images, TheFirstPageIsVaried)
{
    for (int theme = 0; theme < 20; ++theme)
        add("theme" + std::to_string(theme) + "/places/home.png");
    add("a/home-old.png");
    add("a/go home.png");
    build();
    const Outcome<ImageAnswer> answer = service_.search("home", 0);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->total, 22);
    std::set<std::string> firstThree;
    for (std::size_t i = 0; i < 3; ++i)
        firstThree.insert(answer->hits[i].caption.substr(answer->hits[i].caption.rfind('/') + 1));
    EXPECT_EQ(firstThree, (std::set<std::string>{"home.png", "home-old.png", "go home.png"}));
}

TEST_F(Images, ServesThePictureAndItsThumbnail)
{
    add("a.png");
    build();
    const HttpResponse picture = get("/pictures/1/a.png");
    EXPECT_EQ(picture.status, 200);
    EXPECT_EQ(picture.contentType, "image/png");
    ASSERT_NE(picture.file, nullptr);
    EXPECT_EQ(picture.file->content(1 << 20), dataFile("pictures/sample.png"));
    EXPECT_NE(responseBytes(picture, false).find("X-Content-Type-Options: nosniff"), std::string::npos);
    const HttpResponse thumbnail = get(thumbnailOf("127.80.0.2/pictures/1/a.png"));
    EXPECT_EQ(thumbnail.status, 200);
    EXPECT_EQ(pictureFormat(thumbnail.body), PictureFormat::Jpeg);
    // A changed file gets another thumbnail at once.
    input_.write("pics/a.png", dataFile("pictures/sample.gif"));
    EXPECT_NE(get(thumbnailOf("127.80.0.2/pictures/1/a.png")).body, thumbnail.body);
}

TEST_F(Images, DrawingsRunNoScripts)
{
    input_.write("pics/a.svg", dataFile("pictures/sample.svg"));
    build();
    const HttpResponse picture = get("/pictures/1/a.svg");
    EXPECT_EQ(picture.contentType, "image/svg+xml");
    const std::string bytes = responseBytes(picture, true);
    EXPECT_NE(bytes.find("\r\nContent-Security-Policy: default-src 'none';"), std::string::npos) << bytes;
    EXPECT_NE(bytes.find("sandbox\r\n"), std::string::npos) << bytes;
    EXPECT_EQ(get(thumbnailOf("127.80.0.2/pictures/1/a.svg")).contentType, "image/png");
}

TEST_F(Images, NothingOutsideTheIndexIsServed)
{
    const std::string secret = input_.write("secret.png", dataFile("pictures/sample.png"));
    add("a.png");
    add("48x48/b.png");
    add("16x16/b.png");
    std::filesystem::create_symlink(secret, input_.path() + "/pics/link.png");
    build();
    add("later.png");
    for (const std::string path : {"",
                                   "/",
                                   "1",
                                   "1/",
                                   "1/.",
                                   "1/link.png",
                                   "1/later.png",
                                   "1/16x16/b.png",
                                   "1/../secret.png",
                                   "1/%2e%2e/secret.png",
                                   "1/..%2Fsecret.png",
                                   "1/a.png/../../secret.png",
                                   "1//a.png",
                                   "1/a.png%00",
                                   "1/48x48/../a.png",
                                   "2/a.png",
                                   "0/a.png",
                                   "-1/a.png",
                                   "1e0/a.png",
                                   "01x/a.png",
                                   "99999999999999999999/a.png"}) {
        EXPECT_EQ(get("/pictures/" + path).status, 404) << path;
        EXPECT_EQ(get(thumbnailOf("127.80.0.2/pictures/" + path)).status, 404) << path;
    }
    EXPECT_EQ(get("/pictures/1/" + secret).status, 404);
    EXPECT_EQ(get("/pictures/1/a.png").status, 200);
    EXPECT_EQ(get("/images?q=tbn:").status, 404);
    EXPECT_EQ(get("/images?q=tbn:1:127.80.0.2/a.png").status, 404);
}

TEST_F(Images, AFileThatBecameALinkOrNoPictureIsNotServed)
{
    const std::string linked = add("linked.png");
    const std::string changed = add("changed.png");
    const std::string gone = add("gone.png");
    build();
    std::filesystem::remove(linked);
    std::filesystem::create_symlink(input_.write("secret.png", dataFile("pictures/sample.png")), linked);
    input_.write("pics/changed.png", "root:x:0:0:root:/root:/bin/sh\n");
    std::filesystem::remove(gone);
    for (const char* name : {"linked.png", "changed.png", "gone.png"}) {
        EXPECT_EQ(get(std::string("/pictures/1/") + name).status, 404) << name;
        EXPECT_EQ(get(thumbnailOf(std::string("127.80.0.2/pictures/1/") + name)).status, 404) << name;
    }
}

TEST_F(Images, WithoutThumbnailsThePagesAndPicturesStay)
{
    add("a.png");
    build();
    ImageService bare(pool_, "h:8080", nullptr);
    const HttpResponse page = bare.answer({"GET", "h", "/images", "q=png", false});
    const ImageResults read = parseImageResults(page.body, "h:8080");
    ASSERT_EQ(read.lists.addresses.size(), 1U);
    EXPECT_EQ(read.lists.addresses[0], "h:8080/pictures/1/a.png");
    EXPECT_EQ(bare.answer({"GET", "h", "/images", "q=tbn:1:h:8080/pictures/1/a.png", false}).status, 404);
    EXPECT_EQ(bare.answer({"GET", "h", "/pictures/1/a.png", "", false}).status, 200);
}

TEST_F(Images, OtherPagesAreAnswered)
{
    EXPECT_EQ(get("/").status, 200);
    EXPECT_EQ(get("/other").status, 404);
    EXPECT_EQ(get("/images?q=a").status, 503);
    EXPECT_EQ(get("/pictures/1/a.png").status, 503);
    add("a.png");
    build();
    EXPECT_EQ(get("/images").status, 200);
    EXPECT_EQ(get("//images?q=a").status, 200);
    EXPECT_TRUE(parseImageResults(get("/images?start=999999999&q=png").body, kHost).nothingFound);
}

#include <algorithm>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include "common/address_check.h"
#include "ground/percent_coding.h"
#include "http/Router.h"
#include "index/IndexWriter.h"
#include "index/database.h"
#include "search/download/redirect.h"
#include "search/download/request.h"
#include "search/download/results.h"
#include "search/file/request.h"
#include "search/file/results.h"
#include "search/web/request.h"
#include "search/web/results.h"
#include "searches/DownloadService.h"
#include "searches/FileService.h"
#include "searches/WebService.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"
#include "text/markup.h"

/// Tests every page of the services with the program's own requests and parsers.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

constexpr const char* kWebHost = "127.80.0.1";
constexpr const char* kDownloadHost = "127.80.0.3";
constexpr const char* kFileHost = "127.80.0.4";
constexpr Route kRoutes[] = {Route::Direct, Route::Proxy};

/// Returns typed text as the service receives it: the program escapes nothing, so a typed escape is decoded.
std::string asAsked(const std::string& typed)
{
    return decodeQueryValue(typed);
}

std::string withoutMarks(std::string text)
{
    std::erase_if(text, [](char c) { return c == kMatchBegin || c == kMatchEnd; });
    return text;
}

class Pages : public ::testing::Test
{
protected:
    void SetUp() override
    {
        services_[kWebHost] = [this](const HttpRequest& request) { return web_.answer(request); };
        services_[kDownloadHost] = [this](const HttpRequest& request) { return downloads_.answer(request); };
        services_[kFileHost] = [this](const HttpRequest& request) { return files_.answer(request); };
        for (const auto& [host, service] : services_)
            router_.add(host, service);
    }

    void build(const std::string& stanzas, const std::string& contents = {},
               const std::string& mirror = "http://mirror.example/class/")
    {
        IndexSources sources{{input_.write("list", stanzas)}, mirror};
        sources.contentsFiles = {input_.write("contents", contents)};
        const Outcome<IndexCounts> counts = buildIndex(data_.path(), sources, [](const std::string&) {});
        ASSERT_TRUE(counts) << counts.error().message;
    }

    /// Returns the body of the response to one of the program's requests.
    std::string fetch(const std::string& host, Route route, const std::string& bytes)
    {
        const HeadState head = RequestReader().take(ExactCopy(bytes).view());
        const auto* request = std::get_if<HttpRequest>(&head);
        EXPECT_NE(request, nullptr) << bytes;
        if (request == nullptr)
            return {};
        const HttpResponse response =
            route == Route::Direct ? router_.answerAt(services_.at(host), *request) : router_.answerAsProxy(*request);
        EXPECT_EQ(response.status, 200) << bytes;
        const std::string whole = responseBytes(response, false);
        return whole.substr(whole.find("\r\n\r\n") + 4);
    }

    void readWebPages(const std::string& typed)
    {
        for (int page = 1; page <= 4; ++page) {
            const Outcome<WebAnswer> held = web_.search(asAsked(typed), (page - 1) * 30);
            ASSERT_TRUE(held);
            for (const Route route : kRoutes) {
                const std::string body = fetch(kWebHost, route, *webRequest(typed, page, kWebHost, route));
                const WebResults read = parseWebResults(body);
                ASSERT_FALSE(read.fault) << typed;
                ASSERT_EQ(read.nothingFound, held->hits.empty()) << typed;
                ASSERT_EQ(read.rows, held->hits.size()) << typed;
                for (std::size_t i = 0; i < read.rows; ++i) {
                    EXPECT_EQ(read.lists.addresses[i], held->hits[i].address);
                    EXPECT_EQ(read.lists.cleanedTitles[i], escapeText(withoutMarks(held->hits[i].title)));
                }
                if (!held->hits.empty()) {
                    EXPECT_EQ(read.countCaption, withSeparators(held->total));
                    ASSERT_TRUE(read.timeCaption);
                    EXPECT_EQ(read.timeCaption->find_first_not_of("0123456789."), 5U) << *read.timeCaption;
                }
            }
        }
    }

    void readDownloadPages(const std::string& typed)
    {
        for (int page = 1; page <= 4; ++page) {
            const Outcome<ProgramAnswer> held = downloads_.search(asAsked(typed), (page - 1) * 25);
            ASSERT_TRUE(held);
            for (const Route route : kRoutes) {
                const std::string body =
                    fetch(kDownloadHost, route, downloadRequest(typed, page, kDownloadHost, route));
                const DownloadResults read = parseDownloadResults(body);
                ASSERT_EQ(read.nothingFound, held->hits.empty()) << typed;
                ASSERT_EQ(read.rows.size(), held->hits.size()) << typed;
                ASSERT_EQ(read.links.size(), held->hits.size()) << typed;
                for (std::size_t i = 0; i < read.rows.size(); ++i) {
                    const ProgramHit& hit = held->hits[i];
                    EXPECT_EQ(read.rows[i].name, escapeText(hit.name));
                    EXPECT_EQ(read.rows[i].description, escapeText(hit.description));
                    EXPECT_EQ(read.rows[i].systems, escapeText(hit.system));
                    EXPECT_EQ(read.rows[i].size, readableSize(hit.size));
                    EXPECT_EQ(read.rows[i].license, escapeText(hit.license));
                    resolve(read.links[i], hit.address, route);
                }
                if (!held->hits.empty()) {
                    EXPECT_EQ(read.countCaption, std::to_string(held->total));
                }
            }
        }
    }

    void resolve(const std::string& link, const std::string& address, Route route)
    {
        const Result<std::string> path = redirectPath(link);
        ASSERT_TRUE(path) << link;
        const std::string body = fetch(kDownloadHost, route, linkRequest(*path, kDownloadHost, route));
        const auto found = downloadAddress(body);
        ASSERT_TRUE(found);
        ASSERT_TRUE(found->has_value()) << link;
        EXPECT_EQ(**found, address);
    }

    void readFilePages(const std::string& typed)
    {
        for (int page = 1; page <= 4; ++page) {
            const Outcome<FileAnswer> held = files_.search(asAsked(typed), (page - 1) * 20);
            ASSERT_TRUE(held);
            for (const Route route : kRoutes) {
                const std::string body = fetch(kFileHost, route, *fileRequest(typed, page, kFileHost, route));
                const FileResults read = parseFileResults(body);
                ASSERT_FALSE(read.fault) << typed;
                ASSERT_EQ(read.nothingFound, held->hits.empty()) << typed;
                // The program lists a page's files before its directories.
                std::vector<FileHit> hits = held->hits;
                std::stable_partition(hits.begin(), hits.end(), [](const FileHit& hit) { return !hit.directory; });
                ASSERT_EQ(read.rows.size(), hits.size()) << typed;
                for (std::size_t i = 0; i < hits.size(); ++i) {
                    EXPECT_EQ(read.rows[i].path, hits[i].address);
                    EXPECT_EQ(read.rows[i].name, fileNameText(hits[i].name));
                    EXPECT_EQ(read.rows[i].size, hits[i].directory ? "<Dir>" : readableSize(*hits[i].size));
                }
            }
        }
    }

    TemporaryFolder data_;
    TemporaryFolder input_;
    IndexPool pool_{data_.path()};
    WebService web_{pool_, std::string("http://") + kWebHost};
    DownloadService downloads_{pool_};
    FileService files_{pool_};
    std::map<std::string, Router::Handler> services_;
    Router router_;
};

std::string stanza(const std::string& name, const std::string& summary, const std::string& file)
{
    std::string text = "Package: ";
    text.append(name).append("\nDescription: ").append(summary).append("\nArchitecture: amd64\nSection: non-free/x");
    text.append("\nHomepage: http://").append(name).append("/\nSize: 7891488\nFilename: ").append(file).append("\n\n");
    return text;
}

} // namespace

TEST_F(Pages, PlainPackagesAreReadBackWhole)
{
    std::string stanzas;
    for (int i = 0; i < 70; ++i) {
        const std::string number = std::to_string(i);
        std::string file = "pool/main/a/apple";
        file.append(number).append("/apple").append(number).append("_1.deb");
        stanzas += stanza("apple" + number, "a red apple", file);
    }
    build(stanzas);
    readWebPages("apple");
    readWebPages("  red  apple ");
    readDownloadPages("apple");
    readFilePages("apple");
    readFilePages("app le_1");
    readFilePages("_1");
    readFilePages("http://mirror.example/class/pool/main/a/");
}

TEST_F(Pages, FilesInPackagesAreReadBackWhole)
{
    std::string contents;
    for (const char* name : {"apple", "apple class", "<b> apple", "apple&lt;dir&gt;", "apple not found", "apple\"'>",
                             "q=apple", "a:b=apple", "caf\xc3\xa9-apple"})
        contents.append("usr/class/not found/").append(name).append("  x/p\n");
    build(stanza("p", "a package", "pool/class/p_1.deb"), contents);
    readFilePages("apple");
    readFilePages("class");
    readFilePages("p");
}

TEST_F(Pages, FirstPageFormsAreReadBackWhole)
{
    build(stanza("redirpick", "pick a class", "pool/r/redir/redirpick-class_1.0_amd64.deb"));
    for (const Route route : kRoutes) {
        EXPECT_EQ(parseWebResults(fetch(kWebHost, route, *webRequest("class", std::nullopt, kWebHost, route))).rows,
                  1U);
        const DownloadResults downloads = parseDownloadResults(
            fetch(kDownloadHost, route, downloadRequest("class", std::nullopt, kDownloadHost, route)));
        ASSERT_EQ(downloads.rows.size(), 1U);
        EXPECT_EQ(downloads.rows[0].description, "pick a class");
        EXPECT_EQ(downloads.rows[0].systems, "Linux (amd64)");
        EXPECT_EQ(downloads.rows[0].size, "7.5 MB");
        EXPECT_EQ(downloads.rows[0].license, "Non-free");
        const FileResults files =
            parseFileResults(fetch(kFileHost, route, *fileRequest("class", std::nullopt, kFileHost, route)));
        ASSERT_EQ(files.rows.size(), 1U);
        EXPECT_EQ(files.rows[0].name, "redirpick-class_1.0_amd64.deb");
        EXPECT_EQ(decodePercent(files.rows[0].path),
                  "http://mirror.example/class/pool/r/redir/redirpick-class_1.0_amd64.deb");
    }
}

// The program goes back from the scheme's colon over "a href=ftp", whatever the scheme.
TEST_F(Pages, AddressesOfEverySchemeAreReadBackAndCanBeOpened)
{
    for (const std::string scheme : {"http", "https", "ftp"}) {
        const std::string mirror = scheme + "://mirror.example/class/";
        build(stanza("apple", "an apple", "pool/a b/apple+class_1.deb"), {}, mirror);
        for (const char* typed : {"apple", "pool", "a b"})
            readFilePages(typed);
        readFilePages(mirror + "pool/");
        const auto only = [&](const char* typed) {
            const FileResults read = parseFileResults(
                fetch(kFileHost, Route::Direct, *fileRequest(typed, std::nullopt, kFileHost, Route::Direct)));
            EXPECT_EQ(read.rows.size(), 1U) << typed;
            return openableAddress(read.rows.empty() ? "" : read.rows[0].path).value_or("");
        };
        EXPECT_EQ(only("apple"), scheme + "://mirror.example/cl%61ss/pool/a%20b/apple+cl%61ss_1.deb");
        EXPECT_EQ(only("pool"), scheme + "://mirror.example/cl%61ss/pool/");
    }
}

TEST_F(Pages, TextsThatSpellTheMarkersAreReadBackWhole)
{
    const std::vector<std::string> parts{"apple",
                                         "main loop",
                                         "Found:",
                                         "<b>",
                                         "</b>",
                                         "<b> ",
                                         "class",
                                         "pick",
                                         "OS:",
                                         " <",
                                         "-",
                                         "/redir?",
                                         "newlocation = ",
                                         ";",
                                         "not found",
                                         "/form",
                                         "&lt;dir&gt;",
                                         "<dir>",
                                         "q=",
                                         "</a>",
                                         "<p><a",
                                         "&e=",
                                         "http",
                                         ">",
                                         "<",
                                         "\"",
                                         "&",
                                         "redir",
                                         "%2F",
                                         "%3A",
                                         "+",
                                         "%",
                                         "=",
                                         ":",
                                         "#",
                                         "?",
                                         "'",
                                         "of about",
                                         "caf\xe9",
                                         " ",
                                         "1 - 25"};
    std::mt19937 random(42);
    const auto text = [&](int most) {
        std::string made;
        for (auto length = 1 + random() % static_cast<unsigned>(most); length > 0; --length)
            made += parts[random() % parts.size()];
        return made;
    };
    std::string stanzas;
    for (int i = 0; i < 90; ++i) {
        const std::string file = "pool/" + text(4) + "/" + text(4) + "apple" + std::to_string(i);
        stanzas += stanza(text(3) + "apple " + std::to_string(i), text(8), file);
    }
    build(stanzas);
    for (const std::string& part : parts) {
        // The page may also contain the typed word.
        readWebPages("apple " + part);
        readDownloadPages("apple " + part);
        readFilePages("apple " + part);
        readFilePages(part);
    }
    readWebPages("apple");
    readDownloadPages("apple");
    readFilePages("apple");
}

TEST_F(Pages, CrawledNamesAreReadBackAndSurviveANewIndex)
{
    build(stanza("apple", "an apple", "pool/apple_1.deb"));
    {
        Outcome<IndexWriter> writer = IndexWriter::begin(data_.path());
        ASSERT_TRUE(writer);
        const Outcome<std::int64_t> site = writer->addFileSite("ftp://127.0.0.1:2121/", 1);
        ASSERT_TRUE(site);
        const Outcome<std::int64_t> folder = writer->addFileFolder(*site, "not found/<dir>/c++ class/");
        ASSERT_TRUE(folder);
        const std::vector<std::string> names{" apple", "apple not found", "<dir> apple", "apple&lt;dir&gt;",
                                             "apple=:%41"};
        std::int64_t number = 1;
        for (const std::string& name : names) {
            ASSERT_TRUE(writer->addFile(number++, {*folder, name, 5, false}));
            ASSERT_TRUE(writer->addFile(number++, {*folder, name, std::nullopt, true}));
        }
        ASSERT_TRUE(writer->addFile(number++, {*folder, "apple without size", std::nullopt, false}));
        ASSERT_TRUE(writer->commit());
    }
    build(stanza("apple", "an apple", "pool/apple_1.deb"));

    const std::string body =
        fetch(kFileHost, Route::Direct, *fileRequest("apple", std::nullopt, kFileHost, Route::Direct));
    const FileResults read = parseFileResults(body);
    ASSERT_FALSE(read.fault);
    ASSERT_EQ(read.rows.size(), 12U);
    // The exact name comes first, then crawled names that begin with it, then the other crawled ones.
    EXPECT_EQ(read.rows[0].name, "apple_1.deb");
    EXPECT_EQ(read.rows[1].name, "apple not&#32;found");
    EXPECT_EQ(read.rows[3].name, "apple=:%41");
    EXPECT_EQ(read.rows[3].path, "ftp://127.0.0.1:2121/not%20found/%3Cdir%3E/c++%20cl%61ss/apple=:%2541");
    EXPECT_EQ(read.rows[4].size, "");
    EXPECT_EQ(read.rows[5].name, "&#32;apple");
    EXPECT_EQ(read.rows[5].size, "5 bytes");
    EXPECT_EQ(read.rows[10].name, "&#32;apple");
    EXPECT_EQ(read.rows[10].path, "ftp://127.0.0.1:2121/not%20found/%3Cdir%3E/c%2B%2B%20cl%61ss/%20apple/");
    EXPECT_EQ(read.rows[10].size, "<Dir>");
    // The link in a directory row lists that directory.
    EXPECT_EQ(files_.search("ftp://127.0.0.1:2121/not found/<dir>/c++ class/", 0)->hits.size(), 11U);
}

TEST_F(Pages, EmptyPagesAreKnownAsSuch)
{
    build(stanza("apple", "an apple", "pool/apple_1.deb"));
    for (const std::string typed : {"pear", "", "  ", "main loop", "<p><a", "\x01\x02", "\"", "%", "-apple"}) {
        readWebPages(typed);
        readDownloadPages(typed);
        readFilePages(typed);
    }
}

TEST_F(Pages, SearchesThatTakeTooLongAreReadAsPagesWithoutResults)
{
    build(stanza("apple", "an apple", "pool/apple_1.deb"));
    IndexPool hurried(data_.path(), std::chrono::milliseconds(0));
    WebService web(hurried, std::string("http://") + kWebHost);
    DownloadService downloads(hurried);
    FileService files(hurried);
    const auto bodyOf = [](const HttpResponse& response) {
        EXPECT_EQ(response.status, 503);
        EXPECT_NE(response.body.find("it took too long"), std::string::npos) << response.body;
        return response.body;
    };
    const WebResults pages = parseWebResults(bodyOf(web.answer({"GET", kWebHost, "/search", "q=apple", false})));
    EXPECT_FALSE(pages.fault);
    EXPECT_TRUE(pages.nothingFound);
    EXPECT_EQ(pages.rows, 0U);
    const DownloadResults programs = parseDownloadResults(
        bodyOf(downloads.answer({"GET", kDownloadHost, "/3120-20-0-1-5.html", "qt=apple&ca=20", false})));
    EXPECT_TRUE(programs.nothingFound);
    EXPECT_TRUE(programs.rows.empty());
    const FileResults found =
        parseFileResults(bodyOf(files.answer({"GET", kFileHost, "/cgi-bin/s", "t=f&q=apple", false})));
    EXPECT_FALSE(found.fault);
    EXPECT_TRUE(found.rows.empty());
}

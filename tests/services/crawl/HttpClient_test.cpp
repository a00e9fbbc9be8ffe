#include <csignal>
#include <fstream>
#include <map>
#include <mutex>
#include <set>

#include <gtest/gtest.h>

#include "crawl/HttpClient.h"
#include "crawl/crawl.h"
#include "crawl/open_site.h"
#include "ground/ChildProcess.h"
#include "tests/services/support/http_support.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

using Pages = std::map<std::string, std::string>;
using Clock = std::chrono::steady_clock;

/// A server with these responses by path, and 404 for others.
class Site
{
public:
    explicit Site(Pages pages)
        : pages_(std::move(pages)), server_([this](const std::string& path, const std::string& head) {
            const std::lock_guard lock(mutex_);
            asked_.push_back(path);
            head_ = head;
            const auto page = pages_.find(path);
            return page == pages_.end() ? MadeUpHttp::response("none", "404 Not Found") : page->second;
        })
    {}

    Outcome<ListedDirectory> list(const std::string& path) { return client_.list(path); }
    std::string site() const { return server_.site(); }
    std::vector<std::string> asked() const
    {
        const std::lock_guard lock(mutex_);
        return asked_;
    }
    std::string head() const
    {
        const std::lock_guard lock(mutex_);
        return head_;
    }
    void set(const std::string& path, const std::string& page)
    {
        const std::lock_guard lock(mutex_);
        pages_[path] = page;
    }

private:
    mutable std::mutex mutex_;
    Pages pages_;
    std::vector<std::string> asked_;
    std::string head_;
    MadeUpHttp server_;
    FetchPool pool_;
    HttpClient client_{*readCrawlAddress(server_.site()), pool_, pool_};
};

std::string redirect(const std::string& to)
{
    return MadeUpHttp::response("", "302 Found", "Location: " + to + "\r\n");
}

Outcome<Crawl> crawlAll(const std::string& address, const CrawlLimits& limits = {}, const std::string& trusted = {})
{
    const Outcome<CrawlAddress> start = readCrawlAddress(address);
    Clock::time_point now;
    const CrawlTools tools{openSite(*start, trusted), [&now] { return now; },
                           [&now](Clock::duration time) { now += time; }, [](const std::string&) {}};
    return crawl(start->path, limits, tools);
}

std::set<std::string> pathsOf(const Crawl& crawl)
{
    std::set<std::string> paths;
    for (const CrawledFile& file : crawl.files)
        paths.insert(crawl.folders[file.folder] + file.name + (file.directory ? "/" : ""));
    return paths;
}

/// The real server over "root" in a folder.
class Nginx
{
public:
    explicit Nginx(const TemporaryFolder& folder) : pidFile_(folder.path() + "/pid")
    {
        // It exits with a fault if another program has taken the port meanwhile, and otherwise goes to the background
        // once it listens.
        for (int i = 0; i < 20 && site_.empty(); ++i) {
            const std::string address = "127.0.0.1:" + std::to_string(Listener().port());
            std::string config = "master_process off; error_log stderr emerg; events {}\npid " + pidFile_;
            config += ";\nhttp { access_log off; types { text/html html; } default_type text/plain;\n";
            for (const char* kind : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
                config.append(kind).append("_temp_path ").append(folder.path()).append("/").append(kind).append(";\n");
            config += "server { autoindex on; listen " + address + "; root " + folder.path() + "/root; } }\n";
            Outcome<ChildProcess> started = ChildProcess::start(
                {"/usr/sbin/nginx", "-e", "stderr", "-p", folder.path(), "-c", folder.write("nginx.conf", config)});
            if (started && started->wait() == 0)
                site_ = "http://" + address;
        }
    }
    ~Nginx()
    {
        int id = 0;
        std::ifstream(pidFile_) >> id;
        if (id > 0)
            ::kill(id, SIGKILL);
    }
    Nginx(const Nginx&) = delete;
    Nginx& operator=(const Nginx&) = delete;

    bool running() const { return !site_.empty(); }
    const std::string& site() const { return site_; }

private:
    std::string pidFile_;
    std::string site_;
};

} // namespace

TEST(HttpClient, DirectoryIsListedAndTheProgramNamesItself)
{
    Site site({{"/a%20b/", MadeUpHttp::listing("/a b/", {"x.txt", "sub/", "?C=N;O=D", "/other"})}});
    const Outcome<ListedDirectory> directory = site.list("a b/");
    ASSERT_TRUE(directory) << directory.error().message;
    EXPECT_FALSE(directory->refused);
    ASSERT_EQ(directory->entries.size(), 2U);
    EXPECT_EQ(directory->entries[0].name, "x.txt");
    EXPECT_EQ(directory->entries[0].size, 5);
    EXPECT_EQ(directory->entries[1].kind, ListedEntry::Kind::Directory);
    EXPECT_NE(site.head().find("User-Agent: quarrynet-services/"), std::string::npos) << site.head();
}

TEST(HttpClient, RobotsFileIsObeyedAndReadOnce)
{
    Site site({{"/robots.txt", MadeUpHttp::response("User-agent: *\nDisallow: /private/\n")},
               {"/", MadeUpHttp::listing("/", {"private/", "public/"})},
               {"/private/", MadeUpHttp::listing("/private/", {"secret"})},
               {"/public/", redirect("/private/")}});
    EXPECT_FALSE(site.list("")->refused);
    EXPECT_TRUE(site.list("private/")->refused);
    EXPECT_NE(site.list("private/")->reason.find("robots.txt"), std::string::npos);
    EXPECT_TRUE(site.list("public/")->refused) << "a redirect leads to it";
    EXPECT_EQ(site.asked(), (std::vector<std::string>{"/robots.txt", "/", "/public/"}));
}

TEST(HttpClient, ServerThatFailsToSendTheRobotsFileIsNotCrawled)
{
    for (const char* status : {"500 Broken", "503 Busy", "429 Too Many Requests"}) {
        Site site({{"/robots.txt", MadeUpHttp::response("", status)}, {"/", MadeUpHttp::listing("/", {"a"})}});
        const Outcome<ListedDirectory> directory = site.list("");
        ASSERT_FALSE(directory) << status;
        EXPECT_NE(directory.error().message.find("robots.txt"), std::string::npos);
        EXPECT_EQ(site.asked(), (std::vector<std::string>{"/robots.txt"}));
        // Read again at the next call.
        site.set("/robots.txt", MadeUpHttp::response("", "403 Forbidden"));
        EXPECT_TRUE(site.list(""));
    }
}

TEST(HttpClient, RulesOfALongRobotsFileAreObeyedUpToItsBound)
{
    // The bound cuts the rule "Allow: /private/open/" after its first slash.
    std::string text = "User-agent: *\nDisallow: /\nAllow: /public/\n#";
    const std::string last = "\nAllow: /private/open/\nAllow: /late/\n";
    text.append(kMaxRobots - text.size() - std::string_view("\nAllow: /").size(), 'x').append(last);
    const std::string withoutLength = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n";
    for (const std::string& answer : {MadeUpHttp::response(text), withoutLength + text,
                                      MadeUpHttp::response(text + std::string(8'000'000, '\n'))}) {
        Site site({{"/robots.txt", answer}});
        for (const std::string path : {"private/", "private/open/", "late/"}) {
            const Outcome<ListedDirectory> directory = site.list(path);
            ASSERT_TRUE(directory) << directory.error().message;
            EXPECT_NE(directory->reason.find("robots.txt"), std::string::npos) << path << directory->reason;
        }
        EXPECT_NE(site.list("public/")->reason.find("404"), std::string::npos);
        EXPECT_EQ(site.asked(), (std::vector<std::string>{"/robots.txt", "/public/"}));
    }
}

TEST(HttpClient, RobotsFileMayBeOnAnyServerFiveRedirectsAway)
{
    Site other({{"/4", redirect("5")}, {"/5", MadeUpHttp::response("User-agent: *\nDisallow: /private/\n")}});
    Pages pages{{"/", MadeUpHttp::listing("/", {"a"})},
                {"/robots.txt", redirect("/1")},
                {"/1", redirect("/2")},
                {"/2", redirect("/3")},
                {"/3", redirect(other.site() + "/4")}};
    Site site(pages);
    EXPECT_FALSE(site.list("")->refused);
    EXPECT_NE(site.list("private/")->reason.find("robots.txt"), std::string::npos);
    EXPECT_EQ(other.asked(), (std::vector<std::string>{"/4", "/5"}));

    other.set("/5", redirect("/6"));
    Site further(pages);
    EXPECT_EQ(further.list("private/")->reason.find("robots.txt"), std::string::npos) << "counts as a missing file";
    EXPECT_EQ(other.asked(), (std::vector<std::string>{"/4", "/5", "/4", "/5"}));
    other.set("/5", MadeUpHttp::response("", "404 None"));
    EXPECT_TRUE(Site(pages).list(""));
    other.set("/5", MadeUpHttp::response("", "503 Busy"));
    EXPECT_FALSE(Site(pages).list("")) << "a server that fails to send it";
}

TEST(HttpClient, RobotsFileLeadsToNoPrivateAddress)
{
    const Site other({{"/robots.txt", MadeUpHttp::response("User-agent: *\nDisallow:\n")}});
    const MadeUpHttp site([&other](const std::string& path, const std::string&) {
        return path == "/robots.txt" ? redirect("/1")
               : path == "/1"        ? redirect(other.site() + "/robots.txt")
                                     : MadeUpHttp::listing("/", {"a"});
    });
    const Outcome<ListedDirectory> directory = openSite(*readCrawlAddress(site.site()))("");
    ASSERT_FALSE(directory);
    EXPECT_NE(directory.error().message.find("/robots.txt: "), std::string::npos) << directory.error().message;
    EXPECT_TRUE(other.asked().empty());
}

TEST(HttpClient, RobotsFileThatCannotBeReadAllowsNothing)
{
    const std::string manyFields = std::string("HTTP/1.1 200 OK\r\nX: ").append(kMaxAnswerHead, 'x');
    std::string gone;
    {
        const Site closed({});
        gone = closed.site();
    }
    for (const std::string& answer :
         {redirect(gone + "/robots.txt"), redirect("file:///etc/passwd"), redirect("ftp://127.0.0.1/robots.txt"),
          MadeUpHttp::response("", "302 Found"),
          MadeUpHttp::response(std::string(kMaxRobots + 2, 'x'), "302 Found", "Location: /\r\n"),
          manyFields + "\r\n\r\n", manyFields,
          std::string("HTTP/1.1 200 OK\r\nContent-Length: 600000\r\n\r\nUser-agent: *\n")}) {
        Site site({{"/robots.txt", answer}, {"/", MadeUpHttp::listing("/", {"a"})}});
        const Outcome<ListedDirectory> directory = site.list("");
        ASSERT_FALSE(directory) << answer.substr(0, 100);
        EXPECT_NE(directory.error().message.find("/robots.txt: "), std::string::npos);
        EXPECT_EQ(site.asked(), (std::vector<std::string>{"/robots.txt"}));
    }
}

TEST(HttpClient, RedirectsAreFollowedWithinTheSiteOnly)
{
    Site site({{"/a/", redirect("/b/")},
               {"/b/", MadeUpHttp::listing("/b/", {"x"})},
               {"/loop/", redirect("/loop/")},
               {"/out/", redirect("http://other.example/out/")},
               {"/evil/", redirect("javascript:x")},
               {"/page/", redirect("/index.html")},
               {"/index.html", MadeUpHttp::listing("/", {"x"})},
               {"/file/", redirect("file:///etc/passwd")}});
    site.set("/tls/", redirect(std::string("https").append(site.site(), 4).append("/tls/")));
    site.set("/port/", redirect(site.site().append("0/")));
    ASSERT_TRUE(site.list("a/"));
    EXPECT_EQ(site.list("a/")->entries.size(), 1U);
    for (const std::string path : {"loop/", "out/", "evil/", "page/", "file/", "tls/", "port/"}) {
        const Outcome<ListedDirectory> directory = site.list(path);
        ASSERT_TRUE(directory) << path << directory.error().message;
        EXPECT_TRUE(directory->refused) << path;
        EXPECT_TRUE(directory->entries.empty()) << path;
        EXPECT_FALSE(directory->reason.empty()) << path;
    }
    EXPECT_NE(site.list("out/")->reason.find("http://other.example/out/"), std::string::npos);
}

TEST(HttpClient, OtherAnswersAreRefusedOrFailures)
{
    Site site({{"/gone/", MadeUpHttp::response("", "410 Gone")},
               {"/secret/", MadeUpHttp::response(MadeUpHttp::listing("/", {"x"}), "403 Forbidden")},
               {"/page/", MadeUpHttp::response("<title>Welcome</title><a href=x>x</a>")},
               {"/text/", MadeUpHttp::response("<title>Index of /</title><a href=x>x</a>", "200 OK",
                                               "Content-Type: text/plain\r\n")},
               {"/binary/", MadeUpHttp::response(std::string(1000, '\0'))},
               {"/huge/", MadeUpHttp::response("<title>Index of /</title>" + std::string(kMaxListing, ' '))},
               {"/busy/", MadeUpHttp::response("", "429 Too Many Requests")},
               {"/broken/", MadeUpHttp::response("", "500 Broken")},
               {"/cut/", "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 999\r\n\r\n<title>Index of /"},
               {"/nonsense/", "nonsense\r\n\r\n"},
               {"/silent/", ""}});
    for (const char* path : {"gone/", "none/", "secret/", "page/", "text/", "binary/", "huge/"}) {
        const Outcome<ListedDirectory> directory = site.list(path);
        ASSERT_TRUE(directory) << path << directory.error().message;
        EXPECT_TRUE(directory->refused) << path;
        EXPECT_FALSE(directory->reason.empty()) << path;
    }
    for (const char* path : {"busy/", "broken/", "cut/", "nonsense/", "silent/"})
        EXPECT_FALSE(site.list(path)) << path;
    EXPECT_NE(site.list("busy/").error().message.find("fewer requests"), std::string::npos);
}

TEST(HttpCrawl, TreeIsListedWhole)
{
    const Site site({{"/pub/", MadeUpHttp::listing("/pub/", {"a%20b.txt", "sub/", "closed/"})},
                     {"/pub/sub/", MadeUpHttp::listing("/pub/sub/", {"deep/", "class.zip"})},
                     {"/pub/sub/deep/", MadeUpHttp::listing("/pub/sub/deep/", {"/pub/sub/deep/x"})},
                     {"/other/", MadeUpHttp::listing("/other/", {"never"})}});
    const Outcome<Crawl> found = crawlAll(site.site() + "/pub");
    ASSERT_TRUE(found) << found.error().message;
    EXPECT_EQ(pathsOf(*found),
              (std::set<std::string>{"a b.txt", "sub/", "closed/", "sub/deep/", "sub/class.zip", "sub/deep/x"}));
    EXPECT_EQ(found->refused, 1U);
    EXPECT_EQ(found->cut, "");
    EXPECT_NE(crawlAll(site.site() + "/none").error().message.find("404"), std::string::npos);
}

TEST(HttpCrawl, ListingThatListsItselfEnds)
{
    std::size_t requests = 0;
    const MadeUpHttp server([&requests](const std::string& path, const std::string&) {
        ++requests;
        return MadeUpHttp::listing(path, {"self/", "file"});
    });
    const Outcome<Crawl> found = crawlAll(server.site() + "/");
    ASSERT_TRUE(found) << found.error().message;
    EXPECT_EQ(pathsOf(*found), (std::set<std::string>{"self/", "file"}));
    EXPECT_EQ(requests, 3U) << "robots.txt, the directory, and the directory under its other name";
}

TEST(HttpCrawl, EndlessDirectoriesEndAtTheLimits)
{
    std::size_t number = 0;
    const MadeUpHttp server([&number](const std::string& path, const std::string&) {
        ++number;
        return path == "/robots.txt"
                   ? MadeUpHttp::response("", "404 None")
                   : MadeUpHttp::listing(path, {std::string("d").append(std::to_string(number)).append("/"), "e/"});
    });
    const Outcome<Crawl> deep = crawlAll(server.site() + "/", {.depth = 5});
    ASSERT_TRUE(deep);
    EXPECT_EQ(deep->folders.size(), 63U);
    const Outcome<Crawl> many = crawlAll(server.site() + "/", {.entries = 100});
    ASSERT_TRUE(many);
    EXPECT_EQ(many->files.size(), 100U);
    EXPECT_NE(many->cut, "");
}

TEST(HttpCrawl, UnreachableServerIsAFailure)
{
    std::string site;
    {
        const Site gone({});
        site = gone.site();
    }
    EXPECT_FALSE(crawlAll(site + "/"));
}

TEST(HttpCrawl, RealServerIsListedWhole)
{
    if (::access("/usr/sbin/nginx", X_OK) != 0)
        GTEST_SKIP() << "the Debian package nginx-light is not installed";
    const TemporaryFolder folder;
    folder.write("root/pub/with blank + #1 %41?.zip", "xy");
    folder.write("root/pub/caf\xc3\xa9/<b>&amp;.txt", "hello");
    folder.write("root/pub/" + std::string(200, 'n') + ".txt", "z");
    folder.write("root/pub/page/index.html", "<a href=\"never\">never</a>");
    folder.write("root/robots.txt", "User-agent: *\nAllow: /\n");
    const Nginx server(folder);
    ASSERT_TRUE(server.running());
    const Outcome<Crawl> found = crawlAll(server.site() + "/pub");
    ASSERT_TRUE(found) << found.error().message;
    EXPECT_EQ(pathsOf(*found),
              (std::set<std::string>{"with blank + #1 %41?.zip", "caf\xc3\xa9/", "caf\xc3\xa9/<b>&amp;.txt",
                                     std::string(200, 'n') + ".txt", "page/"}));
    EXPECT_EQ(found->refused, 1U) << "a directory with a page of its own";
    for (const CrawledFile& file : found->files)
        EXPECT_EQ(file.size.has_value(), !file.directory) << file.name;
}

#include <filesystem>
#include <map>
#include <pwd.h>
#include <set>

#include <gtest/gtest.h>

#include "crawl/FtpClient.h"
#include "crawl/crawl.h"
#include "crawl/ftp_listing.h"
#include "ground/ChildProcess.h"
#include "searches/FileService.h"
#include "sources/indexing.h"
#include "tests/services/support/MlsdServer.h"
#include "tests/services/support/ftp_support.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

using Clock = std::chrono::steady_clock;

/// A clock that advances only in wait().
class TestClock
{
public:
    CrawlTools tools(std::function<Outcome<ListedDirectory>(std::string_view)> list)
    {
        return {std::move(list), [this] { return now_; }, [this](Clock::duration time) { now_ += time; },
                [](const std::string&) {}};
    }
    std::chrono::seconds passed() const
    {
        return std::chrono::duration_cast<std::chrono::seconds>(now_ - Clock::time_point());
    }

private:
    Clock::time_point now_;
};

std::set<std::string> pathsOf(const Crawl& crawl)
{
    std::set<std::string> paths;
    for (const CrawledFile& file : crawl.files)
        paths.insert(crawl.folders[file.folder] + file.name + (file.directory ? "/" : ""));
    return paths;
}

ListedDirectory mlsd(const std::string& listing)
{
    return {false, listing, readMlsd(listing), {}};
}

Outcome<Crawl> crawlSite(const std::string& site, const std::string& path = "", const CrawlLimits& limits = {})
{
    FtpClient client(*readCrawlAddress(site));
    TestClock clock;
    return crawl(path, limits, clock.tools([&client](std::string_view place) { return client.list(place); }));
}

/// Makes a tree with cyclic links.
void plant(const TemporaryFolder& folder)
{
    folder.write("root/pub/file.txt", "hello");
    folder.write("root/pub/with blank + #1 %41.zip", "xy");
    folder.write("root/pub/sub/deep/class.tar.gz", "z");
    std::filesystem::create_directories(folder.path() + "/root/empty");
    std::filesystem::create_directory_symlink("..", folder.path() + "/root/pub/sub/up");
    std::filesystem::create_directory_symlink("../..", folder.path() + "/root/pub/sub/top");
    std::filesystem::create_symlink("file.txt", folder.path() + "/root/pub/alias.txt");
}

const std::set<std::string> kPlanted{"empty/",
                                     "pub/",
                                     "pub/alias.txt",
                                     "pub/file.txt",
                                     "pub/sub/",
                                     "pub/sub/deep/",
                                     "pub/sub/deep/class.tar.gz",
                                     "pub/sub/top/",
                                     "pub/sub/up/",
                                     "pub/with blank + #1 %41.zip"};

} // namespace

TEST(Crawl, ARealServerWithMlsdIsListedWhole)
{
    const TemporaryFolder folder;
    plant(folder);
    const MlsdServer server(folder.path() + "/root");
    if (!server.running())
        GTEST_SKIP() << "the Debian package python3-pyftpdlib is not installed";
    const Outcome<Crawl> found = crawlSite(server.site());
    ASSERT_TRUE(found) << found.error().message;
    EXPECT_EQ(pathsOf(*found), kPlanted);
    EXPECT_EQ(found->cut, "");
    const Outcome<Crawl> below = crawlSite(server.site(), "pub/sub/deep/");
    ASSERT_TRUE(below);
    EXPECT_EQ(pathsOf(*below), (std::set<std::string>{"class.tar.gz"}));
    EXPECT_EQ(below->files.at(0).size, 1);
    EXPECT_FALSE(crawlSite(server.site(), "none/"));
}

TEST(Crawl, ARealServerWithoutMlsdIsListedWhole)
{
    constexpr const char* kProgram = "/usr/sbin/vsftpd";
    if (::access(kProgram, X_OK) != 0)
        GTEST_SKIP() << "the Debian package vsftpd is not installed";
    const TemporaryFolder folder;
    plant(folder);
    folder.write("chroot/x", "");
    const passwd* user = ::getpwuid(::geteuid());
    ASSERT_NE(user, nullptr);
    const std::string settings =
        folder.write("settings", "listen=NO\nlisten_ipv6=NO\nbackground=NO\nrun_as_launching_user=YES\n"
                                 "anonymous_enable=YES\nlocal_enable=NO\nno_anon_password=YES\nxferlog_enable=NO\n"
                                 "seccomp_sandbox=NO\nisolate=NO\nisolate_network=NO\nftp_username=" +
                                     std::string(user->pw_name) + "\nanon_root=" + folder.path() +
                                     "/root\nsecure_chroot_dir=" + folder.path() + "/chroot\n");
    const TestServer server([&](int socket) { serveByProgram(socket, {kProgram, settings}); });
    const Outcome<Crawl> found = crawlSite(server.site());
    ASSERT_TRUE(found) << found.error().message;
    EXPECT_EQ(pathsOf(*found), kPlanted);
    for (const CrawledFile& file : found->files) {
        if (file.name == "alias.txt" || file.name == "file.txt") {
            EXPECT_EQ(file.size, 5) << file.name;
        }
    }
}

TEST(Crawl, LoopsWithoutUniqueFactsEnd)
{
    std::atomic<int> listings = 0;
    const TestServer server([&](int socket) {
        MadeUpFtp::serve(socket, [&](const std::string&, const std::string&) {
            ++listings;
            return MadeUpFtp::Reply{226, "type=dir; again\r\ntype=file;size=1; a\r\ntype=dir; other\r\n"};
        });
    });
    const Outcome<Crawl> found = crawlSite(server.site());
    ASSERT_TRUE(found) << found.error().message;
    EXPECT_EQ(pathsOf(*found), (std::set<std::string>{"again/", "a", "other/"}));
    EXPECT_EQ(listings, 3);
}

TEST(Crawl, EndlessDirectoriesEndAtTheLimits)
{
    int number = 0;
    const auto endless = [&number](std::string_view) -> Outcome<ListedDirectory> {
        return mlsd("type=dir; d" + std::to_string(++number) + "\ntype=file; f\n");
    };
    TestClock clock;
    CrawlLimits limits;
    limits.depth = 5;
    Outcome<Crawl> found = crawl("", limits, clock.tools(endless));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->folders.size(), 6U);
    EXPECT_EQ(found->cut, "");

    limits.depth = 1000;
    limits.entries = 99;
    found = crawl("", limits, clock.tools(endless));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->files.size(), 99U);
    EXPECT_NE(found->cut, "");

    limits.entries = 1'000'000;
    limits.time = std::chrono::seconds(7);
    limits.rate = 10;
    found = crawl("", limits, clock.tools(endless));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->folders.size(), 70U);
    EXPECT_NE(found->cut, "");
}

TEST(Crawl, ListingsTogetherAreBoundedInMemory)
{
    // Everything that a hostile server can make long: names, facts, link targets and paths.
    const std::string longName(1000, 'n');
    for (const std::string& line :
         {"type=file; NUMBER" + longName, "type=dir;unique=NUMBER" + std::string(200, 'u') + "; NUMBER",
          "type=OS.unix=slink:" + std::string(4000, 't') + "; NUMBER", "type=dir; NUMBER" + longName,
          std::string("type=file; NUMBER")}) {
        int number = 0;
        const auto hostile = [&](std::string_view) -> Outcome<ListedDirectory> {
            std::string listing;
            for (int i = 0; i < 1000; ++i) {
                std::string entry = line;
                for (std::size_t at = entry.find("NUMBER"); at != std::string::npos; at = entry.find("NUMBER"))
                    entry.replace(at, 6, std::to_string(++number));
                listing += entry + "\ntype=dir; d" + std::to_string(number) + "\n";
            }
            return mlsd(listing);
        };
        TestClock clock;
        CrawlLimits limits;
        limits.bytes = 1'000'000;
        const Outcome<Crawl> found = crawl("", limits, clock.tools(hostile));
        ASSERT_TRUE(found);
        EXPECT_NE(found->cut.find("memory"), std::string::npos) << found->cut;
        std::size_t bytes = 0;
        for (const CrawledFile& file : found->files)
            bytes += sizeof file + file.name.size();
        for (const std::string& folder : found->folders)
            bytes += sizeof folder + folder.size();
        EXPECT_LT(bytes, limits.bytes + 10'000) << line.substr(0, 40);
    }
}

TEST(Crawl, ADirectoryWithTooManyEntriesCountsAsRefused)
{
    const TestServer server([](int socket) {
        MadeUpFtp::serve(socket, [](const std::string&, const std::string& path) -> MadeUpFtp::Reply {
            if (path.empty())
                return {226, "type=dir; many\r\ntype=file; one\r\n"};
            std::string listing;
            for (std::size_t i = 0; i <= kMaxListedEntries; ++i)
                listing += "type=file; " + std::to_string(i) + "\n";
            return {226, listing};
        });
    });
    const Outcome<Crawl> found = crawlSite(server.site());
    ASSERT_TRUE(found) << found.error().message;
    EXPECT_EQ(pathsOf(*found), (std::set<std::string>{"many/", "one"}));
    EXPECT_EQ(found->refused, 1U);
}

TEST(Crawl, TheRateIsKept)
{
    TestClock clock;
    int left = 100;
    CrawlLimits limits;
    limits.depth = 1000;
    limits.rate = 5;
    ASSERT_TRUE(crawl("", limits, clock.tools([&left](std::string_view) -> Outcome<ListedDirectory> {
        return mlsd(--left > 0 ? "type=dir; d" + std::to_string(left) + "\n" : "");
    })));
    EXPECT_EQ(clock.passed(), std::chrono::seconds(19));
}

TEST(Crawl, RefusedDirectoriesAndHostileNamesArePassedOver)
{
    const TestServer server([](int socket) {
        MadeUpFtp::serve(socket, [](const std::string& command, const std::string& path) -> MadeUpFtp::Reply {
            if (command == "MLSD")
                return {500};
            if (path == "no")
                return {550};
            if (path == "long")
                return {226, std::string(33U << 20U, 'x')};
            if (!path.empty())
                return {226, ""};
            std::string listing;
            for (const char* name : {"no", "long", "ok", "ok", "..", ".", "a/b", "/etc", "x\x01", "\xC3\xA4 \xFF"})
                listing += std::string("drwxr-xr-x 1 0 0 1 Jan 1 2020 ") + name + "\r\n";
            return {226, listing + "lrwxrwxrwx 1 0 0 1 Jan 1 2020 out -> ../../../etc\r\n" + std::string(100000, 'd')};
        });
    });
    const Outcome<Crawl> found = crawlSite(server.site());
    ASSERT_TRUE(found) << found.error().message;
    EXPECT_EQ(pathsOf(*found), (std::set<std::string>{"no/", "long/", "ok/", "\xC3\xA4 \xFF/", "out"}));
    EXPECT_EQ(found->refused, 2U);
}

TEST(Crawl, ServersThatBreakOffOrTalkNonsenseFail)
{
    for (const std::string greeting : {"", "\r\n", "hello\r\n", "220 x\r\n", "421 busy\r\n", "220-\r\n220-x"}) {
        const TestServer server([&](int socket) { ::send(socket, greeting.data(), greeting.size(), MSG_NOSIGNAL); });
        EXPECT_FALSE(crawlSite(server.site())) << greeting;
    }
    int calls = 0;
    TestClock clock;
    EXPECT_FALSE(crawl("", {}, clock.tools([&calls](std::string_view) -> Outcome<ListedDirectory> {
        if (++calls > 1)
            return Failure{"gone"};
        return mlsd("type=dir; a\ntype=dir; b\ntype=dir; c\ntype=dir; d\n");
    })));
    EXPECT_EQ(calls, 4);
}

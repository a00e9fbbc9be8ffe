#include <atomic>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "crawl/plan.h"
#include "ground/Descriptor.h"
#include "ground/decimal.h"
#include "http/message.h"
#include "tests/services/support/ftp_support.h"
#include "tests/services/support/service_support.h"
#include "tests/support/RunningProgram.h"
#include "tests/support/test_data.h"

/// Tests the program itself, started as a user or a script starts it.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

/// The running program: a pipe receives its standard output, a file its error output.
class Running : public RunningProgram
{
public:
    Running(std::vector<std::string> arguments, std::string errorFile)
        // The configuration of whoever runs the test must not matter.
        : RunningProgram(named(std::move(arguments)), std::move(errorFile), {"XDG_CONFIG_HOME=/nonexistent"})
    {}

    /// Returns the value of the line "NAME:" in the process's /proc status.
    std::string status(const std::string& name) const
    {
        std::ifstream file("/proc/" + std::to_string(id()) + "/status");
        for (std::string line; std::getline(file, line);) {
            if (line.rfind(name + ":", 0) == 0)
                return line.substr(name.size() + 1);
        }
        return "";
    }

private:
    static std::vector<std::string> named(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), QUARRYNET_SERVICES);
        return arguments;
    }
};

class Program : public ::testing::Test
{
protected:
    Running start(std::vector<std::string> arguments) { return {std::move(arguments), folder_.path() + "/errors"}; }

    Running serve(std::vector<std::string> more = {})
    {
        std::vector<std::string> arguments{"serve", "--data", data(), "--port", "0", "--proxy-port", "0"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return start(std::move(arguments));
    }

    void index()
    {
        // The services give up root's rights, so the folder must be accessible to another user.
        std::filesystem::permissions(folder_.path(), std::filesystem::perms::others_exec,
                                     std::filesystem::perm_options::add);
        folder_.write("pics/sample.png", quarrynet::samples::dataFile("pictures/sample.png"));
        const std::string list = folder_.write(
            "list", "Package: apple\nDescription: a red apple\nHomepage: http://apple.example/\nFilename: apple.deb\n");
        Running run = start({"index", "--data", data(), "--packages", list, "--mirror", "http://mirror.example",
                             "--folder", folder_.path() + "/docs", "--pictures", folder_.path() + "/pics"});
        ASSERT_EQ(run.wait(), 0) << run.errors();
    }

    std::string data() const { return folder_.path() + "/data"; }

    TemporaryFolder folder_;
};

/// Returns the port in "name=http://address:" of the ready line, or 0 if there is none.
std::uint16_t portOf(const std::string& ready, const std::string& name)
{
    const std::size_t at = ready.find(" " + name + "=http://");
    if (at == std::string::npos)
        return 0;
    const std::size_t colon = ready.find(':', ready.find("//", at));
    return static_cast<std::uint16_t>(
        wholeNumber(ready.substr(colon + 1, ready.find('/', colon) - colon - 1)).value_or(0));
}

std::string ask(const std::string& address, std::uint16_t port, const std::string& target)
{
    const RawClient client(address, port);
    EXPECT_TRUE(client.connected()) << address << ":" << port;
    client.send("GET " + target + " HTTP/1.1\r\nHOST: 127.80.0.1\r\nConnection: close\r\n\r\n");
    return client.receiveAll();
}

} // namespace

TEST_F(Program, IndexesServesAndEndsCleanly)
{
    index();
    for (const int number : {SIGTERM, SIGINT}) {
        Running server = serve();
        const std::string ready = server.readLine();
        ASSERT_EQ(ready.substr(0, 25), "quarrynet-services: ready");
        const std::string web =
            ask("127.80.0.1", portOf(ready, "web"), "/search?num=30&hl=en&filter=0&safe=off&q=apple");
        EXPECT_NE(web.find("<p><a href=http://apple.example/>"), std::string::npos) << web;
        EXPECT_NE(ask("127.80.0.3", portOf(ready, "download"), "/3120-20-0-1-5.html?qt=apple&ca=20").find("main loop"),
                  std::string::npos);
        EXPECT_NE(ask("127.80.0.4", portOf(ready, "file"), "/cgi-bin/s?t=f&d=&l=en&m=20&q=apple")
                      .find("http://mirror.example/apple.deb"),
                  std::string::npos);
        const std::uint16_t proxy = portOf(ready, "proxy");
#ifdef QUARRYNET_WITH_IMAGES
        const std::string images = "/images?num=10&hl=en&filter=0&safe=off&q=sample";
        const std::uint16_t port = portOf(ready, "image");
        for (const std::string& page :
             {ask("127.80.0.2", port, images), ask("127.0.0.1", proxy, "http://127.80.0.2" + images)}) {
            const std::size_t marker = page.find("/images?q=tbn:");
            ASSERT_NE(marker, std::string::npos) << page;
            const std::string thumbnail = page.substr(marker, page.find(' ', marker) - marker);
            EXPECT_NE(thumbnail.find(":127.80.0.2:" + std::to_string(port) + "/pictures/"), std::string::npos);
            EXPECT_NE(ask("127.80.0.2", port, thumbnail).find("Content-Type: image/jpeg"), std::string::npos);
        }
#endif
        EXPECT_NE(ask("127.0.0.1", proxy, "http://127.80.0.3//3120-20-0-1-5.html?qt=apple&ca=20").find("main loop"),
                  std::string::npos);
        EXPECT_EQ(ask("127.0.0.1", proxy, "http://other.example/").substr(9, 3), "403");
        server.signal(number);
        EXPECT_EQ(server.wait(), 0);
    }
}

TEST_F(Program, ServesWithoutAnIndexAndFindsItWhenItComes)
{
    Running server = serve();
    const std::string ready = server.readLine();
    EXPECT_NE(server.errors().find("quarrynet-services index --data " + data()), std::string::npos) << server.errors();
    const std::string refusal = ask("127.80.0.1", portOf(ready, "web"), "/search?q=apple");
    EXPECT_EQ(refusal.substr(9, 3), "503");
    EXPECT_EQ(refusal.find(data()), std::string::npos) << "pages name no folders: " << refusal;
    folder_.write("other/errors", "");
    const std::string list = folder_.write("list", "Package: apple\nHomepage: http://apple.example/\n");
    Running run(
        {"index", "--data", data(), "--packages", list, "--folder", folder_.path(), "--pictures", folder_.path()},
        folder_.path() + "/other/errors");
    ASSERT_EQ(run.wait(), 0) << run.errors();
    EXPECT_EQ(ask("127.80.0.1", portOf(ready, "web"), "/search?q=apple").substr(9, 3), "200");
}

TEST_F(Program, IndexIfNeededLeavesAUsableIndexAlone)
{
    index();
    const auto made = std::filesystem::last_write_time(data() + "/index.sqlite");
    const std::vector<std::string> again{"index", "--if-needed", "--data",
                                         data(),  "--packages",  folder_.path() + "/none"};
    EXPECT_EQ(start(again).wait(), 0);
    EXPECT_EQ(std::filesystem::last_write_time(data() + "/index.sqlite"), made);
    folder_.write("data/index.sqlite", "of another time");
    EXPECT_EQ(start(again).wait(), 1);
    EXPECT_EQ(start({"index", "--if-needed", "--data", data(), "--packages", folder_.path() + "/list"}).wait(), 0);
    EXPECT_GT(std::filesystem::file_size(data() + "/index.sqlite"), 1000U);
}

// The unit of the timer and the one that makes the first index may start together.
TEST_F(Program, IndexWaitsForAnotherOnlyIfAskedTo)
{
    index();
    const Descriptor lock(::open((data() + "/index.lock").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::flock(lock.number(), LOCK_EX), 0);
    const std::vector<std::string> again{"index",    "--data", data(),       "--packages", folder_.path() + "/list",
                                         "--folder", "/none",  "--pictures", "/none"};
    Running refused = start(again);
    EXPECT_EQ(refused.wait(), 1);
    EXPECT_NE(refused.errors().find("another quarrynet-services is writing the index"), std::string::npos);
    const std::string pipe = folder_.path() + "/pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const Descriptor errors(::open(pipe.c_str(), O_RDWR | O_CLOEXEC));
    std::vector<std::string> waiting = again;
    waiting.emplace_back("--wait");
    Running patient(waiting, pipe);
    char first[40] = {};
    ASSERT_EQ(::read(errors.number(), first, sizeof first - 1), ssize_t{sizeof first - 1});
    EXPECT_EQ(std::string(first).substr(0, 28), "quarrynet-services: waiting:");
    ASSERT_EQ(::flock(lock.number(), LOCK_UN), 0);
    EXPECT_EQ(patient.wait(), 0);
}

// Once a service whose address was taken by another program was told to get a permission, or nothing.
TEST_F(Program, AnAddressInUseIsNamedAndTheOthersAnswer)
{
    index();
    const TestServer taken([](int) {});
    const std::string port = taken.site().substr(taken.site().rfind(':') + 1);
    Running server =
        start({"serve", "--data", data(), "--port", port, "--proxy-port", "0", "--download-address", "127.0.0.1"});
    const std::string ready = server.readLine();
    EXPECT_NE(ready.find(" download=- "), std::string::npos) << ready;
    EXPECT_NE(server.errors().find("127.0.0.1:" + port), std::string::npos) << server.errors();
    EXPECT_NE(server.errors().find("sudo ss -ltnp 'sport = :" + port + "'"), std::string::npos) << server.errors();
    EXPECT_EQ(ask("127.80.0.1", portOf(ready, "web"), "/search?q=apple").substr(9, 3), "200");
}

TEST_F(Program, ServiceThatCannotListenAnswersThroughTheProxy)
{
    index();
    // This machine never has an address of the documentation range.
    Running server = serve({"--web-address", "192.0.2.1"});
    const std::string ready = server.readLine();
    EXPECT_NE(ready.find(" web=- "), std::string::npos) << ready;
    EXPECT_NE(server.errors().find("through the proxy only"), std::string::npos);
    EXPECT_EQ(ask("127.0.0.1", portOf(ready, "proxy"), "http://192.0.2.1/search?q=apple").substr(9, 3), "200");
}

TEST_F(Program, ProxyPortInUseIsAnError)
{
    Running first = serve();
    const std::uint16_t port = portOf(first.readLine(), "proxy");
    Running second({"serve", "--data", data(), "--port", "0", "--proxy-port", std::to_string(port)},
                   folder_.path() + "/errors2");
    EXPECT_EQ(second.wait(), 1);
    EXPECT_NE(second.errors().find("proxy"), std::string::npos);
    EXPECT_NE(second.errors().find("choose another port with --proxy-port"), std::string::npos) << second.errors();
    EXPECT_NE(second.errors().find(std::string(":").append(std::to_string(port))), std::string::npos)
        << second.errors();
}

TEST_F(Program, WrongUsageAndUnusableFoldersAreErrors)
{
    EXPECT_EQ(start({}).wait(), 2);
    EXPECT_EQ(start({"dance"}).wait(), 2);
    EXPECT_EQ(start({"serve", "--port", "x"}).wait(), 2);
    EXPECT_EQ(start({"crawl"}).wait(), 2);
    EXPECT_EQ(start({"--help"}).wait(), 0);
    EXPECT_EQ(start({"--version"}).readLine().substr(0, 19), "quarrynet-services ");
    const std::string file = folder_.write("file", "");
    EXPECT_EQ(start({"serve", "--data", file}).wait(), 1);
    EXPECT_EQ(start({"index", "--data", file + "/below"}).wait(), 1);
    EXPECT_EQ(start({"index", "--data", data(), "--packages", folder_.path() + "/none"}).wait(), 1);
}

TEST_F(Program, TheDataFolderIsItsUsersAlone)
{
    namespace fs = std::filesystem;
    constexpr fs::perms kOthers = fs::perms::group_all | fs::perms::others_all;
    index();
    EXPECT_EQ(fs::status(data()).permissions() & kOthers, fs::perms::none);
    for (const char* name : {"/index.sqlite", "/index.lock"}) {
        EXPECT_EQ(fs::status(data() + name).permissions() & kOthers, fs::perms::none) << name;
        fs::permissions(data() + name, fs::perms::others_read | fs::perms::group_read, fs::perm_options::add);
    }
    fs::permissions(data(), kOthers, fs::perm_options::add);
    // Older versions made files with these permissions.
    EXPECT_EQ(start({"index", "--if-needed", "--data", data()}).wait(), 0);
    EXPECT_EQ(fs::status(data()).permissions() & kOthers, fs::perms::none);
    EXPECT_EQ(fs::status(data() + "/index.sqlite").permissions() & kOthers, fs::perms::none);
    // A folder that contains other things is unchanged, but its index is made private.
    folder_.write("data/other", "");
    fs::permissions(data(), fs::perms::others_exec, fs::perm_options::add);
    fs::permissions(data() + "/index.sqlite", fs::perms::others_read, fs::perm_options::add);
    EXPECT_EQ(start({"index", "--if-needed", "--data", data()}).wait(), 0);
    EXPECT_EQ(fs::status(data()).permissions() & kOthers, fs::perms::others_exec);
    EXPECT_EQ(fs::status(data() + "/index.sqlite").permissions() & kOthers, fs::perms::none);
}

#ifdef __linux__

TEST_F(Program, AFullDiskKeepsTheIndexAndLeavesNothingHalfMade)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can mount a small disk";
    std::filesystem::create_directory(data());
    std::string stanzas;
    for (int i = 0; i < 20'000; ++i)
        stanzas += "Package: p" + std::to_string(i) + "\nDescription: fills the disk\nFilename: p.deb\n\n";
    const std::string small = folder_.write("small", "Package: apple\nFilename: apple.deb\n");
    const std::string large = folder_.write("large", stanzas);
    const std::string command = std::string(QUARRYNET_SERVICES " index --data ") + data() +
                                " --mirror http://m.example --folder /none --pictures /none --packages ";
    RunningProgram run({"/usr/bin/unshare", "--mount", "/bin/sh", "-c",
                        "mount -t tmpfs -o size=2m tmpfs " + data() + " || exit 9; " + command + small +
                            " 2>/dev/null || exit 8; cp " + data() + "/index.sqlite " + folder_.path() + "/old; " +
                            command + large + "; echo status $?; ls " + data() + "; cmp " + data() + "/index.sqlite " +
                            folder_.path() + "/old && echo same"},
                       folder_.path() + "/errors");
    const std::string output = run.readAll();
    if (run.wait() == 9)
        GTEST_SKIP() << "this machine forbids to mount: " << run.errors();
    EXPECT_EQ(output, "status 1\nindex.lock\nindex.sqlite\nsame\n") << run.errors();
    EXPECT_NE(run.errors().find("the disk is full; make room"), std::string::npos) << run.errors();
}

TEST_F(Program, WhatListeningTookIsGivenUp)
{
    index();
    // Only root can enter the folder now.
    std::filesystem::permissions(folder_.path(), std::filesystem::perms::owner_all);
    Running server = serve();
    const std::string ready = server.readLine();
    EXPECT_EQ(server.status("NoNewPrivs"), "\t1");
    for (const char* set : {"CapInh", "CapPrm", "CapEff", "CapAmb"})
        EXPECT_EQ(server.status(set), "\t0000000000000000") << set;
    EXPECT_EQ(server.status("Uid").find("\t0"), std::string::npos) << server.status("Uid");
    EXPECT_EQ(server.status("Gid").find("\t0"), std::string::npos) << server.status("Gid");
    const std::string query = "/search?q=apple";
    EXPECT_NE(ask("127.80.0.1", portOf(ready, "web"), query).find("apple.example"), std::string::npos);
    // The services also find an index that root makes later.
    const std::string list = folder_.write("list", "Package: pear\nHomepage: http://pear.example/\n");
    Running again({"index", "--data", data(), "--packages", list, "--folder", folder_.path() + "/none", "--pictures",
                   folder_.path() + "/none"},
                  folder_.path() + "/errors2");
    ASSERT_EQ(again.wait(), 0) << again.errors();
    EXPECT_NE(ask("127.80.0.1", portOf(ready, "web"), "/search?q=pear").find("pear.example"), std::string::npos);
}

TEST_F(Program, RootBecomesTheUserThatIsNamed)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can become another user";
    index();
    Running server = serve({"--user", "daemon"});
    (void)server.readLine();
    EXPECT_EQ(server.status("Uid"), "\t1\t1\t1\t1");
    EXPECT_EQ(serve({"--user", "root"}).wait(), 1);
    Running unknown({"serve", "--data", data(), "--port", "0", "--proxy-port", "0", "--user", "no such user"},
                    folder_.path() + "/errors2");
    EXPECT_EQ(unknown.wait(), 1);
    EXPECT_NE(unknown.errors().find("no such user"), std::string::npos);
}

TEST_F(Program, AnIndexThatCannotBeReadWithoutRootIsSaidSo)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can become another user";
    index();
    folder_.write("data/other", "");
    std::filesystem::permissions(data(), std::filesystem::perms::owner_all);
    Running server = serve();
    EXPECT_EQ(server.wait(), 1);
    EXPECT_NE(server.errors().find("the user nobody cannot read the index"), std::string::npos) << server.errors();
}

#endif

TEST_F(Program, CrawlSaysWhyItCannot)
{
    const TestServer server([](int) {});
    Running early = start({"crawl", "--data", data(), server.site()});
    EXPECT_EQ(early.wait(), 1);
    EXPECT_NE(early.errors().find("no index yet"), std::string::npos) << early.errors();
    index();
    Running broken = start({"crawl", "--data", data(), server.site()});
    EXPECT_EQ(broken.wait(), 1);
    EXPECT_NE(broken.errors().find(server.site()), std::string::npos) << broken.errors();
    EXPECT_EQ(start({"crawl", "--data", data(), "gopher://h/"}).wait(), 1);
    EXPECT_EQ(start({"crawl", "--data", data(), "--due", server.site()}).wait(), 2);
    Running unplanned = start({"crawl", "--data", data(), "--due", "--config", folder_.write("services.toml", "")});
    EXPECT_EQ(unplanned.wait(), 0) << "a timer that has nothing to do does not fail";
    EXPECT_NE(unplanned.errors().find("[[crawl]]"), std::string::npos) << unplanned.errors();
}

TEST_F(Program, CrawlsThePlanAndAFailureDelaysNoOther)
{
    index();
    std::atomic<bool> answers = false;
    const TestServer broken([&answers](int socket) {
        if (answers)
            MadeUpFtp::serve(socket, [](const std::string&, const std::string&) {
                return MadeUpFtp::Reply{226, "type=file;size=5; late apple.zip\r\n"};
            });
    });
    std::atomic<int> sessions = 0;
    const TestServer good([&sessions](int socket) {
        ++sessions;
        MadeUpFtp::serve(socket, [](const std::string&, const std::string&) {
            return MadeUpFtp::Reply{226, "type=file;size=5; planned apple.zip\r\n"};
        });
    });
    const std::string config =
        folder_.write("services.toml", "[[crawl]]\naddress = \"" + broken.site() + "/pub\"\n[[crawl]]\naddress = \"" +
                                           good.site() + "\"\ninterval-hours = 24\nrate = 1000\n");
    const std::vector<std::string> crawl{"crawl", "--data", data(), "--due", "--config", config};
    Running first = start(crawl);
    EXPECT_EQ(first.wait(), 1);
    EXPECT_NE(first.errors().find(broken.site() + "/pub/ was not crawled"), std::string::npos) << first.errors();
    EXPECT_NE(first.errors().find("1 servers were crawled, 1 failed"), std::string::npos) << first.errors();
    EXPECT_EQ(sessions, 1);
    // Neither is due now.
    Running second = start(crawl);
    EXPECT_EQ(second.wait(), 0) << second.errors();
    EXPECT_NE(second.errors().find("2 were not due"), std::string::npos) << second.errors();
    EXPECT_EQ(sessions, 1);
    // An hour ago the first one failed, which it may try again now; the other one waits a day.
    const std::string hourAgo = std::to_string(std::time(nullptr) - 3600);
    folder_.write("data/crawls.tsv", broken.site() + "/pub/\t" + hourAgo + "\t0\t1\n" + good.site() + "/\t" + hourAgo +
                                         "\t" + hourAgo + "\t0\nftp://removed.example/\t1\t1\t0\n");
    answers = true;
    Running third = start(crawl);
    EXPECT_EQ(third.wait(), 0) << third.errors();
    EXPECT_EQ(sessions, 1);
    std::ifstream file(data() + "/crawls.tsv");
    const std::vector<CrawlRecord> records = readCrawlRecords(std::string(std::istreambuf_iterator<char>(file), {}));
    ASSERT_EQ(records.size(), 2U) << "servers that are no longer in the plan are forgotten";
    EXPECT_EQ(records[0].failures, 0U);
    EXPECT_EQ(records[0].succeeded, records[0].tried);
    Running running = serve();
    const std::string page = ask("127.80.0.4", portOf(running.readLine(), "file"), "/cgi-bin/s?t=f&q=apple");
    EXPECT_NE(page.find("planned%20apple.zip"), std::string::npos);
    EXPECT_NE(page.find("late%20apple.zip"), std::string::npos);
}

TEST_F(Program, OnlyOneProcessCrawlsThePlan)
{
    index();
    const std::string config = folder_.write("services.toml", "[[crawl]]\naddress = \"ftp://127.0.0.1:1/\"\n");
    const Descriptor lock(::open((data() + "/crawls.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_EQ(::flock(lock.number(), LOCK_EX), 0);
    Running crawl = start({"crawl", "--data", data(), "--due", "--config", config});
    EXPECT_EQ(crawl.wait(), 0);
    EXPECT_NE(crawl.errors().find("another quarrynet-services"), std::string::npos) << crawl.errors();
    EXPECT_FALSE(std::filesystem::exists(data() + "/crawls.tsv"));
}

// Once it waited two minutes for a lock that could not be taken.
TEST_F(Program, CrawlThatCannotWriteTheIndexSaysSo)
{
    index();
    std::filesystem::remove(data() + "/index.lock");
    std::filesystem::create_directory(data() + "/index.lock");
    const TestServer server([](int socket) {
        MadeUpFtp::serve(socket, [](const std::string&, const std::string&) {
            return MadeUpFtp::Reply{226, "type=file;size=5; crawled apple.zip\r\n"};
        });
    });
    Running crawl = start({"crawl", "--data", data(), server.site()});
    EXPECT_EQ(crawl.wait(), 1);
    EXPECT_NE(crawl.errors().find(data()), std::string::npos) << crawl.errors();
    EXPECT_EQ(crawl.errors().find("waiting"), std::string::npos) << crawl.errors();
}

// The program once contained the paths of the project's pictures and manual.
TEST_F(Program, HoldsNoPathOfTheSourceTree)
{
    if (std::string_view(QUARRYNET_BUILD_TYPE) != "Release")
        GTEST_SKIP() << "debug information names the source files";
    std::ifstream file(QUARRYNET_SERVICES, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    ASSERT_NE(content.find("quarrynet-services: ready"), std::string::npos);
    // The compiler splits short strings into pieces of 16 bytes.
    EXPECT_EQ(content.find(std::string_view(QUARRYNET_SOURCE_FOLDER).substr(0, 16)), std::string::npos);
}

TEST_F(Program, CrawledFilesAreFoundByAServerThatRuns)
{
    index();
    Running running = serve();
    const std::uint16_t port = portOf(running.readLine(), "file");
    const TestServer server([](int socket) {
        MadeUpFtp::serve(socket, [](const std::string&, const std::string&) {
            return MadeUpFtp::Reply{226, "type=file;size=5; crawled apple.zip\r\n"};
        });
    });
    Running crawl({"crawl", "--data", data(), server.site() + "/pub"}, folder_.path() + "/crawl-errors");
    ASSERT_EQ(crawl.wait(), 0) << crawl.errors();
    EXPECT_NE(ask("127.80.0.4", port, "/cgi-bin/s?t=f&q=crawled").find(server.site() + "/pub/crawled%20apple.zip"),
              std::string::npos);
}

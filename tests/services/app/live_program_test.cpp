#include <algorithm>
#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ground/decimal.h"
#include "tests/services/support/ftp_support.h"
#include "tests/services/support/live_support.h"
#include "tests/services/support/service_support.h"
#include "tests/support/RunningProgram.h"

/// Tests the program with a configuration file, as a user starts it.

using namespace quarrynet;
using namespace quarrynet::services;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

class LiveProgram : public ::testing::Test
{
protected:
    LiveProgram()
    {
        // The services give up root's rights, so the folder must be accessible to another user.
        std::filesystem::permissions(folder_.path(), std::filesystem::perms::others_exec,
                                     std::filesystem::perm_options::add);
    }

    RunningProgram start(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), QUARRYNET_SERVICES);
        arguments.insert(arguments.end(), {"--data", folder_.path() + "/data"});
        return {std::move(arguments),
                folder_.path() + "/errors" + std::to_string(++runs_),
                {"XDG_CONFIG_HOME=" + folder_.path()}};
    }

    RunningProgram serve(std::vector<std::string> more = {})
    {
        std::vector<std::string> arguments{"serve", "--port", "0", "--proxy-port", "0"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return start(std::move(arguments));
    }

    void configure(const std::string& text) { folder_.write("quarrynet/services.toml", text); }

    void index()
    {
        const std::string list = folder_.write("list", "Package: apple\nHomepage: http://apple.example/\n");
        RunningProgram run = start({"index", "--packages", list, "--folder", folder_.path() + "/none", "--pictures",
                                    folder_.path() + "/none"});
        ASSERT_EQ(run.wait(), 0) << run.errors();
    }

    TemporaryFolder folder_;
    int runs_ = 0;
};

/// Returns "http://address:port" of a service in the ready line.
std::string siteOf(const std::string& ready, const std::string& name)
{
    const std::size_t at = ready.find(" " + name + "=") + name.size() + 2;
    return ready.substr(at, ready.find('/', at + 7) - at);
}

std::string ask(const std::string& site, const std::string& target)
{
    const std::size_t colon = site.rfind(':');
    const RawClient client(site.substr(7, colon - 7),
                           static_cast<std::uint16_t>(wholeNumber(site.substr(colon + 1)).value_or(0)));
    EXPECT_TRUE(client.connected()) << site;
    client.send("GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n");
    return client.receiveAll();
}

std::string addressOf(const PythonServer& servers, const std::string& kind)
{
    const std::string ready = " " + servers.ready() + " ";
    const std::size_t begin = ready.find(" " + kind + "=") + kind.size() + 2;
    return "https://localhost:" + ready.substr(begin, ready.find(' ', begin) - begin);
}

} // namespace

TEST_F(LiveProgram, FetchesOverTlsAlsoAfterGivingUpRights)
{
    const PythonServer servers({QUARRYNET_TLS_SERVER, folder_.path()});
    // Only its owner can read the certificates; root reads them before it becomes another user.
    std::filesystem::permissions(folder_.path() + "/ca.pem", std::filesystem::perms::owner_read);
    index();
    configure("ca-file = \"" + folder_.path() + "/ca.pem\"\n[web]\nsources = [\"" + addressOf(servers, "good") +
              "\", \"index\", \"" + addressOf(servers, "expired") + "\"]\n");
    RunningProgram server = serve();
    const std::string ready = server.readLine();
    const std::string page = ask(siteOf(ready, "web"), "/search?q=apple");
    EXPECT_THAT(page, HasSubstr("<p><a href=https://a.example/>over TLS</a>"));
    EXPECT_THAT(page, HasSubstr("<p><a href=http://apple.example/>"));
    EXPECT_THAT(page, HasSubstr("faulty certificate or TLS"));
    EXPECT_THAT(page, HasSubstr("/help/source-tls?"));
    EXPECT_THAT(ask(siteOf(ready, "web"), "/help/source-tls?source=x"), HasSubstr("What to do"));
    server.signal(SIGTERM);
    EXPECT_EQ(server.wait(), 0);
    EXPECT_THAT(server.errors(), Not(HasSubstr("apple"))) << "searches are not logged";
}

TEST_F(LiveProgram, LogsSearchesOnlyIfAskedTo)
{
    index();
    for (const bool byFile : {true, false}) {
        configure(byFile ? "log-queries = true\n" : "");
        RunningProgram server = byFile ? serve() : serve({"--log-queries"});
        ask(siteOf(server.readLine(), "web"), "/search?q=some%20words");
        server.signal(SIGTERM);
        EXPECT_EQ(server.wait(), 0);
        EXPECT_THAT(server.errors(), HasSubstr("quarrynet-services: web: /search?q=some%20words\n"));
    }
}

TEST_F(LiveProgram, AnotherGatewayIsNoSource)
{
    index();
    RunningProgram other = serve();
    configure("[web]\nsources = [\"" + siteOf(other.readLine(), "web") + "\", \"index\"]\n");
    RunningProgram server = serve();
    const std::string page = ask(siteOf(server.readLine(), "web"), "/search?q=apple");
    EXPECT_THAT(page, HasSubstr("this is quarrynet-services itself"));
    EXPECT_THAT(page, HasSubstr("http://apple.example/"));
}

TEST_F(LiveProgram, EndsWhileASourceIsSilent)
{
    const Listener silent;
    configure("[web]\nsources = [\"http://127.0.0.1:" + std::to_string(silent.port()) + "\"]\nwait-seconds = 20\n");
    RunningProgram server = serve();
    const std::string site = siteOf(server.readLine(), "web");
    const std::size_t colon = site.rfind(':');
    const RawClient client(site.substr(7, colon - 7),
                           static_cast<std::uint16_t>(wholeNumber(site.substr(colon + 1)).value_or(0)));
    client.send("GET /search?q=apple HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    const Descriptor asked(silent.accept()); // the source has the question now
    EXPECT_TRUE(asked);
    server.signal(SIGTERM);
    EXPECT_EQ(server.wait(), 0);
}

TEST_F(LiveProgram, CheckSaysWhatAnswersAndWhatToDo)
{
    index();
    LoopbackServer good([](const HttpRequest&) { return jsonResponse(searxJson("https://a.example/", 1, 7)); });
    LoopbackServer refuses([](const HttpRequest&) { return statusResponse(403); });
    configure("[web]\nsources = [\n\"index\",\n[\"" + good.site() + "\",\n\"" + refuses.site() + "\"]]\n");
    RunningProgram failing = start({"check", "--words", "apple"});
    const std::string table = failing.readAll();
    EXPECT_EQ(failing.wait(), 1);
    EXPECT_THAT(table, HasSubstr("SERVICE"));
    EXPECT_THAT(table, HasSubstr(" 1 results\n"));
    EXPECT_THAT(table, HasSubstr(" 7 results on the first page\n"));
    EXPECT_THAT(table, HasSubstr("FAILED: JSON is not enabled (403)\n"));
    EXPECT_THAT(table, HasSubstr(folder_.path() + "/quarrynet/services.toml:4: web search: " + refuses.site()));
    EXPECT_THAT(table, HasSubstr("search.formats"));
    EXPECT_EQ(parameterOf(good.requests().at(0), "q"), "apple");
    EXPECT_EQ(good.count(), 1U);

    configure("[web]\nsources = [\"" + good.site() + "\"]\n[image]\nsources = [\"" + good.site() + "\"]\n");
    EXPECT_EQ(start({"check"}).wait(), 0);
    EXPECT_EQ(parameterOf(good.requests().back(), "q"), "linux");
}

TEST_F(LiveProgram, FaultsOfTheFileAreNamedByLine)
{
    configure("[web]\nsource = []\n");
    RunningProgram run = start({"check"});
    EXPECT_EQ(run.wait(), 1);
    EXPECT_THAT(run.errors(), HasSubstr("/quarrynet/services.toml:2: unknown key \"source\" in [web]"));
    const std::string file = folder_.write("other.toml", "ca-file = \"/nonexistent/ca.pem\"\n");
    RunningProgram other = start({"check", "--config", file});
    EXPECT_EQ(other.wait(), 1);
    EXPECT_THAT(other.errors(), HasSubstr("/nonexistent/ca.pem"));
    EXPECT_EQ(start({"check", "--config", folder_.path() + "/none.toml"}).wait(), 1);
}

// Once a fault in one service's table stopped all services.
TEST_F(LiveProgram, AFaultOfTheFileStopsOnlyWhatItConcerns)
{
    struct Case
    {
        const char* text;
        const char* fault;
        bool web;
        bool image;
    };
    const std::vector<Case> cases{
        {"[web]\nsource = []\n", ":2: unknown key \"source\"", false, true},
        {"[image]\n\nwait-seconds = 99\n", ":3: ", true, false},
        {"[[crawl]]\naddress = \"gopher://h/\"\n", ":2: this cannot be crawled", true, true},
        {"[wbe]\nsources = [\"index\"]\n", ":1: ", false, false},
        {"ca-file = \"/nonexistent/ca.pem\"\n[web]\nsources = [\"https://a.example\"]\n", "/nonexistent/ca.pem", false,
         true},
        {"[web\n", ":1: ", false, false},
        {"\0", ":1: ", false, false},
    };
    index();
    for (const Case& one : cases) {
        SCOPED_TRACE(one.text);
        configure(one.text[0] == '\0' ? std::string(100, '\0') : one.text);
        RunningProgram server = serve();
        const std::string ready = server.readLine();
        const std::string fault = folder_.path() + "/quarrynet/services.toml";
        EXPECT_THAT(server.errors(), HasSubstr(fault));
        EXPECT_THAT(server.errors(), HasSubstr(one.fault));
        const std::string web = ask(siteOf(ready, "web"), "/search?q=apple");
        EXPECT_THAT(web, one.web ? HasSubstr("http://apple.example/") : HasSubstr(fault));
        EXPECT_EQ(web.substr(9, 3), one.web ? "200" : "503");
#ifdef QUARRYNET_WITH_IMAGES
        EXPECT_EQ(ask(siteOf(ready, "image"), "/images?q=apple").substr(9, 3), one.image ? "200" : "503");
#endif
        EXPECT_EQ(ask(siteOf(ready, "download"), "/3120-20-0-1-5.html?qt=apple&ca=20").substr(9, 3), "200");
        EXPECT_EQ(ask(siteOf(ready, "file"), "/cgi-bin/s?t=f&q=apple").substr(9, 3), "200");
    }
}

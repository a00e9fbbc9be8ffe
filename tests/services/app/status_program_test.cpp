#include <algorithm>
#include <filesystem>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "index/database.h"
#include "tests/services/support/ftp_support.h"
#include "tests/services/support/service_support.h"
#include "tests/support/RunningProgram.h"

/// Tests "quarrynet-services status" beside running, broken and hostile services.

using namespace quarrynet;
using namespace quarrynet::services;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

std::size_t countOf(const std::string& part, const std::string& text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

class StatusProgram : public ::testing::Test
{
protected:
    StatusProgram()
    {
        // The services give up root's rights, so the folder must be accessible to another user.
        std::filesystem::permissions(folder_.path(), std::filesystem::perms::others_exec,
                                     std::filesystem::perm_options::add);
    }

    RunningProgram start(std::vector<std::string> arguments, const std::string& dataFolder = {})
    {
        arguments.insert(arguments.begin(), QUARRYNET_SERVICES);
        arguments.insert(arguments.end(), {"--data", dataFolder.empty() ? data() : dataFolder});
        return {std::move(arguments),
                folder_.path() + "/errors",
                {"XDG_CONFIG_HOME=" + folder_.path(), "TZ=UTC", "SUDO_USER="}};
    }

    void index()
    {
        const std::string list = folder_.write(
            "list", "Package: apple\nDescription: a red apple\nHomepage: http://apple.example/\nFilename: apple.deb\n");
        RunningProgram run = start({"index", "--packages", list, "--mirror", "http://mirror.example", "--folder",
                                    "/none", "--pictures", "/none"});
        ASSERT_EQ(run.wait(), 0) << run.errors();
    }

    /// The addresses of this test's services; their port belongs to `taken_` at 127.0.0.1.
    std::vector<std::string> addresses() const
    {
        return {"--web-address",   "127.80.5.1",     "--image-address", "127.80.5.2", "--download-address",
                "127.80.5.3",      "--file-address", "127.80.5.4",      "--port",     port_,
                "--proxy-address", "127.80.5.5",     "--proxy-port",    port_};
    }

    RunningProgram serve(const std::string& dataFolder = {})
    {
        std::vector<std::string> arguments = addresses();
        arguments.insert(arguments.begin(), "serve");
        return start(std::move(arguments), dataFolder);
    }

    /// Runs "status" and returns its output.
    std::string status(const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments = addresses();
        arguments.insert(arguments.begin(), "status");
        arguments.insert(arguments.end(), more.begin(), more.end());
        RunningProgram run = start(std::move(arguments));
        std::string output = run.readAll();
        status_ = run.wait();
        return output + run.errors();
    }

    std::string data() const { return folder_.path() + "/data"; }

    TemporaryFolder folder_;
    TestServer taken_{[](int) {}};
    std::string port_ = taken_.site().substr(taken_.site().rfind(':') + 1);
    int status_ = -1;
};

} // namespace

TEST_F(StatusProgram, AllInOrderIsSaidWithCountsAndAddresses)
{
    index();
    RunningProgram server = serve();
    (void)server.readLine();
    const std::string report = status();
    EXPECT_EQ(status_, 0) << report;
    EXPECT_THAT(report, HasSubstr("Everything is in order."));
    EXPECT_THAT(report, HasSubstr(" 1 programs\n"));
    EXPECT_THAT(report, HasSubstr(" 1 web pages\n"));
    EXPECT_THAT(report, HasSubstr("http://mirror.example/"));
    EXPECT_THAT(report, HasSubstr("\n  written 20"));
    for (const char* host : {"127.80.5.1", "127.80.5.3", "127.80.5.4", "127.80.5.5"})
        EXPECT_THAT(report, HasSubstr(std::string(host) + ":" + port_ + "  answers in ")) << host;
}

TEST_F(StatusProgram, WithoutServicesAndIndexItSaysWhatToStart)
{
    const std::string report = status();
    EXPECT_EQ(status_, 1);
    EXPECT_THAT(report, HasSubstr("there is no index yet; run \"quarrynet-services index --data " + data() + "\""));
    EXPECT_THAT(report, HasSubstr("No service answers."));
    EXPECT_THAT(report, HasSubstr(" with the same options: quarrynet-services serve --data " + data() + "\n"));
    EXPECT_FALSE(std::filesystem::exists(data())) << "it only looks";
}

TEST_F(StatusProgram, IndexesThatCannotBeUsedAreToldApart)
{
    folder_.write("data/index.sqlite", "no database at all");
    EXPECT_THAT(status(), HasSubstr("Problem: The index cannot be used: "));
    EXPECT_EQ(status_, 1);
    std::filesystem::remove(data() + "/index.sqlite");
    index();
    const auto setLayout = [this](int layout) {
        const std::string text = "PRAGMA user_version = " + std::to_string(layout);
        ASSERT_TRUE(Database::open(indexPath(data()), Database::Access::Create)->execute(text.c_str()));
    };
    setLayout(kIndexLayout + 1);
    EXPECT_THAT(status(), AllOf(HasSubstr("newer version"), HasSubstr("--force")));
    EXPECT_EQ(status_, 1);
    EXPECT_TRUE(std::filesystem::exists(data() + "/index.sqlite"));
    setLayout(kIndexLayout - 1);
    EXPECT_THAT(status(), HasSubstr("another version"));
    folder_.write("data/index.sqlite.new", "");
    EXPECT_THAT(status(), HasSubstr("An index is being made"));
    std::filesystem::last_write_time(data() + "/index.sqlite.new",
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_THAT(status(), HasSubstr("Making an index was interrupted"));
    std::filesystem::last_write_time(data() + "/index.sqlite.new",
                                     std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_THAT(status(), HasSubstr("Making an index was interrupted")) << "nothing is written in the future";
}

// Once a cut index had no remedy.
TEST_F(StatusProgram, ADamagedIndexHasARemedy)
{
    index();
    std::filesystem::resize_file(data() + "/index.sqlite", 8192);
    EXPECT_THAT(status(), HasSubstr("remove " + data() + "/index.sqlite, then run \"quarrynet-services index --data "));
    EXPECT_EQ(status_, 1);
}

// Once everything was in order while no service could search.
TEST_F(StatusProgram, ServicesThatCannotUseTheirIndexAreReportedOnce)
{
    index();
    RunningProgram server = serve(folder_.path() + "/other");
    (void)server.readLine();
    const std::string report = status();
    EXPECT_EQ(status_, 1);
    EXPECT_THAT(report, Not(HasSubstr("Everything is in order.")));
    EXPECT_EQ(countOf("Problem: ", report), 1U) << report;
    EXPECT_EQ(countOf("The services cannot use their index: there is no index yet; run ", report), 1U) << report;
}

TEST_F(StatusProgram, AFaultOfTheIndexThatBothSeeIsReportedOnce)
{
    RunningProgram server = serve(data());
    (void)server.readLine();
    EXPECT_THAT(server.errors(), HasSubstr("index --data " + data() + "\""));
    const std::string report = status();
    EXPECT_EQ(status_, 1);
    EXPECT_EQ(countOf("there is no index yet", report), 1U) << report;
    EXPECT_THAT(report, HasSubstr("index --data " + data() + "\""));
}

TEST_F(StatusProgram, RemediesNameThePersonsOwnManagerAtAnotherPortThanTheSystems)
{
    const std::string report = status();
    EXPECT_THAT(report, Not(HasSubstr("sudo systemctl")));
    // Once it named a manager on machines that have none.
    EXPECT_EQ(countOf("systemctl --user start quarrynet-services.socket", report),
              std::filesystem::exists("/run/systemd/system") ? 1U : 0U)
        << report;
}

TEST_F(StatusProgram, ServersThatNobodyHasCrawledAreNamed)
{
    index();
    folder_.write("quarrynet/services.toml", "[[crawl]]\naddress = \"ftp://files.example/pub\"\n");
    RunningProgram server = serve();
    (void)server.readLine();
    const std::string report = status();
    EXPECT_EQ(status_, 0) << report;
    EXPECT_THAT(report, HasSubstr("have not been crawled: ftp://files.example/pub/. To crawl them, run "
                                  "\"quarrynet-services crawl --due --data " +
                                  data() + "\".\n"));
}

TEST_F(StatusProgram, AFaultyConfigurationIsNamedByLineAndTheServiceThatItStops)
{
    index();
    folder_.write("quarrynet/services.toml", "[web]\nsource = []\n");
    RunningProgram server = serve();
    (void)server.readLine();
    const std::string report = status();
    EXPECT_EQ(status_, 1);
    EXPECT_THAT(report, HasSubstr("Problem: " + folder_.path() + "/quarrynet/services.toml:2: "));
    EXPECT_THAT(report, HasSubstr("The web search does not search: "));
    EXPECT_THAT(report, Not(HasSubstr("The file search does not")));
    EXPECT_THAT(report, HasSubstr("\n    Correct the file, and restart the services"));
    EXPECT_EQ(report.find("systemctl") != std::string::npos, std::filesystem::exists("/run/systemd/system")) << report;
}

// Once a fault in a person's file was one of the system's services.
TEST_F(StatusProgram, APersonsConfigurationIsNotTheSystems)
{
    if (std::filesystem::exists("/etc/quarrynet/services.toml"))
        GTEST_SKIP() << "this system's services have a configuration";
    folder_.write("quarrynet/services.toml", "[web]\nsource = []\n");
    std::vector<std::string> arguments = addresses();
    arguments.insert(arguments.begin(), "status");
    const std::string report = start(std::move(arguments), "/var/lib/quarrynet").readAll();
    EXPECT_THAT(report, HasSubstr("Configuration: none"));
    EXPECT_THAT(report, Not(HasSubstr(folder_.path() + "/quarrynet")));
}

TEST_F(StatusProgram, AnIndexOfAnotherUserIsCountedByTheServices)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs a second user";
    index();
    RunningProgram server = serve();
    (void)server.readLine();
    std::vector<std::string> arguments{
        "/usr/bin/setpriv", "--reuid=daemon", "--clear-groups", QUARRYNET_SERVICES, "status", "--data", data()};
    const std::vector<std::string> where = addresses();
    arguments.insert(arguments.end(), where.begin(), where.end());
    std::filesystem::permissions(data(), std::filesystem::perms::owner_all);
    RunningProgram run(arguments, folder_.path() + "/errors2", {"XDG_CONFIG_HOME=/nonexistent"});
    const std::string report = run.readAll();
    EXPECT_EQ(run.wait(), 0) << report << run.errors();
    EXPECT_THAT(report, HasSubstr("the services say:"));
    EXPECT_THAT(report, HasSubstr(" 1 programs\n"));
    server.signal(SIGTERM);
    server.wait();
    RunningProgram alone(arguments, folder_.path() + "/errors2", {"XDG_CONFIG_HOME=/nonexistent"});
    EXPECT_THAT(alone.readAll(), HasSubstr("Only the owner of " + data() + " can see its index."));
    EXPECT_EQ(alone.wait(), 1);
}

TEST_F(StatusProgram, HostileListenersAreBounded)
{
    index();
    const std::string bad = "HTTP/1.1 200 OK\r\n\r\n";
    const TestServer silent([](int socket) {
        char byte = 0;
        while (::recv(socket, &byte, 1, 0) > 0) {
        }
    });
    const TestServer endless([bad](int socket) {
        std::string text = bad + "quarrynet-services 1.1.0\n";
        while (::send(socket, text.data(), text.size(), MSG_NOSIGNAL) > 0)
            text.assign(100'000, 'x');
    });
    const TestServer garbage([](int socket) {
        const std::string text = std::string("\0\x1b[2J\xff", 6) + std::string(1000, '\n');
        (void)::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
    });
    const TestServer liar([bad](int socket) {
        char request[4096];
        (void)::recv(socket, request, sizeof request, 0);
        const std::string text = bad + "quarrynet-services 9\x1b[2J\nservice: web\nprograms: 5\n";
        (void)::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
    });
    const TestServer old([bad](int socket) {
        char request[4096];
        (void)::recv(socket, request, sizeof request, 0);
        const std::string text = bad + "quarrynet-services 9\nservice: web\nfault: \xc2\x9b" +
                                 "2J\xe2\x80\xae\nindex being made: 9223372036854775807\n";
        (void)::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
    });
    const TestServer stranger([bad](int socket) {
        char request[4096];
        (void)::recv(socket, request, sizeof request, 0);
        const std::string text = bad + "quarrynet-services 9\nservice: file\nprograms: 5\n";
        (void)::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
    });
    for (const auto& [server, expected] :
         {std::pair(&silent, "does not answer within 4 seconds"), std::pair(&endless, "another program answers there"),
          std::pair(&garbage, "another program answers there"), std::pair(&liar, "another program answers there"),
          std::pair(&old, "is of version 9, not "), std::pair(&stranger, "another service answers there")}) {
        const std::string port = server->site().substr(server->site().rfind(':') + 1);
        const std::string report = status({"--web-address", "127.0.0.1", "--port", port});
        EXPECT_EQ(status_, 1);
        EXPECT_THAT(report, HasSubstr(expected));
        EXPECT_THAT(report, HasSubstr("127.0.0.1:" + port));
        EXPECT_THAT(report, AllOf(Not(HasSubstr("\x1b")), Not(HasSubstr("\xc2\x9b")), Not(HasSubstr("\xe2\x80\xae"))));
        EXPECT_THAT(report, HasSubstr(" 1 programs\n"));
    }
}

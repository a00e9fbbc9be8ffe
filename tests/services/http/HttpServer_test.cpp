#include <atomic>
#include <csignal>
#include <fstream>
#include <future>
#include <memory>
#include <pthread.h>
#include <random>
#include <stdexcept>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ground/CurrentTask.h"
#include "http/HttpServer.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

/// A server on free ports. It runs on its own thread until stop() or the destructor.
class RunningServer
{
public:
    explicit RunningServer(HttpServer::Handler handler, HttpServer::Limits limits = {})
        : RunningServer(std::vector<HttpServer::Handler>{std::move(handler)}, limits)
    {}
    RunningServer(const std::vector<HttpServer::Handler>& handlers, HttpServer::Limits limits) : server_(limits)
    {
        for (const HttpServer::Handler& handler : handlers)
            ports_.push_back(std::get<std::uint16_t>(server_.listen("127.0.0.1", 0, handler)));
        thread_ = std::thread([this] { healthy_ = server_.run(); });
    }
    ~RunningServer() { stop(); }

    void stop()
    {
        if (!thread_.joinable())
            return;
        server_.stop();
        thread_.join();
        EXPECT_TRUE(healthy_);
    }

    std::string ask(std::string_view bytes) const
    {
        const RawClient client("127.0.0.1", ports_[0]);
        client.send(bytes);
        return client.receiveAll();
    }

    std::uint16_t port(std::size_t listener = 0) const { return ports_[listener]; }

    /// The thread that runs the loop.
    pthread_t loop() { return thread_.native_handle(); }
    std::size_t mostHeld() const { return server_.mostHeld(); }

private:
    HttpServer server_;
    std::vector<std::uint16_t> ports_;
    bool healthy_ = false;
    std::thread thread_;
};

/// Size of the response to "/large", which stalls if the client does not read it.
constexpr std::size_t kLarge = 64 * 1024 * 1024;

/// Returns when a thread of this process sleeps. Not for a thread that may sleep on its way.
void waitUntilIdle(pid_t thread)
{
    const std::string path = "/proc/self/task/" + std::to_string(thread) + "/stat";
    for (std::string stat; stat.find(") S ") == std::string::npos; std::this_thread::yield())
        std::getline(std::ifstream(path), stat);
}

/// Stops a thread in a signal handler for as long as the object lives, whatever the thread is doing.
class PausedThread
{
public:
    explicit PausedThread(pthread_t thread)
    {
        EXPECT_EQ(::pipe(paused), 0);
        EXPECT_EQ(::pipe(resume), 0);
        std::signal(SIGUSR1, [](int) {
            char byte = 0;
            (void)!::write(paused[1], &byte, 1);
            (void)!::read(resume[0], &byte, 1);
        });
        ::pthread_kill(thread, SIGUSR1);
        char byte = 0;
        (void)!::read(paused[0], &byte, 1);
    }
    ~PausedThread()
    {
        (void)!::write(resume[1], "", 1);
        // The handler still reads from `resume`, so these stay open.
    }
    PausedThread(const PausedThread&) = delete;
    PausedThread& operator=(const PausedThread&) = delete;

private:
    inline static int paused[2];
    inline static int resume[2];
};

HttpResponse largeOnRequest(const HttpRequest& request)
{
    HttpResponse response;
    response.body = std::string(request.path == "/large" ? kLarge : 1, 'x');
    return response;
}

HttpResponse echo(const HttpRequest& request)
{
    HttpResponse response;
    response.body = request.path + "?" + request.query;
    return response;
}

/// Works until the response is no longer needed.
HttpResponse workInVain()
{
    while (!CurrentTask::abandoned())
        std::this_thread::yield();
    return {};
}

std::string statusOf(const std::string& response)
{
    return response.size() < 12 ? response : response.substr(9, 3);
}

} // namespace

TEST(HttpServer, AnswersAndClosesWithoutBeingAsked)
{
    const RunningServer server(echo);
    const std::string answer = server.ask("GET /a?b HTTP/1.1\r\nHost: h\r\nProxy-Connection: close\r\n\r\n");
    EXPECT_EQ(statusOf(answer), "200");
    EXPECT_EQ(answer.substr(answer.size() - 4), "/a?b");
}

TEST(HttpServer, HeadHasNoBodyAndOtherMethodsAreRefused)
{
    const RunningServer server(echo);
    const std::string head = server.ask("HEAD /a HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_EQ(statusOf(head), "200");
    EXPECT_EQ(head.substr(head.size() - 4), "\r\n\r\n");
    EXPECT_EQ(statusOf(server.ask("POST /a HTTP/1.1\r\nHost: h\r\nContent-Length: 3\r\n\r\nabc")), "405");
    EXPECT_EQ(statusOf(server.ask("CONNECT h:443 HTTP/1.1\r\nHost: h\r\n\r\n")), "501");
}

TEST(HttpServer, RequestInSinglePiecesIsJoined)
{
    const RunningServer server(echo);
    const RawClient client("127.0.0.1", server.port());
    for (const char c : std::string("GET /abc HTTP/1.1\r\nHost: h\r\n\r\n"))
        ASSERT_TRUE(client.send(std::string_view(&c, 1)));
    EXPECT_EQ(statusOf(client.receiveAll()), "200");
}

TEST(HttpServer, BadRequestsGetAShortAnswer)
{
    const RunningServer server(echo);
    EXPECT_EQ(statusOf(server.ask("nonsense\r\n\r\n")), "400");
    EXPECT_EQ(statusOf(server.ask(std::string("\x16\x03\x01\0\n", 5))), "400");
    EXPECT_EQ(statusOf(server.ask("GET / HTTP/1.1\r\n\r\n")), "400");
    EXPECT_EQ(statusOf(server.ask("GET /" + std::string(40000, 'a') + " HTTP/1.1\r\nHost: h\r\n\r\n")), "414");
    EXPECT_EQ(statusOf(server.ask("GET / HTTP/1.1\r\nHost: h\r\nX: " + std::string(100000, 'a') + "\r\n\r\n")), "431");
}

TEST(HttpServer, EndlessRequestLineIsAnsweredWhileItIsStillBeingSent)
{
    const RunningServer server(echo);
    EXPECT_EQ(statusOf(server.ask("GET /" + std::string(400000, 'a'))), "414");
}

TEST(HttpServer, IncompleteRequestIsAnsweredAtItsEnd)
{
    const RunningServer server(echo);
    const RawClient client("127.0.0.1", server.port());
    client.send("GET / HTTP/1.1\r\n");
    client.endSending();
    EXPECT_EQ(statusOf(client.receiveAll()), "400");
    const RawClient silent("127.0.0.1", server.port());
    silent.endSending();
    EXPECT_EQ(silent.receiveAll(), "");
}

TEST(HttpServer, HalfClosedClientStillGetsItsAnswer)
{
    const RunningServer server(echo);
    const RawClient client("127.0.0.1", server.port());
    client.send("GET /x HTTP/1.1\r\nHost: h\r\n\r\n");
    client.endSending();
    EXPECT_EQ(statusOf(client.receiveAll()), "200");
}

TEST(HttpServer, SlowRequestTimesOut)
{
    HttpServer::Limits limits;
    limits.requestTime = std::chrono::milliseconds(30);
    const RunningServer server(echo, limits);
    EXPECT_EQ(statusOf(server.ask("GET / HT")), "408");
    EXPECT_EQ(server.ask(""), "");
}

TEST(HttpServer, LargeAnswerArrivesWhole)
{
    const std::string large(20 * 1024 * 1024, 'x');
    const RunningServer server([&large](const HttpRequest&) {
        HttpResponse response;
        response.body = large;
        return response;
    });
    const std::string answer = server.ask("GET / HTTP/1.1\r\nHost: h\r\n\r\n");
    const std::size_t body = answer.find("\r\n\r\n");
    ASSERT_NE(body, std::string::npos);
    EXPECT_TRUE(answer.substr(body + 4) == large);
}

TEST(HttpServer, HandlerThatThrowsIsA500)
{
    const RunningServer server([](const HttpRequest&) -> HttpResponse { throw std::runtime_error("broken"); });
    EXPECT_EQ(statusOf(server.ask("GET / HTTP/1.1\r\nHost: h\r\n\r\n")), "500");
}

TEST(HttpServer, MoreClientsThanConnectionsAreAllServed)
{
    HttpServer::Limits limits;
    limits.connections = 2;
    const RunningServer server(echo, limits);
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 20; ++i) {
        clients.push_back(std::make_unique<RawClient>("127.0.0.1", server.port()));
        ASSERT_TRUE(clients.back()->connected());
        clients.back()->send("GET / HTTP/1.1\r\nHost: h\r\n\r\n");
    }
    for (auto& client : clients) {
        EXPECT_EQ(statusOf(client->receiveAll()), "200");
        client.reset();
    }
}

TEST(HttpServer, StalledClientsMakeRoomForOthers)
{
    HttpServer::Limits limits;
    limits.connections = 2;
    limits.requestTime = std::chrono::milliseconds(30);
    const RunningServer server(echo, limits);
    const RawClient silent("127.0.0.1", server.port());
    const RawClient stalled("127.0.0.1", server.port());
    stalled.send("GET /");
    EXPECT_EQ(statusOf(server.ask("GET / HTTP/1.1\r\nHost: h\r\n\r\n")), "200");
    EXPECT_EQ(silent.receiveAll(), "");
    EXPECT_EQ(statusOf(stalled.receiveAll()), "408");
}

TEST(HttpServer, ClientThatDoesNotReadMakesRoomForOthers)
{
    HttpServer::Limits limits;
    limits.connections = 1;
    limits.writeTime = std::chrono::milliseconds(30);
    const RunningServer server(largeOnRequest, limits);
    const RawClient idle("127.0.0.1", server.port());
    idle.send("GET /large HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_EQ(statusOf(server.ask("GET / HTTP/1.1\r\nHost: h\r\n\r\n")), "200");
    EXPECT_LT(idle.receiveAll().size(), kLarge);
}

TEST(HttpServer, AClientThatReadsTooSlowlyMakesRoomForOthers)
{
    HttpServer::Limits limits;
    limits.connections = 1;
    limits.writeTime = std::chrono::hours(1);
    limits.answerTime = std::chrono::milliseconds(30);
    const RunningServer server(largeOnRequest, limits);
    const RawClient idle("127.0.0.1", server.port());
    idle.send("GET /large HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_EQ(statusOf(server.ask("GET / HTTP/1.1\r\nHost: h\r\n\r\n")), "200");
}

// The queues noticed the end of a waiting client, and then the session's own read did: two workers made one response.
TEST(HttpServer, AClientWhoseEndIsNoticedTwiceGetsOneResponse)
{
    HttpServer::Limits limits;
    limits.workers = 1;
    std::promise<pid_t> working;
    std::promise<void> go;
    std::atomic<int> made = 0;
    RunningServer server(
        [&](const HttpRequest& request) {
            if (request.path == "/first") {
                working.set_value(static_cast<pid_t>(::syscall(SYS_gettid)));
                go.get_future().wait();
            }
            made += request.path == "/ending" ? 1 : 0;
            return echo(request);
        },
        limits);
    const RawClient first("127.0.0.1", server.port());
    first.send("GET /first HTTP/1.1\r\nHost: h\r\n\r\n");
    const pid_t worker = working.get_future().get();
    const RawClient ending("127.0.0.1", server.port());
    ending.send("GET /ending HTTP/1.1\r\nHost: h\r\n\r\n");
    const RawClient waiting("127.0.0.1", server.port());
    waiting.send("GET / HTTP/1.1\r\nHost: h\r\n\r\n");
    // The loop itself refuses this one, after it has read the others.
    EXPECT_EQ(statusOf(server.ask("NONSENSE\r\n\r\n")), "400");
    {
        // When the loop goes on, it hears of the first response, and then of the client that has ended.
        const PausedThread paused(server.loop());
        go.set_value();
        waitUntilIdle(worker);
        ending.endSending();
    }
    EXPECT_EQ(statusOf(waiting.receiveAll()), "200");
    EXPECT_EQ(statusOf(ending.receiveAll()), "200");
    EXPECT_EQ(statusOf(server.ask("GET / HTTP/1.1\r\nHost: h\r\n\r\n")), "200");
    EXPECT_EQ(made, 1);
}

// The way in which a client leaves must not let two workers make one response, or mix two of them.
TEST(HttpServer, ClientsThatComeAndGoAtRandomGetTheirOwnResponses)
{
    constexpr std::size_t kClients = 8;
    constexpr std::size_t kRequests = 100;
    HttpServer::Limits limits;
    limits.workers = 1;
    limits.connections = kClients;
    std::vector<std::atomic<int>> made(kClients * kRequests);
    const auto bodyOf = [](std::size_t number) {
        return std::string(number % 7 * 20'000, 'a') + std::to_string(number);
    };
    RunningServer server(
        [&](const HttpRequest& request) {
            const std::size_t number = std::stoul(request.path.substr(1));
            ++made[number];
            HttpResponse response;
            response.body = bodyOf(number);
            return response;
        },
        limits);
    const auto visit = [&](std::size_t client) {
        std::minstd_rand chance(static_cast<unsigned>(client) + 1);
        for (std::size_t number = client * kRequests; number < (client + 1) * kRequests; ++number) {
            const RawClient visitor("127.0.0.1", server.port());
            const std::string request = "GET /" + std::to_string(number) + " HTTP/1.1\r\nHost: h\r\n\r\n";
            switch (chance() % 6) {
            case 0: // leaves before it has asked
                visitor.send(request.substr(0, chance() % request.size()));
                break;
            case 1: // leaves without waiting
                visitor.send(request);
                break;
            case 2:
                visitor.send(request);
                visitor.resetAtEnd();
                break;
            case 3: // has asked all, and may be told that too many wait
                visitor.send(request);
                visitor.endSending();
                EXPECT_THAT(statusOf(visitor.receiveAll()), testing::AnyOf("200", "503"));
                break;
            default:
                visitor.send(request);
                EXPECT_THAT(visitor.receiveAll(), testing::EndsWith("\r\n\r\n" + bodyOf(number)));
            }
        }
    };
    {
        std::vector<std::jthread> clients;
        for (std::size_t i = 0; i < kClients; ++i)
            clients.emplace_back(visit, i);
    }
    EXPECT_EQ(statusOf(server.ask("GET /0 HTTP/1.1\r\nHost: h\r\n\r\n")), "200");
    server.stop();
    made[0] = 0;
    EXPECT_THAT(made, testing::Each(testing::Le(1)));
}

TEST(HttpServer, RequestsOfClientsThatAreGoneDoNotHoldOthersUp)
{
    HttpServer::Limits limits;
    limits.workers = 1;
    limits.connections = 8;
    const RunningServer server(
        [](const HttpRequest& request) { return request.path == "/dropped" ? workInVain() : echo(request); }, limits);
    for (int i = 0; i < 300; ++i)
        RawClient("127.0.0.1", server.port()).send("GET /dropped HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_EQ(statusOf(server.ask("GET / HTTP/1.1\r\nHost: h\r\n\r\n")), "200");
}

TEST(HttpServer, AnAnswerInTheMakingIsAbandonedWhenItsClientIsGone)
{
    std::atomic<int> begun = 0;
    std::atomic<int> ended = 0;
    const RunningServer server([&](const HttpRequest&) {
        begun = 1;
        begun.notify_all();
        HttpResponse response = workInVain();
        ended = 1;
        ended.notify_all();
        return response;
    });
    {
        const RawClient client("127.0.0.1", server.port());
        client.send("GET / HTTP/1.1\r\nHost: h\r\n\r\n");
        begun.wait(0);
        client.resetAtEnd();
    }
    ended.wait(0);
}

TEST(HttpServer, StopAbandonsAnswersInTheMaking)
{
    std::atomic<int> begun = 0;
    RunningServer server([&](const HttpRequest&) {
        begun = 1;
        begun.notify_all();
        return workInVain();
    });
    const RawClient client("127.0.0.1", server.port());
    client.send("GET / HTTP/1.1\r\nHost: h\r\n\r\n");
    begun.wait(0);
    server.stop();
}

TEST(HttpServer, EachAddressHasPlacesOfItsOwn)
{
    HttpServer::Limits limits;
    limits.connections = 2;
    limits.workers = 1;
    const RunningServer server({[](const HttpRequest&) { return workInVain(); }, echo}, limits);
    const std::string request = "GET / HTTP/1.1\r\nHost: h\r\n\r\n";
    const RawClient busy("127.0.0.1", server.port(0));
    busy.send(request);
    const RawClient silent("127.0.0.1", server.port(0));
    const RawClient waiting("127.0.0.1", server.port(0));
    waiting.send(request);
    const RawClient other("127.0.0.1", server.port(1));
    other.send(request);
    EXPECT_EQ(statusOf(other.receiveAll()), "200");
}

TEST(HttpServer, AnswersTogetherHaveABudget)
{
    constexpr std::size_t kBody = 1024 * 1024;
    HttpServer::Limits limits;
    limits.answerBytes = 4 * kBody;
    limits.workers = 2;
    RunningServer server(
        [](const HttpRequest&) {
            HttpResponse response;
            response.body = std::string(kBody, 'x');
            return response;
        },
        limits);
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 40; ++i) {
        clients.push_back(std::make_unique<RawClient>("127.0.0.1", server.port()));
        clients.back()->send("GET / HTTP/1.1\r\nHost: h\r\n\r\n");
    }
    for (const auto& client : clients)
        EXPECT_GT(client->receiveAll().size(), kBody);
    server.stop();
    EXPECT_LE(server.mostHeld(), limits.answerBytes + limits.workers * (kBody + 1000));
}

TEST(HttpServer, FilesAreStreamed)
{
    const TemporaryFolder folder;
    std::string large;
    for (int i = 0; large.size() < 20 * 1024 * 1024; ++i)
        large += std::to_string(i);
    folder.write("large", large);
    RunningServer server([&folder](const HttpRequest&) {
        HttpResponse response;
        response.file = openBeneath(folder.path(), "large");
        return response;
    });
    const std::string answer = server.ask("GET / HTTP/1.1\r\nHost: h\r\n\r\n");
    const std::size_t body = answer.find("\r\n\r\n");
    ASSERT_NE(body, std::string::npos);
    EXPECT_TRUE(answer.substr(body + 4) == large);
    EXPECT_NE(answer.find("Content-Length: " + std::to_string(large.size()) + "\r\n"), std::string::npos);
    const std::string head = server.ask("HEAD / HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_NE(head.find("Content-Length: " + std::to_string(large.size()) + "\r\n"), std::string::npos);
    EXPECT_EQ(head.substr(head.size() - 4), "\r\n\r\n");
    server.stop();
    EXPECT_LT(server.mostHeld(), 200U * 1024);
}

TEST(HttpServer, AFileThatBecameShorterEndsTheAnswerEarly)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("file", std::string(500000, 'x'));
    const RunningServer server([&](const HttpRequest&) {
        HttpResponse response;
        response.file = openBeneath(folder.path(), "file");
        std::filesystem::resize_file(path, 100000);
        return response;
    });
    const std::string answer = server.ask("GET / HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_NE(answer.find("Content-Length: 500000\r\n"), std::string::npos);
    EXPECT_EQ(answer.size() - answer.find("\r\n\r\n") - 4, 100000U);
}

TEST(HttpServer, BytesOfTheTargetReachTheHandlerAsSent)
{
    const RunningServer server(echo);
    const std::string target = "/a\\{b}?q=\"c#\"+%zz&<\xff\xc3\xa9>?#";
    const std::string answer = server.ask("GET " + target + " HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_EQ(answer.substr(answer.find("\r\n\r\n") + 4), target);
}

TEST(HttpServer, StopWhileAnswersAreBeingMade)
{
    std::atomic<int> begun = 0;
    std::vector<std::unique_ptr<RawClient>> clients;
    {
        const RunningServer server([&begun](const HttpRequest& request) {
            ++begun;
            begun.notify_all();
            return echo(request);
        });
        for (int i = 0; i < 50; ++i) {
            clients.push_back(std::make_unique<RawClient>("127.0.0.1", server.port()));
            clients.back()->send("GET / HTTP/1.1\r\nHost: h\r\n\r\n");
        }
        begun.wait(0);
    }
    for (const auto& client : clients) {
        const std::string status = statusOf(client->receiveAll());
        EXPECT_TRUE(status.empty() || status == "200") << status;
    }
}

TEST(HttpServer, StopBeforeItRunsEndsItAtOnce)
{
    HttpServer server;
    ASSERT_TRUE(std::holds_alternative<std::uint16_t>(server.listen("127.0.0.1", 0, echo)));
    server.stop();
    EXPECT_TRUE(server.run());
}

TEST(HttpServer, PortInUseAndBadAddressAreRefused)
{
    const RunningServer running(echo);
    HttpServer server;
    const auto used = server.listen("127.0.0.1", running.port(), echo);
    ASSERT_TRUE(std::holds_alternative<HttpServer::Refusal>(used));
    EXPECT_EQ(std::get<HttpServer::Refusal>(used).fault, HttpServer::ListenFault::InUse);
    const auto bad = server.listen("no address", 0, echo);
    ASSERT_TRUE(std::holds_alternative<HttpServer::Refusal>(bad));
    EXPECT_EQ(std::get<HttpServer::Refusal>(bad).fault, HttpServer::ListenFault::Other);
}

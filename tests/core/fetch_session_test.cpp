#include <new>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/FetchSession.h"

using namespace quarrynet;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::string_view kResponse = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\nbody\r\n\r\nmore";
constexpr std::string_view kBody = "body\r\n\r\nmore";

// Logs its calls. It shares the log with the tab, so that the log shows the order of calls to both.
class FakeSocket final : public ClientSocket
{
public:
    explicit FakeSocket(std::vector<std::string>& log) : log_(log) {}

    void Close() override
    {
        state = SocketState::Closed;
        log_.emplace_back("socket closes");
    }
    void Connect(std::string_view host, int port) override
    {
        state = SocketState::Connecting;
        log_.push_back("socket connects to " + std::string(host) + ":" + std::to_string(port));
    }
    void ConnectTls(std::string_view host, int port) override
    {
        state = SocketState::Connecting;
        log_.push_back("socket connects over TLS to " + std::string(host) + ":" + std::to_string(port));
    }
    void SendData(std::string_view bytes) override { log_.push_back("socket sends " + std::string(bytes)); }
    void GetData(std::string& text) override
    {
        if (outOfMemory)
            throw std::bad_alloc();
        text += pending;
        pending.clear();
    }
    SocketState State() const override { return state; }

    std::string pending;
    SocketState state = SocketState::Closed;
    bool outOfMemory = false;

private:
    std::vector<std::string>& log_;
};

class FakeTab final : public FetchTab
{
public:
    explicit FakeTab(std::vector<std::string>& log) : log_(log) {}

    std::optional<std::string> requestText() override { return request; }
    void showConnection(std::string_view caption) override { log_.push_back("panel 1 '" + std::string(caption) + "'"); }
    void showActivity(std::string_view text) override { log_.push_back("panel 2 '" + std::string(text) + "'"); }
    void enableStartButton() override { log_.emplace_back("button on"); }
    void setTimerEnabled(bool enabled) override { log_.emplace_back(enabled ? "timer on" : "timer off"); }
    void handOver(const std::string& body) override
    {
        if (outOfMemory)
            throw std::bad_alloc();
        log_.push_back("body '" + body + "'");
        bodies.push_back(body);
    }
    void reportError(int number, std::string_view description) override
    {
        log_.push_back("error " + std::to_string(number) + " " + std::string(description));
    }
    void exchangeEnded() override { log_.emplace_back("ended"); }

    std::optional<std::string> request = "GET";
    std::vector<std::string> bodies;
    bool outOfMemory = false;

private:
    std::vector<std::string>& log_;
};

struct Exchange
{
    explicit Exchange(ReceiveState& receive, FetchSettings settings = {})
        : shared(receive), session(settings, socket, tab, receive)
    {}

    void arrive(std::string_view bytes)
    {
        socket.pending += bytes;
        session.dataArrived();
    }

    std::vector<std::string> log;
    FakeSocket socket{log};
    FakeTab tab{log};
    ReceiveState& shared;
    FetchSession session;
};

} // namespace

TEST(StripHeader, TakesEverythingUpToTheFirstEmptyLine)
{
    std::string response(kResponse);
    stripHeader(response);
    EXPECT_EQ(response, kBody);
}

TEST(StripHeader, WithoutAnEmptyLineTakesThreeBytes)
{
    for (const auto& [before, after] : {std::pair<std::string, std::string>("HTTP/1.1 200 OK", "P/1.1 200 OK"),
                                        {"abcd", "d"},
                                        {"abc", ""},
                                        {"ab", ""},
                                        {"", ""},
                                        {"a\r\n\rb", "\rb"},
                                        {"a\n\nbc", "bc"}}) {
        std::string response = before;
        stripHeader(response);
        EXPECT_EQ(response, after) << before;
    }
}

TEST(StripHeader, EmptyLineAtTheStartOrTheEnd)
{
    std::string response = "\r\n\r\nbody";
    stripHeader(response);
    EXPECT_EQ(response, "body");
    response = "head\r\n\r\n";
    stripHeader(response);
    EXPECT_EQ(response, "");
}

TEST(SocketStateName, CoversTheTenStatesAndNothingElse)
{
    const std::vector<std::string> names = {
        "Closed",         "Open",          "Listening",  "Connection pending",
        "Resolving host", "Host resolved", "Connecting", "Connected",
        "Closing",        "Error",         "",
    };
    for (std::size_t number = 0; number < names.size(); ++number)
        EXPECT_EQ(socketStateName(static_cast<SocketState>(number)), names[number]) << number;
    EXPECT_EQ(socketStateName(static_cast<SocketState>(255)), "");
}

TEST(FetchSession, RunsOneExchangeInOrder)
{
    ReceiveState shared{"left over", true};
    Exchange exchange(shared);
    exchange.session.start({"host", 80});
    EXPECT_EQ(shared.ReceiveBuffer, "");
    EXPECT_FALSE(shared.HeaderStripped);
    exchange.session.connected();
    exchange.session.sendProgress();
    exchange.session.sendComplete();
    exchange.arrive(kResponse);
    exchange.session.closed();
    EXPECT_THAT(exchange.log,
                ElementsAre("socket closes", "socket connects to host:80", "panel 2 'Connected'", "socket sends GET",
                            "panel 2 'Requesting Data'", "panel 2 'Request Completed'", "panel 2 'Downloading Data'",
                            "body '" + std::string(kBody) + "'", "panel 2 ''", "panel 1 'Closed'", "button on",
                            "timer off", "socket closes", "ended"));
    EXPECT_TRUE(shared.HeaderStripped);
}

TEST(FetchSession, SettingsSilenceConnectedAndLeaveTheFlagAlone)
{
    ReceiveState shared;
    Exchange exchange(shared, {.saysConnected = false, .marksHeader = false});
    exchange.session.connected();
    EXPECT_THAT(exchange.log, ElementsAre("socket sends GET"));
    exchange.arrive(kResponse);
    exchange.session.closed();
    EXPECT_FALSE(shared.HeaderStripped);
}

TEST(FetchSession, SettingShowsTheConnectedStateWithoutWaitingForATick)
{
    ReceiveState shared;
    Exchange exchange(shared, {.showsStateOnConnect = true});
    exchange.session.connected();
    EXPECT_THAT(exchange.log, ElementsAre("panel 1 'Connected'", "panel 2 'Connected'", "socket sends GET"));
}

TEST(FetchSession, SendsNothingWhenTheRequestCannotBeBuilt)
{
    ReceiveState shared;
    Exchange exchange(shared);
    exchange.tab.request.reset();
    exchange.session.connected();
    EXPECT_THAT(exchange.log, ElementsAre("panel 2 'Connected'"));
}

TEST(FetchSession, EverySplitOfAResponseGivesTheSameBody)
{
    for (std::size_t first = 0; first <= kResponse.size(); ++first) {
        for (std::size_t second = first; second <= kResponse.size(); ++second) {
            ReceiveState shared;
            Exchange exchange(shared);
            exchange.session.start({"host", 80});
            exchange.arrive(kResponse.substr(0, first));
            exchange.arrive(kResponse.substr(first, second - first));
            exchange.arrive(kResponse.substr(second));
            exchange.session.closed();
            ASSERT_THAT(exchange.tab.bodies, ElementsAre(kBody)) << first << ' ' << second;
        }
    }
}

TEST(FetchSession, BytewiseArrivalAndNulBytes)
{
    const std::string response("HTTP/1.1 200 OK\r\n\r\n\0\xff\0", 22);
    ReceiveState shared;
    Exchange exchange(shared);
    for (const char byte : response)
        exchange.arrive(std::string_view(&byte, 1));
    exchange.session.closed();
    EXPECT_THAT(exchange.tab.bodies, ElementsAre(std::string("\0\xff\0", 3)));
}

TEST(FetchSession, EmptyResponseHandsOverAnEmptyBody)
{
    ReceiveState shared;
    Exchange exchange(shared);
    exchange.session.start({"host", 80});
    exchange.session.closed();
    EXPECT_THAT(exchange.tab.bodies, ElementsAre(""));
}

TEST(FetchSession, ErrorEndsTheExchangeWithoutTheParser)
{
    ReceiveState shared;
    Exchange exchange(shared);
    exchange.session.start({"host", 80});
    exchange.session.connected();
    exchange.arrive("HTTP/1.1 200 OK\r\n\r\nhalf");
    exchange.log.clear();
    exchange.session.failed(10054, "reset");
    EXPECT_THAT(exchange.log,
                ElementsAre("error 10054 reset", "socket closes", "panel 1 'Closed'", "button on", "timer off"));
    EXPECT_THAT(exchange.tab.bodies, IsEmpty());
    EXPECT_FALSE(shared.HeaderStripped);
}

TEST(FetchSession, ATargetOfTlsIsConnectedOverTls)
{
    ReceiveState shared;
    Exchange exchange(shared);
    exchange.session.start({"host", 443, true});
    EXPECT_THAT(exchange.log, ElementsAre("socket closes", "socket connects over TLS to host:443"));
}

TEST(FetchSession, ACutConnectionEndsACompleteResponseOnly)
{
    const std::string whole = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody";
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        ReceiveState shared;
        Exchange exchange(shared);
        exchange.session.start({"host", 443, true});
        exchange.arrive(whole.substr(0, length));
        exchange.log.clear();
        exchange.session.cutOff();
        if (length == whole.size()) {
            EXPECT_THAT(exchange.tab.bodies, ElementsAre("body"));
        } else {
            EXPECT_THAT(exchange.log,
                        ElementsAre("error 10053 The secure connection was cut before the end of the response",
                                    "socket closes", "panel 1 'Closed'", "button on", "timer off"));
        }
    }
}

TEST(FetchSession, TickShowsTheSocketsState)
{
    ReceiveState shared;
    Exchange exchange(shared);
    exchange.socket.state = SocketState::ResolvingHost;
    exchange.session.tick();
    EXPECT_THAT(exchange.log, ElementsAre("panel 1 'Resolving host'"));
}

TEST(FetchSession, MemoryRunningOutEndsTheExchangeOnly)
{
    ReceiveState shared;
    Exchange receiving(shared);
    receiving.socket.outOfMemory = true;
    receiving.arrive("x");
    EXPECT_THAT(receiving.log, ElementsAre("panel 2 'Downloading Data'", "socket closes", "error 7 Out of memory",
                                           "socket closes", "panel 1 'Closed'", "button on", "timer off"));

    Exchange parsing(shared);
    parsing.tab.outOfMemory = true;
    parsing.arrive(kResponse);
    parsing.log.clear();
    parsing.session.closed();
    EXPECT_THAT(parsing.log, ElementsAre("socket closes", "error 7 Out of memory", "socket closes", "panel 1 'Closed'",
                                         "button on", "timer off"));
}

TEST(FetchSession, ResponseBeyondItsBoundIsGivenUp)
{
    ReceiveState shared;
    shared.longest = std::size_t{2} << 20;
    Exchange web(shared);
    web.arrive(std::string(shared.longest, 'x'));
    EXPECT_EQ(shared.ReceiveBuffer.size(), shared.longest);
    web.log.clear();
    web.arrive("x");
    EXPECT_THAT(web.log, ElementsAre("panel 2 'Downloading Data'", "socket closes",
                                     "error 10055 No buffer space is available: the response is longer than 2 MB",
                                     "socket closes", "panel 1 'Closed'", "button on", "timer off"));
    EXPECT_TRUE(shared.ReceiveBuffer.empty());
    EXPECT_LT(shared.ReceiveBuffer.capacity(), 100U);
}

TEST(FetchSession, BoundIsAQuarterOfTheMachinesMemory)
{
    EXPECT_EQ(ReceiveState().longest, responseAllowance());
}

TEST(OverlappingExchanges, MixTheirDataInOneBuffer)
{
    ReceiveState shared;
    Exchange web(shared);
    Exchange file(shared);
    web.session.start({"web", 80});
    web.arrive("WEB HEAD\r\n\r\nweb ");
    file.session.start({"file", 80}); // discards what the first has received
    web.arrive("rest of web ");
    file.arrive("FILE HEAD\r\n\r\nfile");
    web.session.closed();
    file.session.closed();
    EXPECT_THAT(web.tab.bodies, ElementsAre("file"));
    // The flag is already set, so the second hand-over removes no header.
    EXPECT_THAT(file.tab.bodies, ElementsAre("file"));
}

TEST(OverlappingExchanges, DataAfterTheFirstCloseIsAppendedUncut)
{
    ReceiveState shared;
    Exchange web(shared);
    Exchange file(shared);
    web.session.start({"web", 80});
    file.session.start({"file", 80});
    web.arrive("H\r\n\r\nweb");
    web.session.closed();
    file.arrive("H\r\n\r\nfile");
    file.session.closed();
    EXPECT_THAT(file.tab.bodies, ElementsAre("webH\r\n\r\nfile"));
}

TEST(OverlappingExchanges, AStartBetweenMakesTheHeaderCutAgain)
{
    ReceiveState shared;
    Exchange web(shared);
    Exchange file(shared);
    web.session.start({"web", 80});
    web.arrive("H\r\n\r\nweb");
    web.session.closed();
    file.session.start({"file", 80});
    EXPECT_FALSE(shared.HeaderStripped);
    file.arrive("H\r\n\r\nfile");
    file.session.closed();
    EXPECT_THAT(file.tab.bodies, ElementsAre("file"));
}

#include <atomic>
#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/services_file.h"
#include "ground/CurrentTask.h"
#include "live/fetch.h"
#include "tests/services/support/ftp_support.h"
#include "tests/services/support/live_support.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;
using ::testing::HasSubstr;

namespace {

using Fault = Fetched::Fault;

constexpr auto kLong = std::chrono::seconds(60);

Fetched fetch(FetchPool& pool, const std::string& address, std::size_t maxBytes = 1'000'000,
              std::chrono::milliseconds time = kLong)
{
    std::optional<Fetched> result;
    Fetches fetches(pool);
    FetchOrder order;
    order.address = address;
    order.maxBytes = maxBytes;
    order.end = std::chrono::steady_clock::now() + time;
    fetches.start(std::move(order), [&result](Fetched fetched) { result = std::move(fetched); });
    EXPECT_FALSE(result) << "nothing is called before run()";
    EXPECT_TRUE(fetches.run());
    EXPECT_TRUE(result);
    return result.value_or(Fetched());
}

Fetched fetch(const std::string& address, std::size_t maxBytes = 1'000'000, std::chrono::milliseconds time = kLong)
{
    FetchPool pool;
    return fetch(pool, address, maxBytes, time);
}

/// A server that sends bytes to each connection, whatever it asks.
class RawServer
{
public:
    explicit RawServer(std::function<void(int)> answer)
        : server_([answer = std::move(answer)](int socket) {
            std::string head;
            for (char c = 0; !head.ends_with("\r\n\r\n") && ::recv(socket, &c, 1, 0) == 1;)
                head.push_back(c);
            answer(socket);
        })
    {}
    std::string site() const { return "http" + server_.site().substr(3); }

private:
    TestServer server_;
};

bool sendAll(int socket, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace

TEST(Fetch, ReturnsStatusTypeAndBody)
{
    LoopbackServer server([](const HttpRequest& request) {
        return request.path == "/missing" ? statusResponse(404) : jsonResponse("{}");
    });
    FetchPool pool;
    const Fetched found = fetch(pool, server.site() + "/a?b=c");
    EXPECT_EQ(found.fault, Fault::None) << found.detail;
    EXPECT_EQ(found.status, 200);
    EXPECT_EQ(found.body, "{}");
    EXPECT_EQ(found.contentType, "application/json");
    EXPECT_FALSE(found.retryAfter);
    EXPECT_EQ(fetch(pool, server.site() + "/missing").status, 404);
    ASSERT_EQ(server.count(), 2U);
    EXPECT_EQ(server.requests()[0].agent, userAgent());
    EXPECT_EQ(userAgent().find("quarrynet-services/"), 0U);
    EXPECT_EQ(server.requests()[0].query, "b=c");
}

TEST(Fetch, EnvironmentHasNoProxyForIt)
{
    ::setenv("http_proxy", "http://127.0.0.1:1/", 1);
    ::setenv("all_proxy", "http://127.0.0.1:1/", 1);
    LoopbackServer server([](const HttpRequest&) { return jsonResponse("{}"); });
    EXPECT_EQ(fetch(server.site()).fault, Fault::None);
    ::unsetenv("http_proxy");
    ::unsetenv("all_proxy");
}

TEST(Fetch, RetryAfterIsReadInBothFormsAndBounded)
{
    LoopbackServer server([](const HttpRequest& request) {
        const std::string value = request.path == "/seconds" ? "30"
                                  : request.path == "/date"  ? "Fri, 31 Dec 2100 23:59:59 GMT"
                                  : request.path == "/large" ? "99999999999"
                                                             : "x";
        return statusResponse(429, {{"Retry-After", value}});
    });
    EXPECT_EQ(fetch(server.site() + "/seconds").retryAfter, std::chrono::seconds(30));
    EXPECT_EQ(fetch(server.site() + "/date").retryAfter, std::chrono::hours(24));
    EXPECT_EQ(fetch(server.site() + "/large").retryAfter, std::chrono::hours(24));
    EXPECT_FALSE(fetch(server.site() + "/nonsense").retryAfter);
}

TEST(Fetch, OnlyRedirectsOnTheSameSiteAreFollowed)
{
    LoopbackServer other([](const HttpRequest&) { return jsonResponse("other"); });
    LoopbackServer server([&other](const HttpRequest& request) {
        const auto to = [](const std::string& address) { return statusResponse(302, {{"Location", address}}); };
        if (request.path == "/here")
            return to("/end?x=y");
        if (request.path == "/other")
            return to(other.site() + "/secret");
        if (request.path == "/file")
            return to("file:///etc/passwd");
        if (request.path == "/loop")
            return to("/loop");
        return jsonResponse("end");
    });
    EXPECT_EQ(fetch(server.site() + "/here").body, "end");
    const Fetched elsewhere = fetch(server.site() + "/other");
    EXPECT_EQ(elsewhere.fault, Fault::Redirect);
    EXPECT_EQ(elsewhere.detail, other.site() + "/secret");
    EXPECT_EQ(other.count(), 0U);
    EXPECT_EQ(fetch(server.site() + "/file").fault, Fault::Redirect);
    const std::size_t before = server.count();
    EXPECT_EQ(fetch(server.site() + "/loop").fault, Fault::Redirect);
    EXPECT_EQ(server.count() - before, 1U + kMostRedirects);
}

TEST(Fetch, SitesAreComparedWithoutLosingEncryption)
{
    EXPECT_TRUE(followsOnSite("http://A.example/x", "http://a.example:80/y"));
    EXPECT_TRUE(followsOnSite("http://a.example", "https://a.example/"));
    EXPECT_TRUE(followsOnSite("https://a.example:443/", "https://a.example"));
    EXPECT_FALSE(followsOnSite("https://a.example/", "http://a.example/"));
    EXPECT_FALSE(followsOnSite("https://a.example/", "https://www.a.example/"));
    EXPECT_FALSE(followsOnSite("https://a.example/", "https://a.example:444/"));
    EXPECT_FALSE(followsOnSite("https://a.example/", "https://a.example@b.example/"));
    EXPECT_FALSE(followsOnSite("https://a.example/", "file:///a.example/"));
    EXPECT_FALSE(followsOnSite("https://a.example/", ""));
}

TEST(Fetch, BodiesAreBoundedWithAndWithoutALength)
{
    LoopbackServer server([](const HttpRequest&) { return jsonResponse(std::string(1'001, 'x')); });
    EXPECT_EQ(fetch(server.site(), 1'001).body.size(), 1'001U);
    EXPECT_EQ(fetch(server.site(), 1'000).fault, Fault::TooLarge);
    std::atomic<std::size_t> sent = 0;
    const RawServer endless([&sent](int socket) {
        const std::string piece(100'000, '[');
        for (bool open = sendAll(socket, "HTTP/1.1 200 OK\r\n\r\n"); open && sent < 100'000'000; sent += piece.size())
            open = sendAll(socket, piece);
    });
    const Fetched large = fetch(endless.site(), 1'000'000);
    EXPECT_EQ(large.fault, Fault::TooLarge);
    EXPECT_LT(sent, 100'000'000U) << "the connection is closed at the bound";
}

TEST(Fetch, BeginningOfALongBodyIsKeptIfOrdered)
{
    const std::string body = std::string(999, 'x') + "123";
    LoopbackServer server([&body](const HttpRequest& request) {
        if (request.path == "/")
            return jsonResponse(body);
        HttpResponse response = statusResponse(302, {{"Location", "/"}});
        response.body = std::string(request.path == "/short" ? 1'000 : 5'000, 'y');
        return response;
    });
    const RawServer withoutLength([&body](int socket) { sendAll(socket, "HTTP/1.1 200 OK\r\n\r\n" + body); });
    FetchPool pool;
    for (const std::string& address :
         {server.site() + "/", server.site() + "/short", server.site() + "/long", withoutLength.site() + "/"}) {
        for (const std::size_t most : {1'000U, 1'001U, 1'002U, 1'003U}) {
            Fetched fetched;
            Fetches fetches(pool);
            FetchOrder order;
            order.address = address;
            order.maxBytes = most;
            order.end = std::chrono::steady_clock::now() + kLong;
            order.cut = true;
            fetches.start(std::move(order), [&fetched](Fetched result) { fetched = std::move(result); });
            fetches.run();
            if (address.ends_with("/long")) {
                EXPECT_EQ(fetched.fault, Fault::TooLarge);
                continue;
            }
            EXPECT_EQ(fetched.fault, Fault::None) << address << fetched.detail;
            EXPECT_EQ(fetched.status, 200);
            EXPECT_EQ(fetched.body, body.substr(0, most)) << address;
        }
    }
}

TEST(Fetch, HeadsAreBounded)
{
    const RawServer server([](int socket) {
        bool open = sendAll(socket, "HTTP/1.1 200 OK\r\n");
        for (int i = 0; open && i < 100'000; ++i)
            open = sendAll(socket, "X-Field-" + std::to_string(i) + ": " + std::string(1'000, 'x') + "\r\n");
    });
    EXPECT_NE(fetch(server.site()).fault, Fault::None);
}

TEST(Fetch, WhatIsNoHttpOrEndsEarlyIsAFault)
{
    for (const char* bytes : {"", "\r\n", "nonsense\r\n\r\n", "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nshort",
                              "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n",
                              "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 3\r\n\r\nabc"}) {
        const RawServer server([bytes](int socket) { sendAll(socket, bytes); });
        const Fetched fetched = fetch(server.site());
        EXPECT_EQ(fetched.fault, Fault::Broken) << bytes;
        EXPECT_NE(fetched.detail, "") << bytes;
    }
}

TEST(Fetch, ServersThatAreMissingOrSilentAreToldApart)
{
    std::string closed;
    {
        const LoopbackServer server([](const HttpRequest&) { return HttpResponse(); });
        closed = server.site();
    }
    EXPECT_EQ(fetch(closed).fault, Fault::NoConnection);
    // No name server is asked for a name with such a long part (RFC 1035, section 2.3.4).
    EXPECT_EQ(fetch("http://" + std::string(64, 'a') + ".invalid/").fault, Fault::HostNotFound);
    EXPECT_EQ(fetch("ftp://127.0.0.1/").fault, Fault::Broken);
    EXPECT_EQ(fetch("").fault, Fault::Broken);
    const Listener silent; // the system accepts connections for it
    EXPECT_EQ(fetch("http://127.0.0.1:" + std::to_string(silent.port()), 1'000, std::chrono::milliseconds(1)).fault,
              Fault::TimeOut);
}

TEST(Fetch, SlowFetchDelaysNoOther)
{
    const Listener silent;
    LoopbackServer server([](const HttpRequest&) { return jsonResponse("{}"); });
    FetchPool pool;
    Fetches fetches(pool);
    int answers = 0;
    const auto order = [](const std::string& address) {
        FetchOrder wanted;
        wanted.address = address;
        wanted.maxBytes = 100;
        wanted.end = std::chrono::steady_clock::now() + kLong;
        return wanted;
    };
    fetches.start(order("http://127.0.0.1:" + std::to_string(silent.port())), [](Fetched) { ADD_FAILURE(); });
    fetches.start(order(server.site()), [&](Fetched) {
        ++answers;
        fetches.start(order(server.site()), [&answers](Fetched) { ++answers; });
    });
    EXPECT_FALSE(fetches.run([&answers] { return answers < 2; }));
    EXPECT_EQ(answers, 2);
}

TEST(Fetch, AbandonedTaskEndsIt)
{
    const Listener silent;
    FetchPool pool;
    Fetches fetches(pool);
    FetchOrder order;
    order.address = "http://127.0.0.1:" + std::to_string(silent.port());
    order.maxBytes = 100;
    order.end = std::chrono::steady_clock::now() + kLong;
    fetches.start(std::move(order), [](Fetched) { ADD_FAILURE(); });
    std::atomic<bool> abandoned = false;
    const CurrentTask task(abandoned);
    EXPECT_FALSE(fetches.run([&abandoned] {
        abandoned = true;
        return true;
    }));
}

TEST(Fetch, CertificatesAreVerified)
{
    const TemporaryFolder folder;
    const PythonServer servers({QUARRYNET_TLS_SERVER, folder.path()});
    const auto addressOf = [&servers](const std::string& kind, const std::string& host = "localhost") {
        const std::string ready = " " + servers.ready() + " ";
        const std::size_t begin = ready.find(" " + kind + "=") + kind.size() + 2;
        return "https://" + host + ":" + ready.substr(begin, ready.find(' ', begin) - begin) + "/";
    };
    const Outcome<std::string> certificates = readCertificates(folder.path() + "/ca.pem");
    ASSERT_TRUE(certificates) << certificates.error().message;
    FetchPool pool(*certificates);
    for (const char* host : {"localhost", "127.0.0.1"}) {
        const Fetched good = fetch(pool, addressOf("good", host));
        EXPECT_EQ(good.fault, Fault::None) << good.detail;
        EXPECT_THAT(good.body, HasSubstr("over TLS"));
    }
    const auto faultAt = [&](const std::string& kind) {
        const Fetched fetched = fetch(pool, addressOf(kind));
        EXPECT_EQ(fetched.fault, Fault::Tls) << kind << ": " << fetched.detail;
        EXPECT_EQ(fetched.body, "");
        return fetched.detail;
    };
    EXPECT_THAT(faultAt("expired"), HasSubstr("expired"));
    EXPECT_THAT(faultAt("self-signed"), HasSubstr("self-signed"));
    EXPECT_THAT(faultAt("wrong-name"), HasSubstr("name"));
    EXPECT_NE(faultAt("old"), "");
    EXPECT_EQ(fetch(addressOf("good")).fault, Fault::Tls) << "the system does not know the test's authority";
    const TestServer plain([](int socket) { sendAll(socket, "HTTP/1.1 200 OK\r\n\r\n"); });
    EXPECT_EQ(fetch(pool, "https" + plain.site().substr(3)).fault, Fault::Tls);
    FetchPool broken("no certificate");
    EXPECT_EQ(fetch(broken, addressOf("good")).fault, Fault::Tls);
}

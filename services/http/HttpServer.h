#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "ground/Descriptor.h"
#include "ground/Outcome.h"
#include "http/message.h"

namespace quarrynet::services {

/// A small HTTP server over Boost.Asio: one thread does the input and output of all connections, a few others make the
/// responses. Each connection carries one request and is closed after its response, whatever the request asks for,
/// because the program takes the end of the connection for the end of the page.
///
/// Each listening address has its own limits on connections, on responses being made and on their bytes, so that
/// whatever clients do at one address, the others keep answering.
class HttpServer
{
public:
    /// Makes the response to a GET or HEAD request. Several threads call it at once. An exception becomes a 500
    /// response. While it runs, CurrentTask::abandoned() says whether the response is no longer needed.
    using Handler = std::function<HttpResponse(const HttpRequest&)>;

    struct Limits
    {
        /// For the whole request head, so that a client that sends a byte now and then cannot stay forever.
        std::chrono::milliseconds requestTime = std::chrono::seconds(15);
        /// For the client to accept each further piece of the response.
        std::chrono::milliseconds writeTime = std::chrono::seconds(30);
        /// For the client to accept the whole response.
        std::chrono::milliseconds answerTime = std::chrono::minutes(5);
        /// At each address; further connections wait in the system's queue.
        std::size_t connections = 64;
        /// Responses being made at the same time, at each address.
        unsigned workers = 4;
        /// Bytes of all responses in memory, divided evenly among the addresses. No further response is started while
        /// an address has used up its share, so at most `workers` responses exceed it.
        std::size_t answerBytes = 64 * 1024 * 1024;
    };

    enum class ListenFault : std::uint8_t
    {
        NotPermitted,
        InUse,
        Other,
    };
    struct Refusal
    {
        ListenFault fault = ListenFault::Other;
        std::string message;
    };

    /// Throws std::system_error when the system has no file descriptors left.
    HttpServer();
    explicit HttpServer(Limits limits);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// Listens at the numeric IPv4 `address`; port 0 picks a free one. Returns the port, or the reason for the failure.
    /// Call before run() only.
    std::variant<std::uint16_t, Refusal> listen(const std::string& address, std::uint16_t port, Handler handler);

    /// Serves at a listening TCP socket that another process has opened. Otherwise like listen().
    std::variant<std::uint16_t, Refusal> adopt(Descriptor socket, Handler handler);

    /// From now on SIGINT and SIGTERM call stop() instead of ending the program.
    void stopOnSignals();

    /// Serves until stop(), which may come before or later. Call once only. Returns false when the system denies a
    /// resource.
    bool run();

    /// Ends run() soon: cuts off responses being sent, and abandons those being made. Thread-safe, but not safe in a
    /// signal handler.
    void stop();

    /// Returns the peak of response bytes in memory. Call after run().
    std::size_t mostHeld() const;

private:
    class Loop;
    std::unique_ptr<Loop> loop_;
};

} // namespace quarrynet::services

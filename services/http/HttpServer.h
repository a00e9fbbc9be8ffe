#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "ground/Outcome.h"
#include "http/message.h"

namespace quarrynet::services {

/// A small HTTP server over Boost.Asio: one thread moves the bytes of all connections, a few others make the answers.
/// Each connection carries one request and is closed after its answer, whatever the request asks for, because the
/// connection's end is what tells the program that the page is complete.
///
/// Each address that is listened at has places of its own, for connections, for answers in the making and for their
/// bytes, so that whatever clients do at one address, the others go on answering.
class HttpServer
{
public:
    /// Makes the answer to a GET or HEAD request; called from several threads at once. What it throws becomes a 500.
    /// While it runs, CurrentTask::abandoned() says whether anybody still waits for it.
    using Handler = std::function<HttpResponse(const HttpRequest&)>;

    struct Limits
    {
        /// For the whole request head, so that a client that sends a byte now and then cannot stay for ever.
        std::chrono::milliseconds requestTime = std::chrono::seconds(15);
        /// For each further piece of the answer to be taken.
        std::chrono::milliseconds writeTime = std::chrono::seconds(30);
        /// For the whole answer to be taken.
        std::chrono::milliseconds answerTime = std::chrono::minutes(5);
        /// At each address; further ones wait in the system's queue.
        std::size_t connections = 64;
        /// Answers in the making at each address.
        unsigned workers = 4;
        /// For all answers together, in bytes held in memory; each address has its share. No further answer is made
        /// while a share is used up, so that at most `workers` answers go beyond it.
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

    /// Throws std::system_error when the system has no descriptors left.
    HttpServer();
    explicit HttpServer(Limits limits);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// Listens at the numeric IPv4 `address`; port 0 picks a free one. The port, or why not. Before run() only.
    std::variant<std::uint16_t, Refusal> listen(const std::string& address, std::uint16_t port, Handler handler);

    /// From now on SIGINT and SIGTERM are a stop() instead of the program's end.
    void stopOnSignals();

    /// Serves until stop(), at once or later, and once only. False when the system refuses what serving takes.
    bool run();

    /// Ends run() soon: answers under way are cut off, and those in the making are told that they are abandoned. From
    /// any thread, but not from a signal handler.
    void stop();

    /// Returns the most bytes of answers that were held at once; to be called when run() is over.
    std::size_t mostHeld() const;

private:
    class Loop;
    std::unique_ptr<Loop> loop_;
};

} // namespace quarrynet::services

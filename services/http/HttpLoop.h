#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include "http/HttpServer.h"

/// Internals of HttpServer: the event loop with its listeners, and the sessions.
namespace quarrynet::services {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

/// Known state of the client.
enum class Client : std::uint8_t
{
    Waits,
    Ended, ///< it has closed its sending side, and may be gone as well
    Gone,
};

/// The bytes of a response, followed by the content of a file.
struct Answer
{
    std::string bytes;
    std::shared_ptr<const OpenFile> file = nullptr;
};

class HttpServer::Loop
{
public:
    explicit Loop(Limits limits) : limits_(limits) {}
    ~Loop();
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    std::variant<std::uint16_t, Refusal> listen(const std::string& address, std::uint16_t port, Handler handler);
    std::variant<std::uint16_t, Refusal> adopt(Descriptor socket, Handler handler);
    void stopOnSignals();
    bool run();
    void stop() { io_.stop(); }
    std::size_t mostHeld() const { return mostHeld_; }

private:
    class Session;
    using Queue = std::deque<std::shared_ptr<Session>>;

    /// A listening address with its own limits. Only the loop's thread uses it.
    struct Listener
    {
        std::optional<tcp::acceptor> acceptor;
        Handler handler;
        bool accepting = false;
        bool dispatching = false;
        std::size_t sessions = 0;
        std::size_t held = 0;                      ///< bytes of responses in memory
        std::set<std::shared_ptr<Session>> making; ///< sessions whose responses workers are making
        Queue waiting;                             ///< sessions that wait for a worker
        Queue ended;                               ///< clients that closed their sending side; served after all others
    };

    tcp::endpoint addListener(tcp::acceptor& acceptor, Handler handler, error_code& error);
    void accept(Listener& listener);
    void acceptAll();
    void dispatch(Listener& listener);
    void lookAround();
    static std::shared_ptr<Session> next(Listener& listener);
    static void setAside(Listener& listener, std::shared_ptr<Session> session);
    void hold(Listener& listener, std::size_t bytes);
    /// Must not throw: it is called by the destructor of a session.
    void release(Listener& listener, std::size_t bytes);

    Limits limits_;
    bool placesFree_ = false; ///< a connection or a response has ended, so others may proceed
    std::size_t held_ = 0;
    std::size_t mostHeld_ = 0;
    std::vector<std::unique_ptr<Listener>> listeners_; // declared before io_: sessions that io_ still holds use them
    asio::io_context io_{1};
    asio::signal_set signals_{io_};
    asio::steady_timer acceptPause_{io_};
    asio::io_context* workers_ = nullptr; ///< valid while run() runs
};

/// One connection. Pending operations hold the session; it ends, and closes the connection, when none is left. It keeps
/// reading after the request, because that is how it notices that the client has closed the connection.
class HttpServer::Loop::Session : public std::enable_shared_from_this<Session>
{
public:
    Session(Loop& loop, Listener& listener, tcp::socket socket)
        : loop_(loop), listener_(listener), socket_(std::move(socket)), timer_(loop.io_)
    {
        ++listener_.sessions;
    }
    ~Session()
    {
        --listener_.sessions;
        loop_.release(listener_, held_);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void start()
    {
        expireAfter(loop_.limits_.requestTime);
        receive();
    }

    Client client();

    /// Lets a worker make the response. If it throws, the session ends.
    void make();
    void abandon() { abandoned_ = true; }
    void send(Answer answer);
    void close();

private:
    enum class Phase : std::uint8_t
    {
        Reading,
        Waiting,
        Making,
        Sending,
        Draining,
    };

    void expireAfter(std::chrono::steady_clock::duration time);
    void expire();
    void receive();
    void received(error_code error, std::size_t count);
    void overheard(error_code error, std::size_t count);
    void made();
    void bringBack();
    void sendRest();
    void sent(error_code error, std::size_t count);
    void finish();
    void takeFilePiece();

    /// Runs a step. If it throws, closes the connection, because no operation would be pending on it any more.
    template <class Step>
    void orClose(Step step)
    {
        try {
            step();
        } catch (...) {
            close();
            throw;
        }
    }

    Loop& loop_;
    Listener& listener_;
    tcp::socket socket_;
    asio::steady_timer timer_;
    RequestReader reader_;
    std::array<char, 16 * 1024> piece_;
    bool receiving_ = false;
    Phase phase_ = Phase::Reading;
    Client client_ = Client::Waits;
    bool late_ = false;
    HttpRequest request_;
    std::atomic<bool> abandoned_ = false;
    Answer answer_;        ///< the worker's while phase_ is Making
    std::size_t sent_ = 0; ///< bytes sent of answer_.bytes
    std::uint64_t fileSent_ = 0;
    std::size_t held_ = 0;
    std::chrono::steady_clock::time_point answerEnd_;
    std::size_t overheard_ = 0;
};

} // namespace quarrynet::services

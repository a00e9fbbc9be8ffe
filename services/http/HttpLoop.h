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

/// The inside of HttpServer: the loop with its listeners, and the sessions.
namespace quarrynet::services {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

/// What is known of the client at the other end of a connection.
enum class Client : std::uint8_t
{
    Waits,
    Ended, ///< its side of the connection; it may be gone as well
    Gone,
};

/// What goes over the connection: bytes, and behind them the content of a file.
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
    void stopOnSignals();
    bool run();
    void stop() { io_.stop(); }
    std::size_t mostHeld() const { return mostHeld_; }

private:
    class Session;
    using Queue = std::deque<std::shared_ptr<Session>>;

    /// An address with its places. All of it belongs to the thread that runs the loop.
    struct Listener
    {
        std::optional<tcp::acceptor> acceptor;
        Handler handler;
        bool accepting = false;
        bool dispatching = false;
        std::size_t sessions = 0;
        std::size_t held = 0;                      ///< bytes of answers
        std::set<std::shared_ptr<Session>> making; ///< whose answers are in the making
        Queue waiting;                             ///< for a place among them
        Queue ended;                               ///< likewise, after all others: clients that ended their side
    };

    void accept(Listener& listener);
    void acceptAll();
    void dispatch(Listener& listener);
    void lookAround();
    static std::shared_ptr<Session> next(Listener& listener);
    static void setAside(Listener& listener, std::shared_ptr<Session> session);
    void hold(Listener& listener, std::size_t bytes);
    /// Must not throw: sessions end in it.
    void release(Listener& listener, std::size_t bytes);

    Limits limits_;
    bool placesFree_ = false; ///< for connections or for answers; what ended may have been waited for
    std::size_t held_ = 0;
    std::size_t mostHeld_ = 0;
    std::vector<std::unique_ptr<Listener>> listeners_; // sessions that are still held by the next one need them
    asio::io_context io_{1};
    asio::signal_set signals_{io_};
    asio::steady_timer acceptPause_{io_};
    asio::io_context* workers_ = nullptr; ///< while run() runs
};

/// One connection. What is under way holds the session; when nothing is, it ends, and the connection with it. Behind
/// the request the connection is still read, because that is how a client's going is noticed.
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

    /// Has the answer made by a worker. When it throws, the session is over.
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

    /// Runs a step; where it throws, nothing would go on with the connection any more, so that is closed.
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
    Answer answer_;        ///< the worker's while it is in the making
    std::size_t sent_ = 0; ///< of answer_.bytes
    std::uint64_t fileSent_ = 0;
    std::size_t held_ = 0;
    std::chrono::steady_clock::time_point answerEnd_;
    std::size_t overheard_ = 0;
};

} // namespace quarrynet::services

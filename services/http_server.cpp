#include "services/http_server.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <system_error>
#include <utility>
#include <vector>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/beast/core/tcp_stream.hpp>

namespace quarrynet::services {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

// After the answer the client may still be sending, and closing then would reset the connection and lose the answer:
// what it sends is read and thrown away for so long and so much.
constexpr auto kDrainTime = std::chrono::seconds(2);
constexpr std::size_t kDrainBytes = 1024 * 1024;

/// When the system has no descriptors left, a further connection is tried so much later.
constexpr auto kAcceptPause = std::chrono::milliseconds(100);

/// Keeps a socket from the processes that are started here: a connection that they held would not end in time.
void keepFromChildren(int descriptor)
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

std::string answerTo(const HttpServer::Handler& handler, const HttpRequest& request)
{
    const bool headOnly = request.method == "HEAD";
    try {
        if (request.method != "GET" && !headOnly)
            return responseBytes(errorResponse(405, "Only GET and HEAD are answered here."), false);
        return responseBytes(handler(request), headOnly);
    } catch (const std::exception&) {
        return responseBytes(errorResponse(500, "The answer could not be made."), headOnly);
    }
}

} // namespace

class HttpServer::Loop
{
public:
    explicit Loop(Limits limits) : limits_(limits) {}

    std::variant<std::uint16_t, Refusal> listen(const std::string& address, std::uint16_t port, Handler handler);
    void stopOnSignals();
    bool run();
    void stop() { io_.stop(); }

private:
    class Session;

    struct Listener
    {
        tcp::acceptor acceptor;
        Handler handler;
        bool accepting = false;
    };

    void accept(Listener& listener);
    void acceptAll();

    Limits limits_;
    bool running_ = false;
    std::size_t sessions_ = 0;
    asio::io_context io_{1}; // sessions that are still held here end with it, before what they use
    asio::signal_set signals_{io_};
    asio::steady_timer acceptPause_{io_};
    std::vector<std::unique_ptr<Listener>> listeners_;
    asio::thread_pool* workers_ = nullptr; ///< while run() runs
};

/// One connection. What is under way holds the session; when nothing is, it ends, and the connection with it.
class HttpServer::Loop::Session : public std::enable_shared_from_this<Session>
{
public:
    Session(Loop& loop, const Handler& handler, tcp::socket socket)
        : loop_(loop), handler_(handler), stream_(std::move(socket)), requestTimer_(loop.io_)
    {
        ++loop_.sessions_;
    }
    ~Session()
    {
        --loop_.sessions_;
        if (loop_.running_)
            loop_.acceptAll();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void start()
    {
        // The stream's own timeout would close the connection, and there would be no saying why.
        requestTimer_.expires_after(loop_.limits_.requestTime);
        requestTimer_.async_wait([weak = weak_from_this()](error_code error) {
            if (const auto self = weak.lock(); self && !error)
                self->expire();
        });
        receive();
    }

private:
    void expire()
    {
        if (!reading_)
            return;
        late_ = true;
        stream_.cancel();
    }

    void receive()
    {
        stream_.async_read_some(asio::buffer(piece_), [self = shared_from_this()](error_code error, std::size_t count) {
            self->received(error, count);
        });
    }

    void received(error_code error, std::size_t count)
    {
        HeadState head = reader_.take({piece_.data(), count});
        if (std::holds_alternative<HeadIncomplete>(head)) {
            if (!error && !late_) {
                receive();
                return;
            }
            if (reader_.empty())
                return;
            if (late_)
                head = errorResponse(408, "The request took too long to arrive.");
            else if (error == asio::error::eof)
                head = errorResponse(400, "The request is incomplete.");
            else
                return;
        }
        reading_ = false;
        requestTimer_.cancel();
        if (auto* request = std::get_if<HttpRequest>(&head))
            answer(std::move(*request));
        else
            send(responseBytes(std::get<HttpResponse>(head), false));
    }

    void answer(HttpRequest request)
    {
        asio::post(*loop_.workers_, [self = shared_from_this(), asked = std::move(request)]() mutable {
            std::string bytes = answerTo(self->handler_, asked);
            asio::io_context& io = self->loop_.io_;
            asio::post(io,
                       [back = std::move(self), made = std::move(bytes)]() mutable { back->send(std::move(made)); });
        });
    }

    void send(std::string bytes)
    {
        answer_ = std::move(bytes);
        sendRest();
    }

    void sendRest()
    {
        stream_.expires_after(loop_.limits_.writeTime);
        stream_.async_write_some(
            asio::buffer(answer_) + sent_,
            [self = shared_from_this()](error_code error, std::size_t count) { self->sent(error, count); });
    }

    void sent(error_code error, std::size_t count)
    {
        if (error)
            return;
        sent_ += count;
        if (sent_ < answer_.size()) {
            sendRest();
            return;
        }
        answer_ = std::string();
        stream_.socket().shutdown(tcp::socket::shutdown_send, error);
        stream_.expires_after(kDrainTime);
        drain();
    }

    void drain()
    {
        stream_.async_read_some(asio::buffer(piece_), [self = shared_from_this()](error_code error, std::size_t count) {
            self->drained_ += count;
            if (!error && self->drained_ < kDrainBytes)
                self->drain();
        });
    }

    Loop& loop_;
    const Handler& handler_;
    boost::beast::tcp_stream stream_;
    asio::steady_timer requestTimer_;
    RequestReader reader_;
    std::array<char, 16 * 1024> piece_;
    bool reading_ = true;
    bool late_ = false;
    std::string answer_;
    std::size_t sent_ = 0;
    std::size_t drained_ = 0;
};

std::variant<std::uint16_t, HttpServer::Refusal> HttpServer::Loop::listen(const std::string& address,
                                                                          std::uint16_t port, Handler handler)
{
    error_code error;
    const asio::ip::address_v4 ip = asio::ip::make_address_v4(address, error);
    if (error)
        return Refusal{ListenFault::Other, "\"" + address + "\" is not a numeric IPv4 address"};
    tcp::acceptor acceptor(io_);
    acceptor.open(tcp::v4(), error);
    if (!error) {
        keepFromChildren(acceptor.native_handle());
        acceptor.set_option(tcp::acceptor::reuse_address(true), error);
    }
    if (!error)
        acceptor.bind({ip, port}, error);
    if (!error)
        acceptor.listen(tcp::acceptor::max_listen_connections, error);
    const tcp::endpoint name = error ? tcp::endpoint() : acceptor.local_endpoint(error);
    if (error) {
        ListenFault fault = ListenFault::Other;
        if (error == asio::error::access_denied || error == asio::error::no_permission)
            fault = ListenFault::NotPermitted;
        else if (error == asio::error::address_in_use)
            fault = ListenFault::InUse;
        return Refusal{fault, address + ":" + std::to_string(port) + ": " + error.message()};
    }
    listeners_.push_back(std::make_unique<Listener>(Listener{std::move(acceptor), std::move(handler)}));
    return name.port();
}

void HttpServer::Loop::stopOnSignals()
{
    signals_.add(SIGINT);
    signals_.add(SIGTERM);
    signals_.async_wait([this](error_code error, int) {
        if (!error)
            stop();
    });
}

void HttpServer::Loop::accept(Listener& listener)
{
    listener.accepting = true;
    listener.acceptor.async_accept([this, &listener](error_code error, tcp::socket socket) {
        listener.accepting = false;
        if (error) {
            acceptPause_.expires_after(kAcceptPause);
            acceptPause_.async_wait([this](error_code cancelled) {
                if (!cancelled)
                    acceptAll();
            });
            return;
        }
        keepFromChildren(socket.native_handle());
        socket.set_option(tcp::no_delay(true), error); // a connection without it is merely slower
        std::make_shared<Session>(*this, listener.handler, std::move(socket))->start();
        acceptAll();
    });
}

void HttpServer::Loop::acceptAll()
{
    for (const auto& listener : listeners_) {
        if (!listener->accepting && sessions_ < limits_.connections)
            accept(*listener);
    }
}

bool HttpServer::Loop::run()
{
    std::unique_ptr<asio::thread_pool> workers;
    try {
        workers = std::make_unique<asio::thread_pool>(limits_.workers);
    } catch (const std::system_error&) {
        return false;
    }
    workers_ = workers.get();
    const auto busy =
        asio::make_work_guard(io_); // with all connections in the workers' hands nothing else is waited for
    running_ = true;
    while (!io_.stopped()) {
        try {
            acceptAll();
            io_.run();
        } catch (const std::exception&) {
            // Memory ran out: the connection that needed it is over, the others go on.
        }
    }
    running_ = false;
    workers->stop();
    workers->join();
    return true;
}

HttpServer::HttpServer() : HttpServer(Limits{}) {}

HttpServer::HttpServer(Limits limits) : loop_(std::make_unique<Loop>(limits)) {}

HttpServer::~HttpServer() = default;

std::variant<std::uint16_t, HttpServer::Refusal> HttpServer::listen(const std::string& address, std::uint16_t port,
                                                                    Handler handler)
{
    return loop_->listen(address, port, std::move(handler));
}

void HttpServer::stopOnSignals()
{
    loop_->stopOnSignals();
}

bool HttpServer::run()
{
    return loop_->run();
}

void HttpServer::stop()
{
    loop_->stop();
}

} // namespace quarrynet::services

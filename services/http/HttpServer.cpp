#include "http/HttpServer.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <thread>
#include <utility>

#include <boost/asio/executor_work_guard.hpp>

#include "http/HttpLoop.h"

namespace quarrynet::services {

namespace {

/// Pause before the next accept() when the system has no file descriptors left.
constexpr auto kAcceptPause = std::chrono::milliseconds(100);

/// Limit of the system's send buffer for a slow client. The default is megabytes.
constexpr int kSendBuffer = 128 * 1024;

/// Clients that have closed their sending side may still read a response, but most are gone. At each address, at most
/// this many wait for a worker, after all others.
constexpr std::size_t kEndedClients = 4;

/// Child processes must not inherit a socket: a connection that they held open would not end in time.
void keepFromChildren(int descriptor)
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

} // namespace

HttpServer::Loop::~Loop()
{
    for (const auto& listener : listeners_) {
        listener->acceptor.reset();
        listener->making.clear();
        listener->waiting.clear();
        listener->ended.clear();
    }
}

void HttpServer::Loop::hold(Listener& listener, std::size_t bytes)
{
    listener.held += bytes;
    held_ += bytes;
    mostHeld_ = std::max(mostHeld_, held_);
}

void HttpServer::Loop::release(Listener& listener, std::size_t bytes)
{
    listener.held -= bytes;
    held_ -= bytes;
    placesFree_ = true;
}

/// Gives freed capacity to waiting clients.
void HttpServer::Loop::lookAround()
{
    if (!std::exchange(placesFree_, false))
        return;
    acceptAll();
    for (const auto& listener : listeners_)
        dispatch(*listener);
}

/// Starts making responses while limits allow.
void HttpServer::Loop::dispatch(Listener& listener)
{
    const std::size_t share = limits_.answerBytes / listeners_.size();
    while (listener.making.size() < limits_.workers && listener.held < share) {
        const std::shared_ptr<Session> session = next(listener);
        if (session == nullptr)
            break;
        session->make();
    }
    // Responses that probably nobody reads make room.
    if (listener.waiting.empty())
        return;
    for (const std::shared_ptr<Session>& session : listener.making) {
        if (session->client() != Client::Waits)
            session->abandon();
    }
}

/// Removes and returns the next session that still needs a response, or null when there is none.
std::shared_ptr<HttpServer::Loop::Session> HttpServer::Loop::next(Listener& listener)
{
    while (!listener.waiting.empty()) {
        std::shared_ptr<Session> session = listener.waiting.front();
        if (session->client() == Client::Waits) {
            listener.waiting.pop_front();
            return session;
        }
        setAside(listener, session);
    }
    if (listener.ended.empty())
        return nullptr;
    std::shared_ptr<Session> session = std::move(listener.ended.front());
    listener.ended.pop_front();
    return session;
}

/// Moves a session whose client has closed its sending side from `waiting` to `ended`, and drops one whose client is
/// gone. A client's end can be noticed twice, by next() and by the session's own read. The session may be in one queue
/// once only, or two workers would use it at the same time.
void HttpServer::Loop::setAside(Listener& listener, std::shared_ptr<Session> session)
{
    std::erase(listener.waiting, session);
    std::erase(listener.ended, session);
    if (session->client() == Client::Gone) {
        session->close();
        return;
    }
    if (listener.ended.size() < kEndedClients)
        listener.ended.push_back(std::move(session));
    else
        session->send({responseBytes(errorResponse(503, "Too many requests are waiting."), false)});
}

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
    tcp::endpoint name = error ? tcp::endpoint() : addListener(acceptor, std::move(handler), error);
    if (error) {
        ListenFault fault = ListenFault::Other;
        if (error == asio::error::access_denied || error == asio::error::no_permission)
            fault = ListenFault::NotPermitted;
        else if (error == asio::error::address_in_use)
            fault = ListenFault::InUse;
        return Refusal{fault, address + ":" + std::to_string(port) + ": " + error.message()};
    }
    return name.port();
}

std::variant<std::uint16_t, HttpServer::Refusal> HttpServer::Loop::adopt(Descriptor socket, Handler handler)
{
    keepFromChildren(socket.number());
    tcp::acceptor acceptor(io_);
    error_code error;
    acceptor.assign(tcp::v4(), socket.number(), error);
    if (!error)
        socket.release(); // the acceptor's now
    tcp::endpoint name = error ? tcp::endpoint() : addListener(acceptor, std::move(handler), error);
    if (error)
        return Refusal{ListenFault::Other, "the handed socket: " + error.message()};
    return name.port();
}

/// Adds a listener for a socket that listens. Returns its address; takes nothing when `error` is set.
tcp::endpoint HttpServer::Loop::addListener(tcp::acceptor& acceptor, Handler handler, error_code& error)
{
    // Accepted connections inherit this.
    acceptor.set_option(asio::socket_base::send_buffer_size(kSendBuffer), error);
    tcp::endpoint name = error ? tcp::endpoint() : acceptor.local_endpoint(error);
    if (error)
        return name;
    listeners_.push_back(std::make_unique<Listener>());
    listeners_.back()->acceptor.emplace(std::move(acceptor));
    listeners_.back()->handler = std::move(handler);
    return name;
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
    listener.acceptor->async_accept([this, &listener](error_code error, tcp::socket socket) {
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
        std::make_shared<Session>(*this, listener, std::move(socket))->start();
        acceptAll();
    });
    listener.accepting = true; // not before, so that acceptAll() retries when async_accept() throws
}

void HttpServer::Loop::acceptAll()
{
    for (const auto& listener : listeners_) {
        if (!listener->accepting && listener->sessions < limits_.connections)
            accept(*listener);
    }
}

bool HttpServer::Loop::run()
{
    // asio::thread_pool would wait forever for its first threads when a later one cannot be started.
    asio::io_context work;
    const auto more = asio::make_work_guard(work);
    std::vector<std::jthread> threads;
    const auto endThreads = [&work, &threads] {
        work.stop();
        threads.clear();
    };
    try {
        for (std::size_t i = limits_.workers * std::max<std::size_t>(1, listeners_.size()); i > 0; --i)
            threads.emplace_back([&work] { work.run(); });
    } catch (const std::exception&) {
        endThreads();
        return false;
    }
    workers_ = &work;
    // When workers have all connections, no operation is pending.
    const auto busy = asio::make_work_guard(io_);
    placesFree_ = true;
    while (!io_.stopped()) {
        try {
            lookAround();
            io_.run_one();
        } catch (const std::exception&) {
            // Out of memory: the connection that needed it has ended, the others continue.
            placesFree_ = true;
        }
    }
    for (const auto& listener : listeners_) {
        for (const std::shared_ptr<Session>& session : listener->making)
            session->abandon();
    }
    endThreads();
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

std::variant<std::uint16_t, HttpServer::Refusal> HttpServer::adopt(Descriptor socket, Handler handler)
{
    return loop_->adopt(std::move(socket), std::move(handler));
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

std::size_t HttpServer::mostHeld() const
{
    return loop_->mostHeld();
}

} // namespace quarrynet::services

#include "services/http_server.h"

#include <arpa/inet.h>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include <queue>

namespace quarrynet::services {

namespace {

using Clock = std::chrono::steady_clock;

/// A file descriptor that closes itself.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (number_ >= 0)
            ::close(number_);
    }
    int get() const { return number_; }

private:
    int number_ = -1;
};

// After the answer the client may still be sending, and closing then would reset the connection and lose the answer:
// what it sends is read and thrown away for so long and so much.
constexpr auto kDrainTime = std::chrono::seconds(2);
constexpr std::size_t kDrainBytes = 1024 * 1024;

bool makeNonBlocking(int descriptor)
{
    const int flags = ::fcntl(descriptor, F_GETFL);
    return flags >= 0 && ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) == 0 &&
           ::fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0;
}

} // namespace

class HttpServer::Loop
{
public:
    explicit Loop(Limits limits) : limits_(limits)
    {
        int ends[2] = {-1, -1};
        if (::pipe(ends) != 0)
            return;
        wakeRead_ = Descriptor(ends[0]);
        wakeWrite_ = Descriptor(ends[1]);
        usable_ = makeNonBlocking(ends[0]) && makeNonBlocking(ends[1]);
    }

    std::variant<std::uint16_t, Refusal> listen(const std::string& address, std::uint16_t port, Handler handler);
    bool run();

    void stop() noexcept
    {
        stopping_ = true;
        wake();
    }

private:
    enum class State : std::uint8_t
    {
        Reading,
        Answering,
        Writing,
        Draining,
    };

    struct Listener
    {
        Descriptor socket;
        Handler handler;
    };

    struct Connection
    {
        Descriptor socket;
        const Listener* listener = nullptr;
        State state = State::Reading;
        std::string received = {};
        std::string answer = {};
        std::size_t sent = 0;
        std::size_t drained = 0;
        Clock::time_point deadline = {};
    };

    struct Job
    {
        std::uint64_t connection = 0;
        const Listener* listener = nullptr;
        HttpRequest request;
    };

    void wake() noexcept
    {
        const int keptErrno = errno; // stop() may run in a signal handler
        const char byte = 0;
        [[maybe_unused]] const auto written = ::write(wakeWrite_.get(), &byte, 1); // full: a wake is under way anyway
        errno = keptErrno;
    }

    void work();
    static std::string answerTo(const Job& job);
    void takeAnswers();
    void accept(const Listener& listener);
    bool serve(std::uint64_t number, Connection& connection, short events); // false: the connection is over
    bool receive(std::uint64_t number, Connection& connection);
    bool send(Connection& connection);
    bool drain(Connection& connection) const;
    bool expire(Connection& connection);
    void beginAnswer(Connection& connection, std::string bytes);
    int pollTimeout() const;

    Limits limits_;
    Descriptor wakeRead_;
    Descriptor wakeWrite_;
    bool usable_ = false;
    std::atomic<bool> stopping_ = false;
    std::vector<std::unique_ptr<Listener>> listeners_;
    std::map<std::uint64_t, Connection> connections_;
    std::uint64_t nextNumber_ = 0;

    std::mutex mutex_;
    std::condition_variable jobAdded_;
    std::queue<Job> jobs_;
    std::queue<std::pair<std::uint64_t, std::string>> answers_;
    bool closing_ = false;
};

std::variant<std::uint16_t, HttpServer::Refusal> HttpServer::Loop::listen(const std::string& address,
                                                                          std::uint16_t port, Handler handler)
{
    const auto refuse = [](int code, const std::string& message) {
        ListenFault fault = ListenFault::Other;
        if (code == EACCES || code == EPERM)
            fault = ListenFault::NotPermitted;
        else if (code == EADDRINUSE)
            fault = ListenFault::InUse;
        return Refusal{fault, message};
    };
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(port);
    if (::inet_pton(AF_INET, address.c_str(), &name.sin_addr) != 1)
        return refuse(0, "\"" + address + "\" is not a numeric IPv4 address");
    Descriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
    const int on = 1;
    if (socket.get() < 0 || !makeNonBlocking(socket.get()))
        return refuse(errno, std::string("no socket: ") + std::strerror(errno));
    ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0 ||
        ::listen(socket.get(), SOMAXCONN) != 0)
        return refuse(errno, address + ":" + std::to_string(port) + ": " + std::strerror(errno));
    socklen_t length = sizeof name;
    if (::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&name), &length) != 0)
        return refuse(errno, std::string("no port: ") + std::strerror(errno));
    auto listener = std::make_unique<Listener>();
    listener->socket = std::move(socket);
    listener->handler = std::move(handler);
    listeners_.push_back(std::move(listener));
    return ntohs(name.sin_port);
}

std::string HttpServer::Loop::answerTo(const Job& job)
{
    const bool headOnly = job.request.method == "HEAD";
    try {
        if (job.request.method != "GET" && !headOnly)
            return responseBytes(errorResponse(405, "Only GET and HEAD are answered here."), false);
        return responseBytes(job.listener->handler(job.request), headOnly);
    } catch (const std::exception&) {
        return responseBytes(errorResponse(500, "The answer could not be made."), headOnly);
    }
}

void HttpServer::Loop::work()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        jobAdded_.wait(lock, [this] { return closing_ || !jobs_.empty(); });
        if (closing_)
            return;
        const Job job = std::move(jobs_.front());
        jobs_.pop();
        lock.unlock();
        std::string bytes = answerTo(job);
        lock.lock();
        answers_.emplace(job.connection, std::move(bytes));
        wake();
    }
}

void HttpServer::Loop::beginAnswer(Connection& connection, std::string bytes)
{
    connection.answer = std::move(bytes);
    connection.received = std::string();
    connection.state = State::Writing;
    connection.deadline = Clock::now() + limits_.writeTime;
}

void HttpServer::Loop::takeAnswers()
{
    char bytes[64];
    while (::read(wakeRead_.get(), bytes, sizeof bytes) > 0) {
    }
    const std::lock_guard lock(mutex_);
    for (; !answers_.empty(); answers_.pop()) {
        const auto found = connections_.find(answers_.front().first);
        if (found != connections_.end())
            beginAnswer(found->second, std::move(answers_.front().second));
    }
}

void HttpServer::Loop::accept(const Listener& listener)
{
    while (connections_.size() < limits_.connections) {
        Descriptor socket(::accept(listener.socket.get(), nullptr, nullptr));
        if (socket.get() < 0)
            return;
        if (!makeNonBlocking(socket.get()))
            continue;
        const int on = 1;
        ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        Connection connection;
        connection.socket = std::move(socket);
        connection.listener = &listener;
        connection.deadline = Clock::now() + limits_.requestTime;
        connections_.emplace(nextNumber_++, std::move(connection));
    }
}

bool HttpServer::Loop::receive(std::uint64_t number, Connection& connection)
{
    char bytes[16 * 1024];
    const ssize_t count = ::recv(connection.socket.get(), bytes, sizeof bytes, 0);
    if (count < 0)
        return errno == EAGAIN || errno == EINTR;
    const std::string_view piece(bytes, static_cast<std::size_t>(count));
    connection.received.append(piece);
    // A head ends with a line. Looking only then keeps a client that sends single bytes from costing time.
    if (count > 0 && piece.find('\n') == std::string_view::npos && connection.received.size() <= kMaxHead)
        return true;
    HeadState head = readRequestHead(connection.received);
    if (auto* refusal = std::get_if<HttpResponse>(&head)) {
        beginAnswer(connection, responseBytes(*refusal, false));
    } else if (auto* request = std::get_if<HttpRequest>(&head)) {
        connection.state = State::Answering;
        connection.received = std::string();
        const std::lock_guard lock(mutex_);
        jobs_.push({number, connection.listener, std::move(*request)});
        jobAdded_.notify_one();
    } else if (count == 0) {
        if (connection.received.empty())
            return false;
        beginAnswer(connection, responseBytes(errorResponse(400, "The request is incomplete."), false));
    }
    return true;
}

bool HttpServer::Loop::send(Connection& connection)
{
    const ssize_t count = ::send(connection.socket.get(), connection.answer.data() + connection.sent,
                                 connection.answer.size() - connection.sent, MSG_NOSIGNAL);
    if (count < 0)
        return errno == EAGAIN || errno == EINTR;
    connection.sent += static_cast<std::size_t>(count);
    connection.deadline = Clock::now() + limits_.writeTime;
    if (connection.sent < connection.answer.size())
        return true;
    connection.answer = std::string();
    ::shutdown(connection.socket.get(), SHUT_WR);
    connection.state = State::Draining;
    connection.deadline = Clock::now() + kDrainTime;
    return true;
}

bool HttpServer::Loop::drain(Connection& connection) const
{
    char bytes[16 * 1024];
    const ssize_t count = ::recv(connection.socket.get(), bytes, sizeof bytes, 0);
    if (count < 0)
        return errno == EAGAIN || errno == EINTR;
    connection.drained += static_cast<std::size_t>(count);
    return count > 0 && connection.drained < kDrainBytes;
}

bool HttpServer::Loop::serve(std::uint64_t number, Connection& connection, short events)
{
    switch (connection.state) {
    case State::Reading:
        return (events & (POLLIN | POLLHUP | POLLERR)) == 0 || receive(number, connection);
    case State::Writing:
        return (events & (POLLOUT | POLLHUP | POLLERR)) == 0 || send(connection);
    case State::Draining:
        return (events & (POLLIN | POLLHUP | POLLERR)) == 0 || drain(connection);
    case State::Answering:
        break;
    }
    return true;
}

bool HttpServer::Loop::expire(Connection& connection)
{
    if (connection.state == State::Answering || Clock::now() < connection.deadline)
        return true;
    if (connection.state != State::Reading || connection.received.empty())
        return false;
    beginAnswer(connection, responseBytes(errorResponse(408, "The request took too long to arrive."), false));
    return true;
}

int HttpServer::Loop::pollTimeout() const
{
    std::optional<Clock::time_point> next;
    for (const auto& [number, connection] : connections_) {
        if (connection.state != State::Answering && (!next || connection.deadline < *next))
            next = connection.deadline;
    }
    if (!next)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now()).count();
    return left < 0 ? 0 : static_cast<int>(left);
}

bool HttpServer::Loop::run()
{
    if (!usable_)
        return false;
    std::vector<std::thread> workers;
    for (unsigned i = 0; i < limits_.workers; ++i)
        workers.emplace_back([this] { work(); });

    bool healthy = true;
    std::vector<pollfd> watched;
    std::vector<std::uint64_t> numbers;
    while (!stopping_) {
        watched.assign(1, {wakeRead_.get(), POLLIN, 0});
        numbers.clear();
        const bool full = connections_.size() >= limits_.connections;
        for (const auto& listener : listeners_)
            watched.push_back({listener->socket.get(), static_cast<short>(full ? 0 : POLLIN), 0});
        for (const auto& [number, connection] : connections_) {
            if (connection.state == State::Answering)
                continue;
            const short events = connection.state == State::Writing ? POLLOUT : POLLIN;
            watched.push_back({connection.socket.get(), events, 0});
            numbers.push_back(number);
        }
        if (::poll(watched.data(), watched.size(), pollTimeout()) < 0) {
            if (errno == EINTR)
                continue;
            healthy = false;
            break;
        }
        const std::size_t firstConnection = 1 + listeners_.size();
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const auto found = connections_.find(numbers[i]);
            if (!serve(numbers[i], found->second, watched[firstConnection + i].revents) || !expire(found->second))
                connections_.erase(found);
        }
        if (watched[0].revents != 0)
            takeAnswers();
        for (std::size_t i = 0; i < listeners_.size(); ++i) {
            if (watched[1 + i].revents != 0)
                accept(*listeners_[i]);
        }
    }

    {
        const std::lock_guard lock(mutex_);
        closing_ = true;
        jobAdded_.notify_all();
    }
    for (std::thread& worker : workers)
        worker.join();
    connections_.clear();
    return healthy;
}

HttpServer::HttpServer() : HttpServer(Limits{}) {}

HttpServer::HttpServer(Limits limits) : loop_(std::make_unique<Loop>(limits)) {}

HttpServer::~HttpServer() = default;

std::variant<std::uint16_t, HttpServer::Refusal> HttpServer::listen(const std::string& address, std::uint16_t port,
                                                                    Handler handler)
{
    return loop_->listen(address, port, std::move(handler));
}

bool HttpServer::run()
{
    return loop_->run();
}

void HttpServer::stop() noexcept
{
    loop_->stop();
}

} // namespace quarrynet::services

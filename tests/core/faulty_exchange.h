#pragma once

#include <array>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "common/FetchSession.h"

/// Simulates a whole search over a socket and a tab whose n-th operation fails.
namespace quarrynet {

inline constexpr std::string_view kWholeResponse =
    "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n<p>one</p>\r\n\r\n<p>two</p>";
inline constexpr std::string_view kWholeBody = kWholeResponse.substr(kWholeResponse.find("<p>one"));
inline constexpr int kLostConnection = 10054;
inline constexpr int kNoMemory = 7;

enum class Fault
{
    None,
    MemoryBefore, ///< The operation throws std::bad_alloc and does nothing.
    MemoryAfter,  ///< The operation takes effect and then throws std::bad_alloc.
    ErrorWithin,  ///< The socket raises its error event during the operation.
    ErrorAfter,   ///< The socket raises its error event as the next event.
};

/// A socket and a tab in one object, with the session between them. The public members hold the results of a search.
class FaultySearch final : public ClientSocket, public FetchTab
{
public:
    FaultySearch() : session_({}, *this, *this, shared_) {}

    /// Makes the `number`-th operation from now on fail (0: none fails).
    void failAt(long number, Fault fault)
    {
        left_ = number;
        fault_ = fault;
        failed = false;
    }

    /// Runs a search as the window does: the start command, then the socket's events. Leaves out events that a closed
    /// socket would not raise. Replaces the event with the index `errorAt` by an error of the server.
    void search(std::size_t errorAt = kEvents)
    {
        messages = 0;
        errors = 0;
        body.reset();
        timer = true;
        button = false;
        event([this] { session_.start({"host", 80}); });
        const std::array<void (FetchSession::*)(), kEvents> events = {
            &FetchSession::tick,         &FetchSession::connected,   &FetchSession::sendProgress,
            &FetchSession::sendComplete, &FetchSession::dataArrived, &FetchSession::tick,
            &FetchSession::dataArrived,  &FetchSession::closed,
        };
        for (std::size_t i = 0; i < kEvents && state_ != SocketState::Closed; ++i) {
            if (i == errorAt || errorIsDue_) {
                errorIsDue_ = false;
                state_ = SocketState::Error;
                event([this] { session_.failed(kLostConnection, "The connection is reset by remote side"); });
                break;
            }
            if (events[i] == &FetchSession::connected)
                state_ = SocketState::Connected;
            if (events[i] == &FetchSession::dataArrived)
                pending_ = arrived_ == 0 ? kWholeResponse.substr(0, kFirstPiece) : kWholeResponse.substr(arrived_);
            event([&] { (session_.*events[i])(); });
        }
        arrived_ = 0;
        pending_ = {};
    }

    bool isIdle() const { return state_ == SocketState::Closed && button && !timer && connection == "Closed"; }

    static constexpr std::size_t kEvents = 8;

    // What the user would see.
    bool button = true;
    bool timer = false;
    std::string connection;
    std::string activity;
    std::optional<std::string> body; ///< the text that was handed over, if any
    int messages = 0;                ///< number of error boxes, including the program's own about memory
    int errors = 0;                  ///< number of error boxes with the socket's error
    bool failed = false;             ///< whether the failing operation was reached

    // ClientSocket
    void Close() override
    {
        operation(false, [this] {
            state_ = SocketState::Closed;
            errorIsDue_ = false;
        });
    }
    void Connect(std::string_view host, int) override
    {
        operation(true, [&] { state_ = host.empty() ? SocketState::Error : SocketState::Connecting; });
    }
    void ConnectTls(std::string_view host, int port) override { Connect(host, port); }
    void SendData(std::string_view bytes) override
    {
        operation(true, [&] { sent_ = bytes; });
    }
    void GetData(std::string& text) override
    {
        operation(true, [&] {
            text += pending_;
            arrived_ += pending_.size();
            pending_ = {};
        });
    }
    SocketState State() const override
    {
        const_cast<FaultySearch*>(this)->operation(true, [] {});
        return state_;
    }

    // FetchTab
    std::optional<std::string> requestText() override
    {
        std::string request;
        operation(false, [&] { request = "GET / HTTP/1.1\r\nHOST: host\r\nConnection: close\r\n\r\n"; });
        return request;
    }
    void showConnection(std::string_view caption) override
    {
        operation(false, [&] { connection = painted(caption); });
    }
    void showActivity(std::string_view text) override
    {
        operation(false, [&] { activity = painted(text); });
    }
    void enableStartButton() override
    {
        operation(false, [&] { button = !painted("on").empty(); });
    }
    void setTimerEnabled(bool enabled) override { timer = enabled; } // needs no memory
    void handOver(const std::string& text) override
    {
        operation(false, [&] { body = text; });
    }
    void reportError(int number, std::string_view description) override
    {
        operation(false, [&] {
            const std::string box = "Error occurred.\r\n" + std::string(description);
            ++messages;
            errors += number == kLostConnection && !box.empty() ? 1 : 0;
        });
    }

private:
    /// Runs an event as the program's event loop does, which shows its own message when memory runs out.
    template <class Event>
    void event(Event run)
    {
        try {
            run();
        } catch (const std::bad_alloc&) {
            ++messages;
        }
    }

    template <class Effect>
    void operation(bool canReport, Effect effect)
    {
        const bool reports = fault_ == Fault::ErrorWithin || fault_ == Fault::ErrorAfter;
        if (fault_ == Fault::None || (reports && !canReport) || --left_ != 0) {
            effect();
            return;
        }
        failed = true;
        if (fault_ == Fault::MemoryBefore)
            throw std::bad_alloc();
        effect();
        if (fault_ == Fault::MemoryAfter)
            throw std::bad_alloc();
        if (fault_ == Fault::ErrorAfter) {
            errorIsDue_ = true;
            return;
        }
        state_ = SocketState::Error;
        session_.failed(kLostConnection, "The connection is reset by remote side");
    }

    /// Returns the text as a control stores it: even the shortest text needs an allocation.
    static std::string painted(std::string_view text)
    {
        constexpr std::size_t kMoreThanFitsInside = 64;
        std::string copy;
        copy.reserve(kMoreThanFitsInside);
        copy += text;
        return copy;
    }

    static constexpr std::size_t kFirstPiece = 44; // ends within the empty line after the header

    ReceiveState shared_;
    SocketState state_ = SocketState::Closed;
    std::string_view pending_;
    std::string sent_;
    std::size_t arrived_ = 0;
    bool errorIsDue_ = false;
    long left_ = 0;
    Fault fault_ = Fault::None;
    FetchSession session_;
};

} // namespace quarrynet

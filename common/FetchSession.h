#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/memory.h"

/// The cycle that every search follows: one HTTP/1.1 exchange, written and read by hand. Knows no toolkit and no
/// network: a socket and a tab are handed in, so every event order, split and overlap can be tried without a window.
namespace quarrynet {

/// A socket's states, with the numbers that the state timer shows a caption for.
enum class SocketState : std::uint8_t
{
    Closed = 0,
    Open = 1,
    Listening = 2,
    ConnectionPending = 3,
    ResolvingHost = 4,
    HostResolved = 5,
    Connecting = 6,
    Connected = 7,
    Closing = 8,
    Error = 9,
};

/// The caption of a state ("Connection pending"); empty for a number outside 0 to 9.
std::string_view socketStateName(SocketState state);

/// A TCP client socket, as the cycle uses it. Nothing blocks; what happens is reported through the session's event
/// functions (`Connect` by FetchSession::connected and so on).
class ClientSocket
{
public:
    virtual ~ClientSocket() = default;

    /// Ends any connection, drops what was not yet received and goes to Closed. Allowed in every state.
    virtual void Close() = 0;

    /// Starts connecting. `host` is a host name or address as bytes; `port` is taken as it is, so a port outside
    /// 1 to 65535 ends in the error event.
    virtual void Connect(std::string_view host, int port) = 0;

    virtual void SendData(std::string_view bytes) = 0;

    /// Takes what has arrived since the last call and appends it to `text`.
    virtual void GetData(std::string& text) = 0;

    virtual SocketState State() const = 0;
};

/// Where an exchange connects to.
struct Endpoint
{
    std::string host;
    int port = 0;
};

/// What the sockets of the whole window share. Two overlapping exchanges mix their data here: the design gathers one
/// response at a time.
struct ReceiveState
{
    std::string ReceiveBuffer;
    bool HeaderStripped = false;

    /// The longest response in bytes, header included. One that is longer is given up with an error: only the server's
    /// close ends a response, and it need never come.
    std::size_t longest = responseAllowance();

    /// What every start command and slider does before it connects.
    void restart();
};

/// Cuts the response header off: `response` afterwards begins behind the first empty line (CR LF CR LF, RFC 9112
/// section 2.1). Without one, the first three bytes go and the rest stays, header lines included. In place, no copy.
void stripHeader(std::string& response);

/// The tab as the cycle sees it.
class FetchTab
{
public:
    virtual ~FetchTab() = default;

    /// The request as bytes; asked for at the moment of connecting, so it follows what the controls hold then. Nothing
    /// when it cannot be built; the tab has said why, and nothing is sent.
    virtual std::optional<std::string> requestText() = 0;

    virtual void showConnection(std::string_view caption) = 0;
    virtual void showActivity(std::string_view text) = 0;
    virtual void enableStartButton() = 0;
    virtual void setTimerEnabled(bool enabled) = 0;

    /// Takes the response's body, which stays in the shared buffer: the tab's parser runs in here.
    virtual void handOver(const std::string& body) = 0;

    /// Shows the error box and returns when it has been answered. `description` is UTF-8.
    virtual void reportError(int number, std::string_view description) = 0;

    /// The socket has been closed after a response; nothing of the cycle follows.
    virtual void exchangeEnded() {}
};

/// What distinguishes the sockets' cycles. What a socket has no control for, its tab leaves out.
struct FetchSettings
{
    /// The activity panel says "Connected" on connecting; the page check's leaves it alone.
    bool saysConnected = true;
    /// The connection panel shows the state on connecting, before the next tick; the download search's does.
    bool showsStateOnConnect = false;
    /// The end of a response sets HeaderStripped; the link resolution's leaves it alone.
    bool marksHeader = true;
};

/// One socket's cycle. The socket's events call the functions named after them; everything runs on one thread.
///
/// An exchange that runs out of memory at any step ends like one that the network ended: with an error box, the socket
/// closed and the tab at rest. Only when memory does not even suffice for the box do the functions throw
/// std::bad_alloc, with the socket closed and the tab at rest all the same.
class FetchSession
{
public:
    FetchSession(FetchSettings settings, ClientSocket& socket, FetchTab& tab, ReceiveState& shared);

    /// Empties the shared buffer, closes the socket and connects it to `target`. The socket is closed on return when
    /// memory did not suffice.
    void start(const Endpoint& target);

    void connected();
    void sendProgress();
    void sendComplete();
    void dataArrived();

    /// The server closed the connection: the only sign of a response's end.
    void closed();

    void failed(int number, std::string_view description);

    /// The state timer's tick.
    void tick();

private:
    /// Runs a step of the cycle, and ends the exchange when memory does not suffice for it.
    template <class Step>
    void attempt(Step step);
    void giveUp(int number, std::string_view description);
    /// Closes the socket and brings the tab to rest.
    void rest();

    FetchSettings settings_;
    ClientSocket& socket_;
    FetchTab& tab_;
    ReceiveState& shared_;
};

} // namespace quarrynet

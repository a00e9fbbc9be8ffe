#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/memory.h"

/// The cycle that every search follows: one HTTP/1.1 exchange, written and read by hand. It depends on neither toolkit
/// nor network, but on a socket and a tab that are passed in, so tests can try every event order, split and overlap
/// without a window.
namespace quarrynet {

/// A socket's states. The state timer shows a caption for each number.
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

/// Returns the caption of a state ("Connection pending"), or an empty text for a number outside 0 to 9.
std::string_view socketStateName(SocketState state);

/// A TCP client socket, as the cycle uses it. No call blocks; events are reported through the session's functions (such
/// as FetchSession::connected after `Connect`).
class ClientSocket
{
public:
    virtual ~ClientSocket() = default;

    /// Ends any connection, discards data not yet received, and enters the state Closed. Allowed in every state.
    virtual void Close() = 0;

    /// Starts connecting. `host` is a host name or address as bytes; `port` may be any number; one outside 1 to 65535
    /// causes the error event.
    virtual void Connect(std::string_view host, int port) = 0;

    /// Connects like `Connect`, and over TLS. The connect event comes after the handshake, so nothing is sent before.
    virtual void ConnectTls(std::string_view host, int port) = 0;

    /// Sends all of `bytes`, in the order of the calls. A failure causes the error event.
    virtual void SendData(std::string_view bytes) = 0;

    /// Appends the data received since the last call to `text`.
    virtual void GetData(std::string& text) = 0;

    virtual SocketState State() const = 0;
};

/// The host and port that an exchange connects to.
struct Endpoint
{
    std::string host;
    int port = 0;
    bool tls = false;
};

/// The state that all sockets of the window share. It is designed for one response at a time; overlapping exchanges mix
/// their data here.
struct ReceiveState
{
    std::string ReceiveBuffer;
    bool HeaderStripped = false;

    /// Maximum length of a response in bytes, including the header. A longer one fails with an error, because only the
    /// server's close ends a response, and it may never come.
    std::size_t longest = responseAllowance();

    /// Empties the buffer and resets the flag. Every start command and slider calls it before connecting.
    void restart();
};

/// Removes the response header, up to and including the first empty line (CR LF CR LF, RFC 9112 section 2.1). Without
/// one, removes the first three bytes and keeps the rest, including header lines. Works in place.
void stripHeader(std::string& response);

/// The cycle's interface to its tab.
class FetchTab
{
public:
    virtual ~FetchTab() = default;

    /// Returns the request as bytes. The cycle calls it on connecting, so it reads the controls at that time. Returns
    /// nothing when the request cannot be built and the tab has reported why; then nothing is sent.
    virtual std::optional<std::string> requestText() = 0;

    virtual void showConnection(std::string_view caption) = 0;
    virtual void showActivity(std::string_view text) = 0;
    virtual void enableStartButton() = 0;
    virtual void setTimerEnabled(bool enabled) = 0;

    /// Parses the response's body, which stays in the shared buffer.
    virtual void handOver(const std::string& body) = 0;

    /// Shows the error box and returns when it is closed. `description` is UTF-8.
    virtual void reportError(int number, std::string_view description) = 0;

    /// Runs last in the cycle, after the socket was closed at the end of a response.
    virtual void exchangeEnded() {}
};

/// The differences between the sockets' cycles. A tab ignores calls for controls that it does not have.
struct FetchSettings
{
    /// Whether connecting shows "Connected" in the activity panel; not for the page check.
    bool saysConnected = true;
    /// Whether connecting shows the state in the connection panel, before the next tick; only for the download search.
    bool showsStateOnConnect = false;
    /// Whether the end of a response sets HeaderStripped; not for the link resolution.
    bool marksHeader = true;
};

/// One socket's cycle. The socket's events call the functions of the same names; everything runs on one thread.
///
/// An exchange that runs out of memory at any step ends like one that failed on the network: with an error box, the
/// socket closed and the tab reset. If there is not even enough memory for the box, the functions throw std::bad_alloc,
/// also with the socket closed and the tab reset.
class FetchSession
{
public:
    FetchSession(FetchSettings settings, ClientSocket& socket, FetchTab& tab, ReceiveState& shared);

    /// Empties the shared buffer, closes the socket and connects it to `target`. If memory runs out, the socket is
    /// closed on return.
    void start(const Endpoint& target);

    void connected();
    void sendProgress();
    void sendComplete();
    void dataArrived();

    /// Ends the response. Only the server's close of the connection shows where it ends.
    void closed();

    /// Handles a connection over TLS that ended without the TLS close (close_notify, RFC 8446 section 6.1), so that
    /// anyone on the path may have cut it. Ends the response if its own header shows that it is complete (RFC 9112
    /// section 9.8), and otherwise fails.
    void cutOff();

    void failed(int number, std::string_view description);

    /// Shows the socket's state, on each tick of the state timer.
    void tick();

private:
    /// Runs a step of the cycle. Ends the exchange if memory runs out.
    template <class Step>
    void attempt(Step step);
    void giveUp(int number, std::string_view description);
    /// Closes the socket and resets the tab.
    void rest();

    FetchSettings settings_;
    ClientSocket& socket_;
    FetchTab& tab_;
    ReceiveState& shared_;
};

} // namespace quarrynet

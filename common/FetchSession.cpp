#include "common/FetchSession.h"

#include <array>
#include <new>
#include <string>

#include "common/runtime_error.h"

namespace quarrynet {

namespace {

constexpr int kNoBufferSpace = 10055; // WinSock's number

} // namespace

std::string_view socketStateName(SocketState state)
{
    static constexpr std::array<std::string_view, 10> SocketStateNames = {
        "Closed",    "Open",    "Listening", "Connection pending", "Resolving host", "Host resolved", "Connecting",
        "Connected", "Closing", "Error",
    };
    const auto number = static_cast<std::size_t>(state);
    return number < SocketStateNames.size() ? SocketStateNames[number] : std::string_view();
}

void ReceiveState::restart()
{
    std::string().swap(ReceiveBuffer); // clear() would keep the memory of the largest page ever fetched
    HeaderStripped = false;
}

void stripHeader(std::string& response)
{
    static constexpr std::string_view kEmptyLine = "\r\n\r\n";
    const std::size_t at = response.find(kEmptyLine);
    // A response without an empty line loses its first three bytes, not the four of the line it does not have.
    response.erase(0, at == std::string::npos ? kEmptyLine.size() - 1 : at + kEmptyLine.size());
}

FetchSession::FetchSession(FetchSettings settings, ClientSocket& socket, FetchTab& tab, ReceiveState& shared)
    : settings_(settings), socket_(socket), tab_(tab), shared_(shared)
{}

void FetchSession::start(const Endpoint& target)
{
    shared_.restart();
    socket_.Close();
    socket_.Connect(target.host, target.port);
}

void FetchSession::connected()
{
    if (settings_.showsStateOnConnect)
        tab_.showConnection(socketStateName(SocketState::Connected));
    if (settings_.saysConnected)
        tab_.showActivity("Connected");
    if (const std::optional<std::string> request = tab_.requestText())
        socket_.SendData(*request);
}

void FetchSession::sendProgress()
{
    tab_.showActivity("Requesting Data");
}

void FetchSession::sendComplete()
{
    tab_.showActivity("Request Completed");
}

void FetchSession::dataArrived()
{
    tab_.showActivity("Downloading Data");
    try {
        socket_.GetData(shared_.ReceiveBuffer);
    } catch (const std::bad_alloc&) {
        giveUp(static_cast<int>(RuntimeError::OutOfMemory), describe(RuntimeError::OutOfMemory));
        return;
    }
    if (shared_.ReceiveBuffer.size() > shared_.longest) {
        giveUp(kNoBufferSpace, "No buffer space is available: the response is longer than " +
                                   std::to_string(shared_.longest >> 20) + " MB");
    }
}

void FetchSession::giveUp(int number, std::string_view description)
{
    socket_.Close(); // or the data that arrives while the box stands there would fail again, box upon box
    shared_.restart();
    releaseFreedMemory();
    failed(number, description);
}

void FetchSession::closed()
{
    try {
        if (!shared_.HeaderStripped)
            stripHeader(shared_.ReceiveBuffer);
        tab_.handOver(shared_.ReceiveBuffer);
    } catch (const std::bad_alloc&) {
        shared_.restart();
        failed(static_cast<int>(RuntimeError::OutOfMemory), describe(RuntimeError::OutOfMemory));
        return;
    }
    if (settings_.marksHeader)
        shared_.HeaderStripped = true;
    tab_.showActivity("");
    tab_.showConnection(socketStateName(SocketState::Closed));
    tab_.enableStartButton();
    tab_.setTimerEnabled(false);
    socket_.Close();
    tab_.exchangeEnded();
}

void FetchSession::failed(int number, std::string_view description)
{
    tab_.reportError(number, description);
    socket_.Close();
    tab_.showConnection(socketStateName(SocketState::Closed));
    tab_.enableStartButton();
    tab_.setTimerEnabled(false);
}

void FetchSession::tick()
{
    tab_.showConnection(socketStateName(socket_.State()));
}

} // namespace quarrynet

#include "common/FetchSession.h"

#include <array>
#include <new>
#include <string>

#include "common/response_end.h"
#include "common/runtime_error.h"

namespace quarrynet {

namespace {

// WinSock's numbers
constexpr int kConnectionAborted = 10053;
constexpr int kNoBufferSpace = 10055;

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
    // Deliberate: a response without an empty line loses its first three bytes, not four.
    response.erase(0, at == std::string::npos ? kEmptyLine.size() - 1 : at + kEmptyLine.size());
}

FetchSession::FetchSession(FetchSettings settings, ClientSocket& socket, FetchTab& tab, ReceiveState& shared)
    : settings_(settings), socket_(socket), tab_(tab), shared_(shared)
{}

void FetchSession::start(const Endpoint& target)
{
    attempt([&] {
        shared_.restart();
        socket_.Close();
        if (target.tls)
            socket_.ConnectTls(target.host, target.port);
        else
            socket_.Connect(target.host, target.port);
    });
}

void FetchSession::connected()
{
    attempt([this] {
        if (settings_.showsStateOnConnect)
            tab_.showConnection(socketStateName(SocketState::Connected));
        if (settings_.saysConnected)
            tab_.showActivity("Connected");
        if (const std::optional<std::string> request = tab_.requestText())
            socket_.SendData(*request);
    });
}

void FetchSession::sendProgress()
{
    attempt([this] { tab_.showActivity("Requesting Data"); });
}

void FetchSession::sendComplete()
{
    attempt([this] { tab_.showActivity("Request Completed"); });
}

void FetchSession::dataArrived()
{
    std::string tooLong;
    attempt([&] {
        tab_.showActivity("Downloading Data");
        socket_.GetData(shared_.ReceiveBuffer);
        if (shared_.ReceiveBuffer.size() > shared_.longest) {
            tooLong = "No buffer space is available: the response is longer than " +
                      std::to_string(shared_.longest >> 20) + " MB";
        }
    });
    if (!tooLong.empty())
        giveUp(kNoBufferSpace, tooLong);
}

void FetchSession::closed()
{
    attempt([this] {
        if (!shared_.HeaderStripped)
            stripHeader(shared_.ReceiveBuffer);
        tab_.handOver(shared_.ReceiveBuffer);
        if (settings_.marksHeader)
            shared_.HeaderStripped = true;
        tab_.showActivity("");
        tab_.showConnection(socketStateName(SocketState::Closed));
        tab_.enableStartButton();
        tab_.setTimerEnabled(false);
        socket_.Close();
        tab_.exchangeEnded();
    });
}

void FetchSession::cutOff()
{
    if (isCompleteResponse(shared_.ReceiveBuffer))
        closed();
    else
        failed(kConnectionAborted, "The secure connection was cut before the end of the response");
}

void FetchSession::failed(int number, std::string_view description)
{
    try {
        tab_.reportError(number, description);
    } catch (const std::bad_alloc&) {
        rest();
        throw;
    }
    rest();
}

void FetchSession::tick()
{
    attempt([this] { tab_.showConnection(socketStateName(socket_.State())); });
}

template <class Step>
void FetchSession::attempt(Step step)
{
    try {
        step();
        return;
    } catch (const std::bad_alloc&) {
        // Reported below, where the step's memory is free again.
    }
    giveUp(static_cast<int>(RuntimeError::OutOfMemory), describe(RuntimeError::OutOfMemory));
}

void FetchSession::giveUp(int number, std::string_view description)
{
    try {
        socket_.Close(); // otherwise data that arrives while the box is open would fail again and show more boxes
    } catch (const std::bad_alloc&) {
        // It is closed again after the box.
    }
    shared_.restart();
    releaseFreedMemory();
    failed(number, description);
}

void FetchSession::rest()
{
    const auto steps = [this] {
        socket_.Close();
        tab_.showConnection(socketStateName(SocketState::Closed));
        tab_.enableStartButton();
        tab_.setTimerEnabled(false);
    };
    try {
        steps();
    } catch (const std::bad_alloc&) {
        releaseFreedMemory();
        steps(); // the message's memory is free again
    }
}

} // namespace quarrynet

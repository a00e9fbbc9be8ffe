#include <algorithm>
#include <cerrno>
#include <new>
#include <sys/socket.h>
#include <thread>
#include <utility>

#include <boost/asio/post.hpp>

#include "ground/CurrentTask.h"
#include "http/HttpLoop.h"

namespace quarrynet::services {

namespace {

using Clock = std::chrono::steady_clock;

// The client may still be sending after the response. Closing the connection then would reset it and lose the response,
// so input is read and discarded up to these limits.
constexpr auto kDrainTime = std::chrono::seconds(2);
constexpr std::size_t kDrainBytes = 1024 * 1024;

/// Files are sent in pieces of this size.
constexpr std::size_t kFilePiece = 64 * 1024;

/// Does not wait, and removes nothing from the input.
Client stateOf(tcp::socket& socket)
{
    char byte = 0;
    const ssize_t count = ::recv(socket.native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    if (count > 0 || (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)))
        return Client::Waits;
    return count == 0 ? Client::Ended : Client::Gone;
}

/// Pause before a retry when memory has run out.
constexpr auto kMemoryPause = std::chrono::milliseconds(10);

Answer makeAnswer(const HttpServer::Handler& handler, const HttpRequest& request)
{
    const bool headOnly = request.method == "HEAD";
    try {
        if (request.method != "GET" && !headOnly)
            return {
                responseBytes(errorResponse(405, "This server answers only GET and HEAD.", request.language), false)};
        const HttpResponse response = handler(request);
        return {responseBytes(response, headOnly), headOnly ? nullptr : response.file};
    } catch (const std::exception&) {
        return {responseBytes(errorResponse(500, "The response could not be made.", request.language), headOnly)};
    }
}

/// Returns an answer without bytes when there is no memory even for an error page.
Answer answerTo(const HttpServer::Handler& handler, const HttpRequest& request)
{
    try {
        return makeAnswer(handler, request);
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

Client HttpServer::Loop::Session::client()
{
    if (client_ == Client::Waits)
        client_ = stateOf(socket_);
    return client_;
}

void HttpServer::Loop::Session::expireAfter(Clock::duration time)
{
    timer_.expires_after(time);
    timer_.async_wait([weak = weak_from_this()](error_code error) {
        // The timer may have been restarted after this call was queued.
        if (const auto self = weak.lock(); self && !error && self->timer_.expiry() <= Clock::now())
            self->orClose([&self] { self->expire(); });
    });
}

void HttpServer::Loop::Session::expire()
{
    if (phase_ != Phase::Reading) {
        close();
        return;
    }
    // A client that has sent part of a request gets an error response.
    late_ = true;
    error_code ignored;
    socket_.cancel(ignored);
}

void HttpServer::Loop::Session::receive()
{
    receiving_ = true;
    socket_.async_read_some(asio::buffer(piece_), [self = shared_from_this()](error_code error, std::size_t count) {
        self->receiving_ = false;
        self->orClose([&] {
            if (self->phase_ == Phase::Reading)
                self->received(error, count);
            else
                self->overheard(error, count);
        });
    });
}

void HttpServer::Loop::Session::received(error_code error, std::size_t count)
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
    timer_.cancel();
    if (auto* request = std::get_if<HttpRequest>(&head)) {
        request_ = std::move(*request);
        phase_ = Phase::Waiting;
        listener_.waiting.push_back(shared_from_this());
        receive();
        loop_.dispatch(listener_);
    } else {
        send({responseBytes(std::get<HttpResponse>(head), false)});
    }
}

/// Discards input after the request; only its end matters.
void HttpServer::Loop::Session::overheard(error_code error, std::size_t count)
{
    overheard_ += count;
    if (!error && overheard_ < kDrainBytes) {
        receive();
        return;
    }
    if (phase_ == Phase::Draining) {
        close();
        return;
    }
    if (!error)
        return;
    client_ = error == asio::error::eof ? Client::Ended : Client::Gone;
    if (client_ == Client::Gone) {
        abandon();
        close();
    }
    if (phase_ == Phase::Waiting)
        setAside(listener_, shared_from_this());
    loop_.dispatch(listener_);
}

void HttpServer::Loop::Session::make()
{
    phase_ = Phase::Making;
    orClose([this] {
        const auto place = listener_.making.insert(shared_from_this()).first;
        try {
            // The set holds the session, so that it is destroyed on the loop's thread only.
            asio::post(*loop_.workers_, [this] {
                const CurrentTask task(abandoned_);
                answer_ = answerTo(listener_.handler, request_);
                bringBack();
            });
        } catch (...) {
            listener_.making.erase(place);
            throw;
        }
    });
}

/// Runs on the worker's thread. Posting needs memory too; while there is none, drops the answer to free some.
void HttpServer::Loop::Session::bringBack()
{
    while (!loop_.io_.stopped()) {
        try {
            asio::post(loop_.io_, [this] { made(); });
            return;
        } catch (const std::bad_alloc&) {
            answer_ = Answer();
            std::this_thread::sleep_for(kMemoryPause);
        }
    }
}

void HttpServer::Loop::Session::made()
{
    const auto self = shared_from_this();
    listener_.making.erase(self);
    if (client_ == Client::Gone || answer_.bytes.empty())
        close();
    else
        orClose([this] { send(std::move(answer_)); });
    loop_.dispatch(listener_);
}

void HttpServer::Loop::Session::send(Answer answer)
{
    phase_ = Phase::Sending;
    answer_ = std::move(answer);
    held_ = answer_.bytes.size() + (answer_.file == nullptr ? 0 : kFilePiece);
    loop_.hold(listener_, held_);
    answerEnd_ = Clock::now() + loop_.limits_.answerTime;
    sendRest();
}

void HttpServer::Loop::Session::sendRest()
{
    if (sent_ == answer_.bytes.size())
        takeFilePiece();
    if (sent_ == answer_.bytes.size()) {
        finish();
        return;
    }
    expireAfter(std::min<Clock::duration>(loop_.limits_.writeTime, answerEnd_ - Clock::now()));
    socket_.async_write_some(asio::buffer(answer_.bytes) + sent_,
                             [self = shared_from_this()](error_code error, std::size_t count) {
                                 self->orClose([&] { self->sent(error, count); });
                             });
}

void HttpServer::Loop::Session::sent(error_code error, std::size_t count)
{
    if (error) {
        close();
        return;
    }
    sent_ += count;
    sendRest();
}

/// If the file has become shorter, the response ends early, which the client sees by the Content-Length.
void HttpServer::Loop::Session::takeFilePiece()
{
    if (answer_.file == nullptr || fileSent_ >= answer_.file->size())
        return;
    answer_.bytes.resize(
        static_cast<std::size_t>(std::min<std::uint64_t>(kFilePiece, answer_.file->size() - fileSent_)));
    answer_.bytes.resize(answer_.file->read(fileSent_, answer_.bytes.data(), answer_.bytes.size()));
    fileSent_ += answer_.bytes.size();
    sent_ = 0;
}

void HttpServer::Loop::Session::finish()
{
    answer_ = Answer();
    loop_.release(listener_, std::exchange(held_, 0));
    phase_ = Phase::Draining;
    error_code ignored;
    socket_.shutdown(tcp::socket::shutdown_send, ignored);
    if (client_ != Client::Waits || overheard_ >= kDrainBytes) {
        close();
        return;
    }
    expireAfter(kDrainTime);
    if (!receiving_)
        receive();
}

void HttpServer::Loop::Session::close()
{
    error_code ignored;
    socket_.close(ignored);
    timer_.cancel();
}

} // namespace quarrynet::services

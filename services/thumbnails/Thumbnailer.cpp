#include "thumbnails/Thumbnailer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "ground/ChildProcess.h"
#include "ground/CurrentTask.h"
#include "ground/Descriptor.h"

namespace quarrynet::services {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMaxPicture = 64 * 1024 * 1024;
constexpr std::size_t kMaxThumbnail = 1024 * 1024;
constexpr std::size_t kPiece = 64 * 1024;

/// Interval at which a waiting thread checks whether its task is abandoned.
constexpr std::chrono::milliseconds kAskInterval(50);

/// Returns nothing for an empty thumbnail.
std::optional<std::string> shown(std::optional<std::string> thumbnail)
{
    return thumbnail && thumbnail->empty() ? std::nullopt : std::move(thumbnail);
}

} // namespace

/// One process, and the socket for its input and output. A request is the format (1 byte), the length (4 bytes, big
/// endian) and the picture. A response is the length (likewise) and the thumbnail; length 0 means that there is none.
class Thumbnailer::Process
{
public:
    explicit Process(const std::string& program)
    {
        std::optional<std::array<Descriptor, 2>> ends = makeSocketPair();
        if (!ends)
            return;
        auto& [own, others] = *ends;
        ::fcntl(own.number(), F_SETFL, O_NONBLOCK);
        Outcome<ChildProcess> process =
            ChildProcess::start({program}, {.input = others.number(), .output = others.number()});
        if (!process)
            return;
        process_.emplace(std::move(*process));
        socket_ = std::move(own);
    }

    /// Returns false when the process cannot be used any more. An empty thumbnail is a valid response.
    bool ask(PictureFormat format, std::size_t pictureSize, const Source& source, Clock::time_point deadline,
             std::string& thumbnail)
    {
        std::string head(1, static_cast<char>(format));
        for (const unsigned shift : {24U, 16U, 8U, 0U})
            head.push_back(static_cast<char>(static_cast<unsigned char>(pictureSize >> shift)));
        if (!process_ || !send(head, deadline))
            return false;
        for (std::size_t sent = 0; sent < pictureSize;) {
            const std::string_view piece = source(sent);
            if (piece.empty() || !send(piece, deadline))
                return false;
            sent += piece.size();
        }
        std::string length(4, '\0');
        if (!receive(length, deadline))
            return false;
        std::size_t size = 0;
        for (const char c : length)
            size = size << 8U | static_cast<unsigned char>(c);
        if (size > kMaxThumbnail)
            return false;
        thumbnail.resize(size);
        return receive(thumbnail, deadline);
    }

private:
    bool wait(short events, Clock::time_point deadline) const
    {
        while (!CurrentTask::abandoned()) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            if (left.count() <= 0)
                return false;
            pollfd watched{socket_.number(), events, 0};
            const int count = ::poll(&watched, 1, static_cast<int>(std::min(left, kAskInterval).count()));
            if (count != 0)
                return count > 0 || errno == EINTR;
        }
        return false;
    }

    bool send(std::string_view bytes, Clock::time_point deadline) const
    {
        while (!bytes.empty()) {
            const ssize_t count = ::send(socket_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count > 0)
                bytes.remove_prefix(static_cast<std::size_t>(count));
            else if ((errno != EAGAIN && errno != EINTR) || !wait(POLLOUT, deadline))
                return false;
        }
        return true;
    }

    /// Fills `bytes`, or returns false.
    bool receive(std::string& bytes, Clock::time_point deadline) const
    {
        std::size_t filled = 0;
        while (filled < bytes.size()) {
            const ssize_t count = ::recv(socket_.number(), bytes.data() + filled, bytes.size() - filled, 0);
            if (count > 0)
                filled += static_cast<std::size_t>(count);
            else if (count == 0 || (errno != EAGAIN && errno != EINTR) || !wait(POLLIN, deadline))
                return false;
        }
        return true;
    }

    std::optional<ChildProcess> process_;
    Descriptor socket_;
};

Thumbnailer::Thumbnailer(std::string program, Limits limits) : program_(std::move(program)), limits_(limits) {}

Thumbnailer::~Thumbnailer() = default;

std::unique_ptr<Thumbnailer::Process> Thumbnailer::borrow()
{
    const Clock::time_point end = Clock::now() + limits_.wait;
    {
        std::unique_lock lock(mutex_);
        while (!returned_.wait_for(lock, kAskInterval, [this] { return lent_ < limits_.processes; })) {
            if (CurrentTask::abandoned() || Clock::now() >= end)
                return nullptr;
        }
        ++lent_;
        if (!idle_.empty()) {
            std::unique_ptr<Process> process = std::move(idle_.back());
            idle_.pop_back();
            return process;
        }
    }
    return std::make_unique<Process>(program_);
}

std::optional<std::string> Thumbnailer::ask(PictureFormat format, std::string_view content)
{
    return ask(format, content.size(), [content](std::size_t offset) { return content.substr(offset); });
}

std::optional<std::string> Thumbnailer::make(PictureFormat format, std::string_view content)
{
    return shown(ask(format, content));
}

std::optional<std::string> Thumbnailer::make(PictureFormat format, const OpenFile& file)
{
    const auto size = static_cast<std::size_t>(file.size());
    std::string piece;
    return shown(ask(format, size, [&](std::size_t offset) {
        piece.resize(std::min(kPiece, size - offset));
        piece.resize(file.read(offset, piece.data(), piece.size()));
        return std::string_view(piece);
    }));
}

std::optional<std::string> Thumbnailer::ask(PictureFormat format, std::size_t size, const Source& source)
{
    if (size > kMaxPicture)
        return std::string();
    std::unique_ptr<Process> process = borrow();
    if (process == nullptr)
        return std::nullopt;
    std::string thumbnail;
    const bool answered = process->ask(format, size, source, Clock::now() + limits_.time, thumbnail);
    if (!answered)
        process.reset();
    {
        const std::lock_guard lock(mutex_);
        --lent_;
        if (process != nullptr)
            idle_.push_back(std::move(process));
    }
    returned_.notify_one();
    if (!answered)
        return std::nullopt;
    return thumbnail;
}

} // namespace quarrynet::services

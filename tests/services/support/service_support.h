#pragma once

#include <arpa/inet.h>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>
#include <utility>
#include <vector>

/// Shared by the tests of the services.
namespace quarrynet::services {

/// A temporary folder, removed with its content at the end.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "quarrynet-test-").string() + std::string(6, 'X');
        const char* made = ::mkdtemp(pattern.data());
        path_ = made == nullptr ? std::string() : std::string(made);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return path_; }

    /// Creates a file, and its folders, with this content. Returns its path.
    std::string write(const std::string& name, std::string_view content) const
    {
        const std::filesystem::path file = std::filesystem::path(path_) / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
        return file.string();
    }

private:
    std::string path_;
};

/// A copy with no spare bytes after it, so that the sanitizer detects reads beyond its end.
class ExactCopy
{
public:
    explicit ExactCopy(std::string_view text) : bytes_(text.begin(), text.end()) { bytes_.shrink_to_fit(); }
    std::string_view view() const { return {bytes_.data(), bytes_.size()}; }

private:
    std::vector<char> bytes_;
};

/// A raw connection to a server on this machine.
class RawClient
{
public:
    RawClient(const std::string& address, std::uint16_t port)
        : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_port = htons(port);
        ::inet_pton(AF_INET, address.c_str(), &name.sin_addr);
        connected_ = ::connect(socket_, reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0;
    }
    ~RawClient() { ::close(socket_); }
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    bool connected() const { return connected_; }

    /// Returns false when the server has closed the connection.
    bool send(std::string_view bytes) const
    {
        while (!bytes.empty()) {
            const ssize_t count = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count <= 0)
                return false;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return true;
    }

    void endSending() const { ::shutdown(socket_, SHUT_WR); }

    /// Makes the destructor reset the connection instead of closing it.
    void resetAtEnd() const
    {
        const linger none{1, 0};
        ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &none, sizeof none);
    }

    /// Does the same as receiveAll(). Returns nothing when the server is silent for `seconds` seconds.
    std::optional<std::string> receiveAllWithin(int seconds) const
    {
        const timeval time{seconds, 0};
        ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
        std::string all = receiveAll();
        const bool timeIsUp = errno == EAGAIN || errno == EWOULDBLOCK;
        return timeIsUp ? std::nullopt : std::optional(std::move(all));
    }

    /// Returns everything until the server closes the connection.
    std::string receiveAll() const
    {
        std::string all;
        char bytes[4096];
        for (;;) {
            errno = 0;
            const ssize_t count = ::recv(socket_, bytes, sizeof bytes, 0);
            if (count <= 0)
                return all;
            all.append(bytes, static_cast<std::size_t>(count));
        }
    }

private:
    int socket_;
    bool connected_ = false;
};

} // namespace quarrynet::services

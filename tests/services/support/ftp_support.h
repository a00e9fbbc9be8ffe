#pragma once

#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <cstdint>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "ground/ChildProcess.h"

/// FTP servers for the tests of the crawl, each on a free loopback port.
namespace quarrynet::services {

/// A listening loopback socket on a free port.
class Listener
{
public:
    Listener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof name;
        if (::bind(socket_, reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0 && ::listen(socket_, 8) == 0 &&
            ::getsockname(socket_, reinterpret_cast<sockaddr*>(&name), &length) == 0)
            port_ = ntohs(name.sin_port);
    }
    ~Listener() { ::close(socket_); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    std::uint16_t port() const { return port_; }
    /// Accepts a connection that sends short replies at once. Otherwise each would wait until the client acknowledged
    /// the previous one, which the client delays.
    int accept() const
    {
        const int connection = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
        const int on = 1;
        if (connection >= 0)
            ::setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        return connection;
    }
    /// Makes accept() fail from now on.
    void end() const { ::shutdown(socket_, SHUT_RDWR); }

private:
    int socket_;
    std::uint16_t port_ = 0;
};

/// Passes each connection in turn to `serve`, which need not close the socket.
class TestServer
{
public:
    explicit TestServer(std::function<void(int)> serve)
        : serve_(std::move(serve)), thread_([this] {
            for (int socket = listener_.accept(); socket >= 0; socket = listener_.accept()) {
                serve_(socket);
                ::close(socket);
            }
        })
    {}
    ~TestServer()
    {
        listener_.end();
        thread_.join();
    }
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    std::string site() const { return "ftp://127.0.0.1:" + std::to_string(listener_.port()); }

private:
    std::function<void(int)> serve_;
    Listener listener_;
    std::thread thread_;
};

/// Runs a program, as inetd does, with the socket as its input and output, and waits until it ends.
inline void serveByProgram(int socket, std::vector<std::string> arguments)
{
    Outcome<ChildProcess> program = ChildProcess::start(std::move(arguments), {.input = socket, .output = socket});
    if (program)
        program->wait();
}

/// The server side of a control connection, with listings supplied by the test.
class MadeUpFtp
{
public:
    /// The response for a directory (relative to the root, "" or "a/b"): the code, and the listing if that is 226.
    struct Reply
    {
        int code = 226;
        std::string listing = {};
    };
    using Lister = std::function<Reply(const std::string& command, const std::string& path)>;

    static void serve(int control, const Lister& lister)
    {
        const auto say = [control](const std::string& line) {
            const std::string bytes = line + "\r\n";
            return ::send(control, bytes.data(), bytes.size(), MSG_NOSIGNAL) > 0;
        };
        std::string path;
        std::unique_ptr<Listener> data;
        say("220 ready");
        for (std::string line = readLine(control); !line.empty(); line = readLine(control)) {
            const std::string command = line.substr(0, line.find(' '));
            const std::string value = line.substr(std::min(command.size() + 1, line.size()));
            if (command == "USER") {
                say("230 in");
            } else if (command == "PWD") {
                say("257 \"/\"");
            } else if (command == "CWD") {
                path = value == "/" ? "" : value;
                say("250 there");
            } else if (command == "EPSV") {
                data = std::make_unique<Listener>();
                say("229 (|||" + std::to_string(data->port()) + "|)");
            } else if (command == "MLSD" || command == "LIST") {
                sendListing(lister(command, path), *data, say);
            } else if (command == "QUIT") {
                say("221 bye");
                return;
            } else {
                say(command == "TYPE" ? "200 so" : "502 unknown");
            }
        }
    }

private:
    static std::string readLine(int socket)
    {
        std::string line;
        char c = 0;
        while (::recv(socket, &c, 1, 0) == 1 && c != '\n') {
            if (c != '\r')
                line.push_back(c);
        }
        return line;
    }

    static void sendListing(const Reply& reply, const Listener& data,
                            const std::function<bool(const std::string&)>& say)
    {
        if (reply.code != 226) {
            say(std::to_string(reply.code) + " no");
            return;
        }
        say("150 here");
        const int socket = data.accept();
        std::string_view rest = reply.listing;
        while (!rest.empty()) {
            const ssize_t count = ::send(socket, rest.data(), rest.size(), MSG_NOSIGNAL);
            if (count <= 0)
                break;
            rest.remove_prefix(static_cast<std::size_t>(count));
        }
        ::close(socket);
        say("226 done");
    }
};

} // namespace quarrynet::services

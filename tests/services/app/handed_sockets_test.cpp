#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <sys/un.h>
#include <sys/wait.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/handed_sockets.h"
#include "ground/decimal.h"
#include "tests/services/support/service_support.h"

/// Tests what a service manager hands over, in child processes: their descriptors from 3 on are the test's.

using namespace quarrynet;
using namespace quarrynet::services;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

namespace {

using Variables = std::map<std::string, std::string>;

/// Opens a socket bound to a free port of `address`.
Descriptor boundSocket(const char* address, bool listens, int type = SOCK_STREAM)
{
    Descriptor made(::socket(AF_INET, type | SOCK_CLOEXEC, 0));
    sockaddr_in name{};
    name.sin_family = AF_INET;
    ::inet_pton(AF_INET, address, &name.sin_addr);
    EXPECT_EQ(::bind(made.number(), reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
    if (listens && ::listen(made.number(), 8) != 0)
        ADD_FAILURE() << "cannot listen";
    return made;
}

std::uint16_t portOf(const Descriptor& socket)
{
    sockaddr_in name{};
    socklen_t size = sizeof name;
    EXPECT_EQ(::getsockname(socket.number(), reinterpret_cast<sockaddr*>(&name), &size), 0);
    return ntohs(name.sin_port);
}

/// A child process in which `handed` are the descriptors 3, 4 and so on; a negative one is closed. In `variables`,
/// "SELF" stands for the child's process ID. Its standard output goes to a pipe and its errors to `errors`.
class Child
{
public:
    Child(const std::vector<int>& handed, const Variables& variables, const std::function<void()>& run,
          const std::string& errors = "/dev/null")
    {
        std::optional<Pipe> pipe = makePipe();
        id_ = ::fork();
        if (id_ == 0) {
            constexpr int kSpare = 100;
            ::dup2(pipe->writeEnd.number(), STDOUT_FILENO);
            ::dup2(::open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
            const auto count = static_cast<int>(handed.size());
            for (int i = 0; i < count; ++i)
                ::dup2(handed[static_cast<std::size_t>(i)], kSpare + i);
            for (int i = 3; i < kSpare; ++i)
                ::close(i);
            for (int i = 0; i < count; ++i) {
                ::dup2(kSpare + i, 3 + i);
                ::close(kSpare + i);
            }
            for (const auto& [name, value] : variables)
                ::setenv(name.c_str(), value == "SELF" ? std::to_string(::getpid()).c_str() : value.c_str(), 1);
            run();
            ::_exit(9);
        }
        output_ = std::move(pipe->readEnd);
    }
    ~Child()
    {
        if (id_ > 0)
            ::kill(id_, SIGKILL);
        wait();
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Call before wait() only.
    void signal(int number) const { ::kill(id_, number); }

    int wait()
    {
        if (id_ > 0)
            ::waitpid(std::exchange(id_, 0), &status_, 0);
        return status_;
    }

    std::string readLine() const
    {
        std::string line;
        for (char c = 0; ::read(output_.number(), &c, 1) == 1 && c != '\n';)
            line.push_back(c);
        return line;
    }

    std::vector<std::string> readLines() const
    {
        std::vector<std::string> lines;
        for (std::string line = readLine(); !line.empty(); line = readLine())
            lines.push_back(line);
        return lines;
    }

private:
    pid_t id_ = 0;
    int status_ = 0;
    Descriptor output_;
};

void print(const std::string& line)
{
    (void)!::write(STDOUT_FILENO, (line + "\n").data(), line.size() + 1);
}

/// Takes the handed sockets in a child process. Returns a line for each, then one for each fault.
std::vector<std::string> taken(const std::vector<int>& handed, const Variables& variables)
{
    const Child child(handed, variables, [] {
        const HandedSockets result = takeHandedSockets();
        for (const HandedSocket& socket : result.sockets) {
            const bool closes = (::fcntl(socket.socket.number(), F_GETFD) & FD_CLOEXEC) != 0;
            print(std::to_string(socket.socket.number()) + " " + socket.name + " " + socket.address + ":" +
                  std::to_string(socket.port) + (closes ? "" : " inherited"));
        }
        for (const std::string& fault : result.faults)
            print(fault);
        for (const char* name : {"LISTEN_PID", "LISTEN_FDS", "LISTEN_FDNAMES"}) {
            if (::getenv(name) != nullptr)
                print(std::string(name) + " is left");
        }
        for (int i = 3; i < 40; ++i) {
            const bool isTaken = std::any_of(result.sockets.begin(), result.sockets.end(),
                                             [i](const HandedSocket& socket) { return socket.socket.number() == i; });
            if (!isTaken && result.faults.empty() && ::fcntl(i, F_GETFD) >= 0)
                print("descriptor " + std::to_string(i) + " is left");
        }
        ::_exit(0);
    });
    return child.readLines();
}

} // namespace

TEST(HandedSockets, AreTakenWithTheirNamesAndAddresses)
{
    const Descriptor one = boundSocket("127.80.1.1", true);
    const Descriptor two = boundSocket("127.80.1.2", true);
    const std::string first = "127.80.1.1:" + std::to_string(portOf(one));
    const std::string second = "127.80.1.2:" + std::to_string(portOf(two));
    EXPECT_THAT(taken({one.number(), two.number()},
                      {{"LISTEN_PID", "SELF"}, {"LISTEN_FDS", "2"}, {"LISTEN_FDNAMES", "web:other"}}),
                ElementsAre("3 web " + first, "4 other " + second));
    EXPECT_THAT(taken({one.number()}, {{"LISTEN_PID", "SELF"}, {"LISTEN_FDS", "1"}}), ElementsAre("3  " + first));
    EXPECT_THAT(taken({}, {{"LISTEN_PID", "SELF"}, {"LISTEN_FDS", "0"}}), SizeIs(0));
    EXPECT_THAT(taken({}, {}), SizeIs(0));
    EXPECT_THAT(taken({}, {{"LISTEN_PID", "SELF"}}), SizeIs(0));
}

TEST(HandedSockets, ThoseOfAnotherProcessAreNotTaken)
{
    const Descriptor one = boundSocket("127.80.1.1", true);
    for (const char* process : {"1", "", "x", "-1", "99999999999999999999", "1 ", "\xff\n"})
        EXPECT_THAT(taken({one.number()}, {{"LISTEN_PID", process}, {"LISTEN_FDS", "1"}}),
                    ElementsAre(HasSubstr("of another process")))
            << process;
    EXPECT_THAT(taken({one.number()}, {{"LISTEN_FDS", "1"}}), ElementsAre(HasSubstr("LISTEN_PID is missing")));
}

TEST(HandedSockets, NumbersThatCannotBeAreFaults)
{
    const Descriptor one = boundSocket("127.80.1.1", true);
    for (const std::string& count :
         {std::string("33"), std::string("2147483647"), std::string("-1"), std::string(), std::string("three"),
          std::string(100'000, '9'), std::string("0x1"), std::string("\xfe\x01")}) {
        const std::vector<std::string> lines = taken({one.number()}, {{"LISTEN_PID", "SELF"}, {"LISTEN_FDS", count}});
        ASSERT_THAT(lines, ElementsAre(HasSubstr("no socket is taken"))) << count.substr(0, 20);
        EXPECT_LT(lines[0].size(), 300U);
    }
    // The most that is taken; all but the first are closed.
    EXPECT_THAT(taken({one.number()}, {{"LISTEN_PID", "SELF"}, {"LISTEN_FDS", "32"}}), SizeIs(32));
}

TEST(HandedSockets, WhatIsNoListeningTcpSocketIsAFault)
{
    const Descriptor good = boundSocket("127.80.1.1", true);
    const Descriptor deaf = boundSocket("127.80.1.2", false);
    const Descriptor datagrams = boundSocket("127.80.1.3", false, SOCK_DGRAM);
    const Descriptor unbound(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const Descriptor file(::open("/dev/null", O_RDWR | O_CLOEXEC));
    const Descriptor local(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un name{};
    name.sun_family = AF_UNIX; // the system chooses a name
    ASSERT_EQ(::bind(local.number(), reinterpret_cast<const sockaddr*>(&name), sizeof name.sun_family), 0);
    ASSERT_EQ(::listen(local.number(), 1), 0);
    EXPECT_THAT(
        taken({file.number(), deaf.number(), datagrams.number(), unbound.number(), local.number(), -1, good.number()},
              {{"LISTEN_PID", "SELF"}, {"LISTEN_FDS", "7"}, {"LISTEN_FDNAMES", "a:b:c:d:e:f:g"}}),
        ElementsAre(HasSubstr("9 g 127.80.1.1:"), "the handed descriptor 3 (\"a\") is not a socket",
                    "the handed descriptor 4 (\"b\") does not listen",
                    "the handed descriptor 5 (\"c\") is not a TCP socket",
                    "the handed descriptor 6 (\"d\") does not listen",
                    "the handed descriptor 7 (\"e\") is not bound to an IPv4 address",
                    "the handed descriptor 8 (\"f\") is not open"));
    const Descriptor six(::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (six && ::listen(six.number(), 1) == 0) {
        EXPECT_THAT(taken({six.number()}, {{"LISTEN_PID", "SELF"}, {"LISTEN_FDS", "1"}}),
                    ElementsAre(HasSubstr("is not bound to an IPv4 address")));
    }
}

TEST(HandedSockets, NamesThatDoNotFitAreIgnored)
{
    const Descriptor one = boundSocket("127.80.1.1", true);
    for (const std::string& names : {std::string("a:b"), std::string(":::::"), std::string(50'000, ':')})
        EXPECT_THAT(taken({one.number()}, {{"LISTEN_PID", "SELF"}, {"LISTEN_FDS", "1"}, {"LISTEN_FDNAMES", names}}),
                    ElementsAre(HasSubstr("3  127.80.1.1:"), HasSubstr("LISTEN_FDNAMES")));
    EXPECT_THAT(taken({-1}, {{"LISTEN_PID", "SELF"}, {"LISTEN_FDS", "1"}, {"LISTEN_FDNAMES", "\xff\r\n\x1b[31m"}}),
                ElementsAre(Not(HasSubstr("\x1b"))));
}

TEST(TakeSocketFor, ANameComesBeforeAnAddress)
{
    std::vector<HandedSocket> sockets;
    sockets.push_back({Descriptor(), "file", "127.80.0.1", 1});
    sockets.push_back({Descriptor(), "unit.socket", "127.80.0.1", 2});
    sockets.push_back({Descriptor(), "", "127.80.0.2", 3});
    sockets.push_back({Descriptor(), "web", "127.80.0.9", 4});
    const std::vector<std::string> names{"web", "file", "image"};
    EXPECT_EQ(takeSocketFor(sockets, "web", "127.80.0.1", names)->port, 4);
    EXPECT_EQ(takeSocketFor(sockets, "web", "127.80.0.1", names)->port, 2);
    EXPECT_FALSE(takeSocketFor(sockets, "web", "127.80.0.1", names)) << "this one is for another service";
    EXPECT_EQ(takeSocketFor(sockets, "image", "127.80.0.2", names)->port, 3);
    EXPECT_EQ(takeSocketFor(sockets, "file", "127.80.0.4", names)->port, 1);
    EXPECT_TRUE(sockets.empty());
}

TEST(TellManager, HostileAddressesAreRefused)
{
    for (const std::string& name :
         {std::string("relative"), std::string("/").append(200, 'x'), std::string("@").append(200, 'x'),
          std::string("/dev/null"), std::string("/nonexistent/socket"), std::string("vsock:2:1")}) {
        ::setenv("NOTIFY_SOCKET", name.c_str(), 1);
        EXPECT_FALSE(tellManager("READY=1")) << name;
    }
    ::unsetenv("NOTIFY_SOCKET");
    EXPECT_TRUE(tellManager("READY=1"));
}

namespace {

/// The manager's end of NOTIFY_SOCKET, under a name outside of the file system.
class Manager
{
public:
    Manager() : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        socklen_t size = sizeof name;
        EXPECT_EQ(::bind(socket_.number(), reinterpret_cast<const sockaddr*>(&name), sizeof name.sun_family), 0);
        EXPECT_EQ(::getsockname(socket_.number(), reinterpret_cast<sockaddr*>(&name), &size), 0);
        name_ = "@";
        name_.append(&name.sun_path[1], size - offsetof(sockaddr_un, sun_path) - 1);
    }

    const std::string& name() const { return name_; }

    std::string next() const
    {
        const timeval time{60, 0};
        ::setsockopt(socket_.number(), SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
        std::array<char, 1000> text{};
        const ssize_t count = ::recv(socket_.number(), text.data(), text.size(), 0);
        return count < 0 ? "nothing" : std::string(text.data(), static_cast<std::size_t>(count));
    }

private:
    Descriptor socket_;
    std::string name_;
};

std::string ask(const char* address, std::uint16_t port, const std::string& target)
{
    const RawClient client(address, port);
    client.send("GET " + target + " HTTP/1.1\r\nHost: " + address + "\r\nConnection: close\r\n\r\n");
    return client.receiveAll();
}

std::string content(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void serve(const std::string& data)
{
    ::setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
    // The image search gets no socket and cannot bind its address.
    ::execl(QUARRYNET_SERVICES, QUARRYNET_SERVICES, "serve", "--data", data.c_str(), "--port", "0", "--proxy-port", "0",
            "--image-address", "192.0.2.1", static_cast<char*>(nullptr));
}

} // namespace

TEST(ServeWithHandedSockets, AnswersThereAndTellsTheManager)
{
    const TemporaryFolder folder;
    std::filesystem::permissions(folder.path(), std::filesystem::perms::others_exec,
                                 std::filesystem::perm_options::add);
    const std::string errors = folder.path() + "/errors";
    const Manager manager;
    const Descriptor web = boundSocket("127.80.1.1", true);
    const Descriptor file = boundSocket("127.80.0.4", true);
    const Descriptor proxy = boundSocket("127.80.1.3", true);
    const Descriptor odd = boundSocket("127.80.1.9", true);
    const Descriptor none(::open("/dev/null", O_RDWR | O_CLOEXEC));
    // A client that came before the services started.
    const RawClient early("127.80.1.1", portOf(web));
    early.send("GET / HTTP/1.1\r\nHost: 127.80.1.1\r\n\r\n");
    Child child(
        {web.number(), file.number(), proxy.number(), odd.number(), none.number()},
        {{"LISTEN_PID", "SELF"},
         {"LISTEN_FDS", "5"},
         {"LISTEN_FDNAMES", "web:services.socket:proxy:services.socket:connection"},
         {"NOTIFY_SOCKET", manager.name()}},
        [&folder] { serve(folder.path() + "/data"); }, errors);
    const std::string ready = child.readLine();
    EXPECT_THAT(ready, HasSubstr(" web=http://127.80.1.1:" + std::to_string(portOf(web)) + "/ "));
    EXPECT_THAT(ready, HasSubstr(" file=http://127.80.0.4:" + std::to_string(portOf(file)) + "/ "));
    EXPECT_THAT(ready, HasSubstr(" proxy=http://127.80.1.3:" + std::to_string(portOf(proxy)) + "/"));
    EXPECT_THAT(ready, HasSubstr(" download=http://127.80.0.3:")) << "without a socket it binds its own";
    EXPECT_THAT(manager.next(), HasSubstr("READY=1"));
    EXPECT_THAT(early.receiveAll(), HasSubstr("Web search"));
    EXPECT_THAT(ask("127.80.0.4", portOf(file), "/"), HasSubstr("200 OK"));
    EXPECT_THAT(ask("127.80.1.3", portOf(proxy), "http://127.80.1.1/"), HasSubstr("Web search"));
    EXPECT_THAT(content(errors), HasSubstr("the handed descriptor 7 (\"connection\") is not a socket"));
    EXPECT_THAT(content(errors), HasSubstr("127.80.1.9:" + std::to_string(portOf(odd)) + " is for no service"));
    child.signal(SIGTERM);
    EXPECT_EQ(manager.next(), "STOPPING=1");
    EXPECT_EQ(child.wait(), 0);
    // The manager's sockets stay open, so the next start finds the clients that came meanwhile.
    const RawClient late("127.80.1.1", portOf(web));
    EXPECT_TRUE(late.connected());
}

TEST(ServeWithHandedSockets, AHostileEnvironmentDoesNotStopIt)
{
    const TemporaryFolder folder;
    std::filesystem::permissions(folder.path(), std::filesystem::perms::others_exec,
                                 std::filesystem::perm_options::add);
    const Descriptor web = boundSocket("127.80.1.1", true);
    Child child(
        {web.number()},
        {{"LISTEN_PID", "1"},
         {"LISTEN_FDS", "999999999"},
         {"LISTEN_FDNAMES", std::string(10'000, ':')},
         {"NOTIFY_SOCKET", std::string("@").append(5000, 'x')}},
        [&folder] { serve(folder.path() + "/data"); }, folder.path() + "/errors");
    EXPECT_THAT(child.readLine(), HasSubstr("quarrynet-services: ready"));
    child.signal(SIGTERM);
    EXPECT_EQ(child.wait(), 0);
    EXPECT_THAT(content(folder.path() + "/errors"), HasSubstr("another process"));
    EXPECT_THAT(content(folder.path() + "/errors"), HasSubstr("NOTIFY_SOCKET"));
}

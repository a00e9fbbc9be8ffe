#include "app/handed_sockets.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

#include "ground/decimal.h"
#include "ground/utf8.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

constexpr int kFirstDescriptor = 3; // SD_LISTEN_FDS_START
constexpr std::size_t kMaxShown = 100;

/// Returns text from the environment for a message: in quotes, on one line, and cut when it is long.
std::string shown(std::string_view text)
{
    const std::string line = plainLine(text.substr(0, 4 * kMaxShown));
    return std::string("\"").append(clipUtf8(line, kMaxShown)).append("\"");
}

/// Removes the variable and returns its value.
std::optional<std::string> takeVariable(const char* name)
{
    const char* value = std::getenv(name);
    std::optional<std::string> taken = value == nullptr ? std::nullopt : std::optional<std::string>(value);
    ::unsetenv(name);
    return taken;
}

std::vector<std::string> splitNames(std::string_view text)
{
    std::vector<std::string> names;
    while (names.size() <= kMostHandedSockets) {
        const std::size_t end = std::min(text.find(':'), text.size());
        names.emplace_back(text.substr(0, end));
        if (end == text.size())
            break;
        text.remove_prefix(end + 1);
    }
    return names;
}

/// Returns what is wrong with the descriptor, or an empty text after writing its address to `handed`.
std::string examine(HandedSocket& handed)
{
    const int number = handed.socket.number();
    const auto option = [number](int which) -> int {
        int value = 0;
        socklen_t size = sizeof value;
        return ::getsockopt(number, SOL_SOCKET, which, &value, &size) == 0 ? value : -1;
    };
    const int type = option(SO_TYPE);
    if (type < 0)
        return errno == ENOTSOCK ? "is not a socket" : std::string("cannot be used: ") + std::strerror(errno);
    if (type != SOCK_STREAM)
        return "is not a TCP socket";
    sockaddr_in name{};
    socklen_t size = sizeof name;
    if (::getsockname(number, reinterpret_cast<sockaddr*>(&name), &size) != 0)
        return std::string("has no address: ") + std::strerror(errno);
    if (name.sin_family != AF_INET)
        return "is not bound to an IPv4 address";
    if (option(SO_ACCEPTCONN) != 1)
        return "does not listen";
    std::array<char, INET_ADDRSTRLEN> text{};
    if (::inet_ntop(AF_INET, &name.sin_addr, text.data(), text.size()) == nullptr)
        return "has no address";
    handed.address = text.data();
    handed.port = ntohs(name.sin_port);
    return {};
}

} // namespace

HandedSockets takeHandedSockets()
{
    HandedSockets result;
    const std::optional<std::string> process = takeVariable("LISTEN_PID");
    const std::optional<std::string> count = takeVariable("LISTEN_FDS");
    const std::optional<std::string> nameList = takeVariable("LISTEN_FDNAMES");
    takeVariable("LISTEN_PIDFDID"); // of newer managers; the number of the process suffices
    if (!count)
        return result;
    if (!process || wholeNumber(*process) != std::optional<int>(static_cast<int>(::getpid()))) {
        result.faults.push_back("LISTEN_PID is " + (process ? shown(*process) : "missing") +
                                ", so the sockets that LISTEN_FDS counts are those of another process");
        return result;
    }
    const std::optional<int> stated = wholeNumber(*count);
    if (!stated || *stated < 0 || static_cast<std::size_t>(*stated) > kMostHandedSockets) {
        result.faults.push_back("LISTEN_FDS is " + shown(*count) + " instead of a number up to " +
                                std::to_string(kMostHandedSockets) + "; no socket is taken");
        return result;
    }
    std::vector<std::string> names = nameList ? splitNames(*nameList) : std::vector<std::string>();
    if (nameList && names.size() != static_cast<std::size_t>(*stated)) {
        if (*stated > 0)
            result.faults.push_back("LISTEN_FDNAMES does not have as many names as LISTEN_FDS says; the sockets are "
                                    "told apart by their addresses");
        names.clear();
    }
    names.resize(static_cast<std::size_t>(*stated));
    for (int i = 0; i < *stated; ++i) {
        const int number = kFirstDescriptor + i;
        std::string& name = names[static_cast<std::size_t>(i)];
        std::string which = "the handed descriptor " + std::to_string(number);
        if (!name.empty())
            which.append(" (").append(shown(name)).append(")");
        if (::fcntl(number, F_SETFD, FD_CLOEXEC) != 0) {
            result.faults.push_back(which + " is not open");
            continue;
        }
        HandedSocket handed{Descriptor(number), std::move(name), {}, 0};
        const std::string fault = examine(handed);
        if (fault.empty())
            result.sockets.push_back(std::move(handed));
        else
            result.faults.push_back(which.append(" ").append(fault));
    }
    return result;
}

std::optional<HandedSocket> takeSocketFor(std::vector<HandedSocket>& sockets, const std::string& name,
                                          const std::string& address, const std::vector<std::string>& names)
{
    auto found = std::find_if(sockets.begin(), sockets.end(),
                              [&name](const HandedSocket& handed) { return handed.name == name; });
    if (found == sockets.end())
        found = std::find_if(sockets.begin(), sockets.end(), [&](const HandedSocket& handed) {
            return handed.address == address && std::find(names.begin(), names.end(), handed.name) == names.end();
        });
    if (found == sockets.end())
        return std::nullopt;
    HandedSocket taken = std::move(*found);
    sockets.erase(found);
    return taken;
}

bool tellManager(const std::string& state)
{
    const char* path = std::getenv("NOTIFY_SOCKET");
    if (path == nullptr || path[0] == '\0')
        return true;
    const std::string_view name = path;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if ((name[0] != '/' && name[0] != '@') || name.size() >= sizeof address.sun_path)
        return false;
    std::copy(name.begin(), name.end(), address.sun_path);
    if (name[0] == '@')
        address.sun_path[0] = '\0'; // a name outside of the file system
    const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM, 0));
    if (!socket || ::fcntl(socket.number(), F_SETFD, FD_CLOEXEC) != 0)
        return false;
    // A manager that does not read must not stop the services.
    const timeval wait{1, 0};
    ::setsockopt(socket.number(), SOL_SOCKET, SO_SNDTIMEO, &wait, sizeof wait);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    return ::sendto(socket.number(), state.data(), state.size(), 0, reinterpret_cast<const sockaddr*>(&address),
                    length) == static_cast<ssize_t>(state.size());
}

} // namespace quarrynet::services

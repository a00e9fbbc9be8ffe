#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ground/Descriptor.h"

/// The protocol of service managers that open sockets for their services (sd_listen_fds(3), sd_notify(3)). It is a few
/// environment variables and a datagram. The manager's library would bring compression and encryption libraries into
/// a process that answers every user of the machine.
namespace quarrynet::services {

/// More sockets than this are not taken; there are five addresses.
inline constexpr std::size_t kMostHandedSockets = 32;

/// A listening TCP socket from the service manager.
struct HandedSocket
{
    Descriptor socket;
    std::string name;    ///< as the manager says; may be empty
    std::string address; ///< the numeric IPv4 address it is bound to
    std::uint16_t port = 0;
};

/// The sockets, and a sentence without a full stop for each that cannot be used.
struct HandedSockets
{
    std::vector<HandedSocket> sockets;
    std::vector<std::string> faults;
};

/// Takes the sockets that LISTEN_PID, LISTEN_FDS and LISTEN_FDNAMES describe, and removes these variables, so that no
/// child process takes them too. Call it once, before anything opens a descriptor: what the variables count and is not
/// a listening TCP socket on an IPv4 address is closed. No child process inherits the sockets.
HandedSockets takeHandedSockets();

/// Removes and returns the socket for a service: the one named `name`, or else the one bound to `address` whose name is
/// not in `names`, those of all services. Returns nothing when there is none.
std::optional<HandedSocket> takeSocketFor(std::vector<HandedSocket>& sockets, const std::string& name,
                                          const std::string& address, const std::vector<std::string>& names);

/// Sends `state` ("READY=1" and the like, one assignment a line) to the service manager that NOTIFY_SOCKET names. Does
/// nothing without one. Waits at most a second. Returns false when the manager cannot be reached.
bool tellManager(const std::string& state);

} // namespace quarrynet::services

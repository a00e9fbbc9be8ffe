#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "app/handed_sockets.h"
#include "http/HttpServer.h"
#include "http/Router.h"

/// The services that `serve` offers. Their order does not matter; status_command.cpp has a list of its own.
namespace quarrynet::services {

struct Service
{
    std::string name;
    std::string usualHost; ///< the host that the window's program requests
    std::string host;      ///< numeric address to listen at; empty: usualHost
    Router::Handler handler;
    /// Called once before the first request, for services whose pages contain their own addresses. `base` is the prefix
    /// of a path: "http://" and the host, with the port unless that is 80, without a trailing slash. May be empty.
    std::function<void(const std::string& base)> begin = nullptr;
    std::string address = {}; ///< set by startServices(): the address it listens at; empty if it does not
};

/// Returns what the machine's owner can do when another program listens at a service's port: a clause without a full
/// stop.
std::string remedyForPortInUse(std::uint16_t port);

/// The name of the proxy's socket; no service has it.
inline constexpr const char* kProxyName = "proxy";

/// Adds the services to `router`, and starts listening for each: at the socket in `handed` that is for it, which is
/// removed from there, or at its own address and `port` (0 picks free ones). A service's address becomes that of its
/// socket. Reports a service whose address cannot be bound to `refused`; the router still reaches it. The services must
/// not move until `server` ends.
void startServices(HttpServer& server, Router& router, std::uint16_t port, std::vector<Service>& services,
                   std::vector<HandedSocket>& handed,
                   const std::function<void(const Service&, const HttpServer::Refusal&)>& refused);

/// Does the same for the proxy: listens at the socket in `handed` that is for it, or at `address` and `port`.
std::variant<std::uint16_t, HttpServer::Refusal> startProxy(HttpServer& server, const Router& router,
                                                            std::string& address, std::uint16_t port,
                                                            std::vector<HandedSocket>& handed);

} // namespace quarrynet::services

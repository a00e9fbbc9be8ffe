#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "http/HttpServer.h"
#include "http/Router.h"

/// The services that `serve` offers. Nothing here depends on their order or number.
namespace quarrynet::services {

struct Service
{
    std::string name;
    std::string usualHost; ///< what the program was built to ask
    std::string host;      ///< numeric address to listen at; empty: the usual one
    Router::Handler handler;
    /// Called once before the first request, for services that give out addresses of their own: `base` goes before a
    /// path, "http://" and the host, with its port unless that is 80, and no slash at the end. May be empty.
    std::function<void(const std::string& base)> begin = nullptr;
    std::string address = {}; ///< set by startServices(): where it listens; empty when it does not
};

/// Makes `router` lead to the services and starts listening for each at its own address and `port` (0 picks free ones).
/// A service whose address cannot be bound goes to `refused` and stays reachable through the router only. The services
/// have to stay where they are until `server` ends.
void startServices(HttpServer& server, Router& router, std::uint16_t port, std::vector<Service>& services,
                   const std::function<void(const Service&, const HttpServer::Refusal&)>& refused);

} // namespace quarrynet::services

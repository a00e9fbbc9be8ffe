#include "app/service_table.h"

#include <cstddef>
#include <optional>
#include <utility>
#include <variant>

#include "app/status_page.h"

namespace quarrynet::services {

namespace {

/// Returns the prefix of this service's own addresses, without port 80.
std::string baseOf(const Service& service)
{
    std::string base =
        service.address.empty() ? "http://" + service.host : service.address.substr(0, service.address.size() - 1);
    if (base.size() > 3 && base.substr(base.size() - 3) == ":80")
        base.resize(base.size() - 3);
    return base;
}

/// A socket bound to every address says nothing about where the service is asked.
void takeAddress(const HandedSocket& handed, std::string& host)
{
    if (handed.address != "0.0.0.0")
        host = handed.address;
}

} // namespace

std::string remedyForPortInUse(std::uint16_t port)
{
    return "\"sudo ss -ltnp 'sport = :" + std::to_string(port) +
           "'\" shows the program that uses the port. Stop it or make it listen on fewer addresses, then restart the "
           "services";
}

void startServices(HttpServer& server, Router& router, std::uint16_t port, std::vector<Service>& services,
                   std::vector<HandedSocket>& handed,
                   const std::function<void(const Service&, const HttpServer::Refusal&)>& refused)
{
    std::vector<std::string> names{kProxyName};
    for (const Service& service : services)
        names.push_back(service.name);
    std::vector<std::optional<HandedSocket>> sockets;
    for (Service& service : services) {
        if (service.host.empty())
            service.host = service.usualHost;
        sockets.push_back(takeSocketFor(handed, service.name, service.host, names));
        if (sockets.back())
            takeAddress(*sockets.back(), service.host);
        router.add(service.usualHost, service.handler);
        router.add(service.host, service.handler);
    }
    for (std::size_t i = 0; i < services.size(); ++i) {
        Service& service = services[i];
        const HttpServer::Handler answer = [&router, &service](const HttpRequest& request) {
            return router.answerAt(service.handler, request);
        };
        const auto result = sockets[i] ? server.adopt(std::move(sockets[i]->socket), answer)
                                       : server.listen(service.host, port, answer);
        if (const auto* refusal = std::get_if<HttpServer::Refusal>(&result))
            refused(service, *refusal);
        else
            service.address = "http://" + service.host + ":" + std::to_string(std::get<std::uint16_t>(result)) + "/";
        if (service.begin)
            service.begin(baseOf(service));
    }
}

std::variant<std::uint16_t, HttpServer::Refusal> startProxy(HttpServer& server, const Router& router,
                                                            std::string& address, std::uint16_t port,
                                                            std::vector<HandedSocket>& handed)
{
    const HttpServer::Handler answer = [&router](const HttpRequest& request) {
        return !request.absoluteForm && request.path == kStatusPath ? proxyStatusPage() : router.answerAsProxy(request);
    };
    std::optional<HandedSocket> socket = takeSocketFor(handed, kProxyName, address, {});
    if (!socket)
        return server.listen(address, port, answer);
    takeAddress(*socket, address);
    return server.adopt(std::move(socket->socket), answer);
}

} // namespace quarrynet::services

#include "app/service_table.h"

#include <variant>

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

} // namespace

void startServices(HttpServer& server, Router& router, std::uint16_t port, std::vector<Service>& services,
                   const std::function<void(const Service&, const HttpServer::Refusal&)>& refused)
{
    for (Service& service : services) {
        if (service.host.empty())
            service.host = service.usualHost;
        router.add(service.usualHost, service.handler);
        router.add(service.host, service.handler);
    }
    for (Service& service : services) {
        const auto result = server.listen(service.host, port, [&router, &service](const HttpRequest& request) {
            return router.answerAt(service.handler, request);
        });
        if (const auto* refusal = std::get_if<HttpServer::Refusal>(&result))
            refused(service, *refusal);
        else
            service.address = "http://" + service.host + ":" + std::to_string(std::get<std::uint16_t>(result)) + "/";
        if (service.begin)
            service.begin(baseOf(service));
    }
}

} // namespace quarrynet::services

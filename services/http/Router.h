#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "http/message.h"

namespace quarrynet::services {

/// Chooses the service for a host. This makes one port of the program an HTTP proxy to the local services, and to
/// nothing else.
class Router
{
public:
    using Handler = std::function<HttpResponse(const HttpRequest&)>;

    /// Adds the handler for `host`, as it appears in addresses, without a port.
    void add(const std::string& host, Handler handler);

    /// A page that the services may ask each other for, because its answer asks nobody.
    static constexpr std::string_view kOwnPage = "/status";

    /// Returns the response to a request at a service's own port. An absolute address in the request (RFC 9112, section
    /// 3.2.2) selects the service by its host. A Host that is not an IP address, "localhost" or a service's host gets
    /// 421: a foreign page whose host name was made to resolve to this address could read the user's documents
    /// otherwise.
    HttpResponse answerAt(const Handler& service, const HttpRequest& request) const;

    /// Returns the response to a request at the proxy port: 403 for hosts that are not local services.
    HttpResponse answerAsProxy(const HttpRequest& request) const;

private:
    HttpResponse byHost(const HttpRequest& request) const;

    std::map<std::string, Handler> handlers_;
};

} // namespace quarrynet::services

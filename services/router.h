#pragma once

#include <functional>
#include <map>
#include <string>

#include "services/http_message.h"

namespace quarrynet::services {

/// Which service answers for which host: what makes one port of this program an HTTP proxy to the local services, and
/// to nothing else.
class Router
{
public:
    using Handler = std::function<HttpResponse(const HttpRequest&)>;

    /// `host` as it stands in addresses, without a port.
    void add(const std::string& host, Handler handler);

    /// An answer to a request that arrived at a service's own port. An absolute address goes by its host, any other
    /// request to the service of `host`.
    HttpResponse answerAt(const std::string& host, const HttpRequest& request) const;

    /// An answer to a request that arrived at the proxy port: 403 for hosts that are no local service.
    HttpResponse answerAsProxy(const HttpRequest& request) const;

private:
    HttpResponse byHost(const HttpRequest& request) const;

    std::map<std::string, Handler> handlers_;
};

} // namespace quarrynet::services

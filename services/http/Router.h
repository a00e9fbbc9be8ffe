#pragma once

#include <functional>
#include <map>
#include <string>

#include "http/message.h"

namespace quarrynet::services {

/// Which service answers for which host: what makes one port of this program an HTTP proxy to the local services, and
/// to nothing else.
class Router
{
public:
    using Handler = std::function<HttpResponse(const HttpRequest&)>;

    /// `host` as it stands in addresses, without a port.
    void add(const std::string& host, Handler handler);

    /// An answer to a request that arrived at a service's own port: its own, unless the request names an absolute
    /// address (RFC 9112, section 3.2.2), which goes by its host. A Host that is neither a number, nor this machine,
    /// nor a service's is refused with 421: a page of the outside world whose name was made to lead here would send it,
    /// to read the user's documents.
    HttpResponse answerAt(const Handler& service, const HttpRequest& request) const;

    /// An answer to a request that arrived at the proxy port: 403 for hosts that are no local service.
    HttpResponse answerAsProxy(const HttpRequest& request) const;

private:
    HttpResponse byHost(const HttpRequest& request) const;

    std::map<std::string, Handler> handlers_;
};

} // namespace quarrynet::services

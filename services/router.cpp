#include "services/router.h"

#include <utility>

#include "services/text_encoding.h"

namespace quarrynet::services {

void Router::add(const std::string& host, Handler handler)
{
    handlers_[hostOfAuthority(host)] = std::move(handler);
}

HttpResponse Router::answerAt(const Handler& service, const HttpRequest& request) const
{
    return request.absoluteForm ? byHost(request) : service(request);
}

HttpResponse Router::answerAsProxy(const HttpRequest& request) const
{
    if (!request.absoluteForm)
        return errorResponse(400, "This is the proxy port of the local search services: enter it as an HTTP proxy.");
    return byHost(request);
}

HttpResponse Router::byHost(const HttpRequest& request) const
{
    const auto found = handlers_.find(request.host);
    if (found == handlers_.end())
        return errorResponse(403, "This proxy leads to the local search services only, not to " + toUtf8(request.host) +
                                      ".");
    return found->second(request);
}

} // namespace quarrynet::services

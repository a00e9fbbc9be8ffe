#include "http/Router.h"

#include <utility>

#include "ground/utf8.h"

namespace quarrynet::services {

namespace {

/// Returns whether `host` is an IPv4 address, an IPv6 address in brackets, or empty, as HTTP/1.0 allows.
bool isNumeric(const std::string& host)
{
    return host.substr(0, 1) == "[" || host.find_first_not_of("0123456789.") == std::string::npos;
}

/// Returns whether this program made the request, because its configuration names one of its own addresses as a source.
/// An answer would ask that source again, without an end.
bool isOwnRequest(const HttpRequest& request)
{
    return request.agent.starts_with(kOwnAgent) && request.path != Router::kOwnPage;
}

HttpResponse loopResponse(Language language)
{
    return errorResponse(508, "This is quarrynet-services itself, which cannot be a source of its own.", language);
}

} // namespace

void Router::add(const std::string& host, Handler handler)
{
    handlers_[hostOfAuthority(host)] = std::move(handler);
}

HttpResponse Router::answerAt(const Handler& service, const HttpRequest& request) const
{
    if (request.absoluteForm)
        return byHost(request);
    if (isOwnRequest(request))
        return loopResponse(request.language);
    if (!isNumeric(request.host) && request.host != "localhost" && handlers_.find(request.host) == handlers_.end())
        return errorResponse(421, "The local search services do not serve %1.", request.language, toUtf8(request.host));
    return service(request);
}

HttpResponse Router::answerAsProxy(const HttpRequest& request) const
{
    if (!request.absoluteForm)
        return errorResponse(400, "This is the proxy port of the local search services. Use it as an HTTP proxy.",
                             request.language);
    return byHost(request);
}

HttpResponse Router::byHost(const HttpRequest& request) const
{
    if (isOwnRequest(request))
        return loopResponse(request.language);
    const auto found = handlers_.find(request.host);
    if (found == handlers_.end())
        return errorResponse(403, "This proxy serves the local search services only, not %1.", request.language,
                             toUtf8(request.host));
    return found->second(request);
}

} // namespace quarrynet::services

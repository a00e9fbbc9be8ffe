#include "search/page/request.h"

namespace quarrynet {

std::string pageRequest(std::string_view host, std::string_view path, Route route)
{
    const bool proxy = route == Route::Proxy;
    std::string text = "GET ";
    if (proxy)
        text.append("http://").append(host);
    text.append(path).append(" HTTP/1.1\r\n");
    text.append("Host: ").append(host).append("\r\n");
    text.append(proxy ? "Proxy-Connection: close\r\n" : "Connection: close\r\n");
    text.append("Accept: */*\r\n");
    return text.append("\r\n");
}

} // namespace quarrynet

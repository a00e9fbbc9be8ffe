#include "common/request_text.h"

#include <algorithm>
#include <limits>

#include "common/cutting.h"

namespace quarrynet {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

bool fitsInt32(std::int64_t number)
{
    return number >= std::numeric_limits<std::int32_t>::min() && number <= std::numeric_limits<std::int32_t>::max();
}

} // namespace

Route routeFor(std::string_view proxySwitch)
{
    return proxySwitch == "off" ? Route::Direct : Route::Proxy;
}

std::string encodeQuery(std::string_view keywords)
{
    std::string query(trimBlanks(keywords));
    std::replace(query.begin(), query.end(), ' ', '+');
    return query;
}

std::string engineRequest(std::string_view target, std::string_view host, Route route)
{
    const bool proxy = route == Route::Proxy;
    std::string text;
    text.reserve(target.size() + 2 * host.size() + 160);
    text.append("GET ");
    if (proxy)
        text.append("http://").append(host);
    text.append(target).append(" HTTP/1.1").append(kLineEnd);
    text.append("HOST: ").append(host).append(kLineEnd);
    text.append(proxy ? "Proxy-Connection: close" : "Connection: close").append(kLineEnd);
    text.append("User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)").append(kLineEnd);
    text.append("ACCEPT: */*").append(kLineEnd);
    text.append(kLineEnd);
    return text;
}

Result<std::int32_t> firstResultOfPage(std::int32_t page, std::int32_t perPage, std::int32_t offset)
{
    // The product alone must also fit, because it is a 32-bit value of its own.
    const std::int64_t product = std::int64_t{page} * perPage;
    if (!fitsInt32(product) || !fitsInt32(product + offset))
        return RuntimeError::Overflow;
    return static_cast<std::int32_t>(product + offset);
}

} // namespace quarrynet

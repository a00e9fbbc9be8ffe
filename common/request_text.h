#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/runtime_error.h"

/// The common parts of requests to the search engines, as the exact bytes to send.
namespace quarrynet {

/// The route of a request: directly to the engine, or through the configured HTTP proxy.
enum class Route : std::uint8_t
{
    Direct,
    Proxy,
};

/// Returns the route that the text of the proxy switch selects: Direct for exactly "off", Proxy for any other text.
Route routeFor(std::string_view proxySwitch);

/// Returns keywords in query form: without the blanks at both ends, and with "+" for each inner blank. Nothing else is
/// encoded: "&", "%" and non-ASCII bytes stay as typed.
std::string encodeQuery(std::string_view keywords);

/// Returns the whole GET request for `target` (path and query, beginning with "/") at `host`, including the header
/// block and the empty line (RFC 9112, 3). Through a proxy, the request line has the absolute form (RFC 9112, 3.2.2):
/// "http://", `host` and `target` with nothing between them.
std::string engineRequest(std::string_view target, std::string_view host, Route route);

/// Returns where page `page` (1-based) of `perPage` results begins: page * perPage + offset in checked 32-bit
/// arithmetic, or Overflow when that does not fit.
Result<std::int32_t> firstResultOfPage(std::int32_t page, std::int32_t perPage, std::int32_t offset);

} // namespace quarrynet

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/runtime_error.h"

/// What the requests to the search engines have in common, as the exact bytes that go out.
namespace quarrynet {

/// The way a request travels: straight to the engine, or through the configured HTTP proxy.
enum class Route : std::uint8_t
{
    Direct,
    Proxy,
};

/// The route that the text of the proxy switch selects: Direct for exactly "off", Proxy for any other text.
Route routeFor(std::string_view proxySwitch);

/// Keywords as they stand in a query: without the blanks at both ends, each inner blank a "+". Nothing else is encoded:
/// "&", "%" and bytes beyond ASCII pass as typed.
std::string encodeQuery(std::string_view keywords);

/// The whole GET request for `target` (path and query, beginning with "/") at `host`, header block and empty line
/// included (RFC 9112, 3). Through a proxy the request line carries the absolute form (RFC 9112, 3.2.2): "http://",
/// `host` and `target` with nothing between them.
std::string engineRequest(std::string_view target, std::string_view host, Route route);

/// Where page `page` (1-based) of `perPage` results begins: page * perPage + offset in checked 32-bit arithmetic;
/// Overflow when that does not fit.
Result<std::int32_t> firstResultOfPage(std::int32_t page, std::int32_t perPage, std::int32_t offset);

} // namespace quarrynet

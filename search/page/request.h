#pragma once

#include <string>
#include <string_view>

#include "common/request_text.h"

namespace quarrynet {

/// Returns the GET request for a page, including the header block and the empty line (RFC 9112, 3). Through a proxy,
/// the request line has the absolute form (RFC 9112, 3.2.2). Unlike the searches, it names no user agent.
std::string pageRequest(std::string_view host, std::string_view path, Route route);

} // namespace quarrynet

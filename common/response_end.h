#pragma once

#include <string_view>

namespace quarrynet {

/// Returns whether a response, header included, is complete by its own header (RFC 9112 section 6.3): all bytes of its
/// Content-Length are there, or the last of its chunks, or its status has no content. Returns false when the header is
/// incomplete, contradicts itself, or leaves the end to the close of the connection. Linear in the response's length.
bool isCompleteResponse(std::string_view response);

} // namespace quarrynet

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "common/request_text.h"
#include "common/runtime_error.h"

/// Functions that turn a download row's redirect link into the address to open.
namespace quarrynet {

/// Returns the request path for `link`: every "redir" in it is replaced by the text after the link's first "%2F"
/// (without one, by the link from its third byte on). Returns OutOfMemory when the path would exceed textAllowance(),
/// or when more than 64 MiB are replaced again because replacements formed them.
Result<std::string> redirectPath(std::string_view link);

/// Returns the request for `path` at the directory `host`. Removes line breaks from the path, because it comes from a
/// page that could otherwise add header lines.
std::string linkRequest(std::string_view path, std::string_view host, Route route);

/// Returns the download address that `page` has after "newlocation = ", or nothing if it has none. Decodes "%3A" and
/// "%2F" and no other escapes. The fixed offsets of the cut omit the address's last byte. Returns InvalidProcedureCall
/// when the page ends within the address.
Result<std::optional<std::string>> downloadAddress(std::string_view page);

/// Returns the address to open when the page names none: `host` and the list entry `entry`, which is empty if none is
/// selected.
std::string fallbackAddress(std::string_view host, std::string_view entry);

} // namespace quarrynet

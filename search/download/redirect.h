#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "common/request_text.h"
#include "common/runtime_error.h"

/// The way from a download row's redirect link to the address that is opened.
namespace quarrynet {

/// The request path for `link`: every "redir" in it gives way to what follows the link's first "%2F" (without one, to
/// the link from its third byte on). Fails with OutOfMemory when that makes a path longer than textAllowance(), or when
/// more than 64 MiB are replaced anew because replacements formed them.
Result<std::string> redirectPath(std::string_view link);

/// The request for `path` at the directory `host`. Line breaks in the path, which comes out of a page, are left out:
/// they would begin header lines of the page's choice.
std::string linkRequest(std::string_view path, std::string_view host, Route route);

/// The download address that `page` names behind "newlocation = ", with "%3A" and "%2F" decoded and no other escape;
/// nothing when the page names none. The address lacks its last byte, as the fixed offsets of its cut have it. Fails
/// with InvalidProcedureCall when the page ends before the address does.
Result<std::optional<std::string>> downloadAddress(std::string_view page);

/// The address opened instead when the page names none: `host` and the list entry `entry`, which is empty as long as
/// none is selected.
std::string fallbackAddress(std::string_view host, std::string_view entry);

} // namespace quarrynet

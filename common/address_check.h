#pragma once

#include <optional>
#include <string>
#include <string_view>

/// What may be handed to the desktop to open. Addresses come out of pages that anybody may have written, and the
/// desktop would just as well run a program or mount a share: so this is a list of what is allowed, not of what is not.
namespace quarrynet {

/// `address` (bytes, in whatever encoding its page had) in the form in which it may be opened, or nothing when it may
/// not be. Allowed are http, https, ftp and ftps addresses with a host, and mailto addresses whose fields are a
/// letter's own ("attach" is not: it would take a file along), if the result is no longer than 64 KB. Blanks at both
/// ends are dropped; a line end, another control character or a NUL anywhere refuses the address.
///
/// The result begins with its scheme in lower case and holds only what RFC 3986 (section 2) lets an address hold: all
/// other bytes are percent-encoded, blanks, quotes, backslashes and non-ASCII bytes among them, and "%" where no two
/// hexadecimal digits follow. "$", "'", "(" and ")" are encoded as well: they mean the same to a server, and nothing to
/// a desktop's opener that is a script. So "http://host/a b" gives "http://host/a%20b".
std::optional<std::string> openableAddress(std::string_view address);

} // namespace quarrynet

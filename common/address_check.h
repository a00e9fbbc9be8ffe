#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Validation of addresses that the desktop is to open. They come from pages by unknown authors, and the desktop might
/// also run a program or mount a share, so only listed kinds of addresses are allowed.
namespace quarrynet {

/// Returns `address` (bytes in any encoding) in the form in which it may be opened, or nothing if it must not be
/// opened. Allowed are http, https, ftp and ftps addresses with a host, and mailto addresses with ordinary mail fields
/// (not "attach", which would attach a file), if the result has at most 64 KB. Blanks at both ends are removed. An
/// address with a line end, another control character or a NUL is rejected.
///
/// The result begins with its scheme in lower case and has only characters that RFC 3986 (section 2) allows. All other
/// bytes are percent-encoded, such as blanks, quotes, backslashes, non-ASCII bytes, and "%" without two hexadecimal
/// digits after it. "$", "'", "(" and ")" are encoded as well: to a server they mean the same, but a desktop's opener
/// may be a shell script. So "http://host/a b" gives "http://host/a%20b".
std::optional<std::string> openableAddress(std::string_view address);

} // namespace quarrynet

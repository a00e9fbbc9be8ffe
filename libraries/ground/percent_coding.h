#pragma once

#include <string>
#include <string_view>

/// Percent escapes (RFC 3986, section 2.1).
namespace quarrynet {

/// Returns whether `text` begins with "%" and two hexadecimal digits.
bool beginsPercentEscape(std::string_view text);

/// Appends the escape of one byte, with upper-case digits.
void appendPercentEscape(std::string& out, char byte);

/// Returns `text` with every byte escaped that is not an ASCII letter, a digit or one of `kept`.
std::string encodePercent(std::string_view text, std::string_view kept);

/// Does the same as encodePercent(), but keeps the escapes that `text` already has.
std::string encodePercentOnce(std::string_view text, std::string_view kept);

/// Returns a path as URL path (RFC 3986, section 3.3): keeps unreserved characters, "/", "+", ":", "@", "=" and ",",
/// and escapes all other bytes.
std::string encodePath(std::string_view path);

/// Returns `text` with every byte escaped that is not unreserved (RFC 3986, section 2.3), including "/" and ":".
std::string encodeComponent(std::string_view text);

/// Returns `text` with its escapes decoded. A "%" without two hexadecimal digits is kept.
std::string decodePercent(std::string_view text);

/// Returns a query value decoded: "+" becomes a blank, escapes as in decodePercent().
std::string decodeQueryValue(std::string_view value);

} // namespace quarrynet

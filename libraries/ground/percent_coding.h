#pragma once

#include <string>
#include <string_view>

/// Percent escapes (RFC 3986, section 2.1).
namespace quarrynet {

/// Returns whether `text` begins with a "%" and two hexadecimal digits.
bool beginsPercentEscape(std::string_view text);

/// Appends the escape of one byte, with upper-case digits.
void appendPercentEscape(std::string& out, char byte);

/// Returns `text` with an escape for every byte that is neither an ASCII letter, a digit nor one of `kept`.
std::string encodePercent(std::string_view text, std::string_view kept);

/// As encodePercent(), but leaves the escapes that `text` has already.
std::string encodePercentOnce(std::string_view text, std::string_view kept);

/// Returns a path's bytes as a URL path (RFC 3986, section 3.3): unreserved characters, "/", "+", ":", "@", "=" and ","
/// stay, any other byte becomes an escape.
std::string encodePath(std::string_view path);

/// Returns `text` with an escape for every byte that is not unreserved (RFC 3986, section 2.3), "/" and ":" included.
std::string encodeComponent(std::string_view text);

/// Returns `text` with its escapes decoded. A "%" without two hexadecimal digits stands for itself.
std::string decodePercent(std::string_view text);

/// Returns a query value as typed: every "+" is a blank, and escapes are decoded as decodePercent() does.
std::string decodeQueryValue(std::string_view value);

} // namespace quarrynet

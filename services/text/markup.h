#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Texts in HTML pages and addresses. The program that reads the pages searches them for plain text and decodes
/// nothing, so as little is escaped as HTML allows: people see these texts as they are in its lists.
namespace quarrynet::services {

/// These surround a match in the texts that the index returns. Neither byte occurs in indexed text.
inline constexpr char kMatchBegin = '\x01';
inline constexpr char kMatchEnd = '\x02';

/// Escapes UTF-8 text for the content of an element: leaves no "<", and no "&" that begins a character reference.
std::string escapeText(std::string_view text);

/// Escapes UTF-8 text for an attribute's value between double quotes.
std::string escapeAttribute(std::string_view text);

/// Returns escapeText() with "<b>" and "</b>" for kMatchBegin and kMatchEnd.
std::string escapeMatches(std::string_view text);

/// Returns an absolute address that is valid in an attribute without quotes and can be opened unchanged: blanks,
/// quotes, angle brackets, backquotes, control and non-ASCII bytes are percent-encoded; the rest, including escapes, is
/// unchanged.
std::string tidyAddress(std::string_view address);

/// Returns "1,234,567" for 1234567.
std::string withSeparators(std::int64_t number);

/// Returns a size as people read it: "512 bytes", "7.5 MB" (1 KB is 1024 bytes).
std::string readableSize(std::int64_t bytes);

/// Returns `text` with every `what` (not empty), from left to right, replaced by `with`, which is not searched again.
std::string withReplaced(std::string_view text, std::string_view what, std::string_view with);

/// Returns `text` with each run of whitespace and control bytes replaced by one blank, and none at the ends.
std::string collapseBlanks(std::string_view text);

/// Returns bytes from outside as one line of UTF-8 that a terminal shows in their order and obeys in nothing:
/// collapseBlanks() of toUtf8(), without the control characters U+0080 to U+009F and without those that change the
/// direction of writing.
std::string plainLine(std::string_view bytes);

} // namespace quarrynet::services

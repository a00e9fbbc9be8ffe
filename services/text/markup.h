#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Texts into and out of HTML pages and addresses. The program that reads the pages cuts them by plain searches and
/// decodes nothing, so as little is escaped as HTML allows: what a person sees in its lists is what stands here.
namespace quarrynet::services {

/// Stand around a match in the texts that the index hands out. Neither byte occurs in indexed text.
inline constexpr char kMatchBegin = '\x01';
inline constexpr char kMatchEnd = '\x02';

/// UTF-8 text for the inside of an element: no "<" is left, and no "&" that begins a character reference.
std::string escapeText(std::string_view text);

/// The same for an attribute's value between double quotes.
std::string escapeAttribute(std::string_view text);

/// escapeText(), with kMatchBegin and kMatchEnd turned into "<b>" and "</b>".
std::string escapeMatches(std::string_view text);

/// An absolute address as it can stand in an attribute without quotes and be opened as it stands: blanks, quotes, angle
/// brackets, backquotes, control and non-ASCII bytes become percent escapes; the rest, escapes included, is unchanged.
std::string tidyAddress(std::string_view address);

/// 1234567 as "1,234,567".
std::string withSeparators(std::int64_t number);

/// A size as people read it: "512 bytes", "7.5 MB" (1 KB is 1024 bytes).
std::string readableSize(std::int64_t bytes);

/// `text` with every `what` (not empty), read from left to right, replaced by `with`, which is not looked at again.
std::string withReplaced(std::string_view text, std::string_view what, std::string_view with);

/// Runs of white space and control bytes as one blank, none at the ends.
std::string collapseBlanks(std::string_view text);

} // namespace quarrynet::services

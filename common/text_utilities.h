#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Search and replace in whole texts. Texts are bytes; comparison is exact and case-sensitive.
namespace quarrynet {

/// Returns `SourceString` with its first occurrence of `SearchString` replaced, or unchanged when there is none. An
/// empty search text is found at the start, so `ReplaceString` is then inserted there.
std::string ReplaceFirstInstance(std::string_view SourceString, std::string_view SearchString,
                                 std::string_view ReplaceString);

/// Returns `SourceString` with its first `SearchString` replaced repeatedly until none is left. A match that a
/// replacement forms with adjacent text is replaced too: replacing two blanks by one leaves no adjacent blanks. An
/// empty search text gives the empty text; a replacement equal to the search text gives the source.
///
/// Two kinds of replacements would never end, or run out of memory. For them, returns the result of a single pass from
/// left to right, which does not search replaced text again:
/// - The replacement contains the search text.
/// - The replacement is longer than the search text, and replacements that involve earlier ones total more than 64 MiB.
///
/// Memory is proportional to the texts. Time is proportional to the source and the replacements made, at worst times
/// the length of the search text. With a replacement as long as the search text, the number of replacements can be
/// quadratic in the source's length ("ab" by "ba"), so callers with a text from outside must use FindReplaceWithin.
std::string FindReplace(std::string_view SourceString, std::string_view SearchString, std::string_view ReplaceString);

/// Returns the same as FindReplace, or nothing once replacements that involve earlier ones total more than `most`
/// bytes.
std::optional<std::string> FindReplaceWithin(std::string_view SourceString, std::string_view SearchString,
                                             std::string_view ReplaceString, std::size_t most);

/// Returns whether `sought` occurs in `text`; the empty text occurs in every text. The time is proportional to the sum
/// of the two lengths, whatever they contain.
bool containsText(std::string_view text, std::string_view sought);

} // namespace quarrynet

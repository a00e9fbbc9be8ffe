#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Search and replace on whole texts. Texts are bytes, comparison is exact and case-sensitive.
namespace quarrynet {

/// Returns `SourceString` with its first occurrence of `SearchString` replaced, or unchanged when there is none. An
/// empty search text is found at the very start, so `ReplaceString` then goes in front.
std::string ReplaceFirstInstance(std::string_view SourceString, std::string_view SearchString,
                                 std::string_view ReplaceString);

/// Returns `SourceString` with its first `SearchString` replaced again and again until none is left. A match that a
/// replacement forms together with its neighbours is replaced too: two blanks replaced by one leave no two blanks side
/// by side. An empty search text gives the empty text; a replacement equal to the search text gives the source.
///
/// That is the result for every call that ends. Two kinds of calls never end, or not before memory runs out. They
/// return what a single pass from left to right gives, which does not search replaced text again:
/// - The replacement contains the search text.
/// - The replacement is longer than the search text, and replacements that stand on earlier ones sum up to more than
///   64 MiB.
///
/// Memory is proportional to the texts. Time is proportional to the source and to the replacements made, times the
/// length of the search text at worst. With a replacement as long as the search text, the replacements can number the
/// square of the source's length ("ab" by "ba"), so callers that take either text from outside call FindReplaceWithin.
std::string FindReplace(std::string_view SourceString, std::string_view SearchString, std::string_view ReplaceString);

/// Returns what FindReplace returns, or nothing once replacements that stand on earlier ones sum up to more than `most`
/// bytes.
std::optional<std::string> FindReplaceWithin(std::string_view SourceString, std::string_view SearchString,
                                             std::string_view ReplaceString, std::size_t most);

/// Returns whether `sought` occurs in `text`; the empty text occurs in every text. The time is proportional to the sum
/// of the two lengths, whatever they contain.
bool containsText(std::string_view text, std::string_view sought);

} // namespace quarrynet

#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Search and replace on whole texts. Texts are bytes, comparison is exact and case-sensitive.
namespace quarrynet {

/// `SourceString` with its first occurrence of `SearchString` replaced; unchanged when there is none. An empty search
/// text is found at the very start, so `ReplaceString` then goes in front.
std::string ReplaceFirstInstance(std::string_view SourceString, std::string_view SearchString,
                                 std::string_view ReplaceString);

/// `SourceString` with its first `SearchString` replaced again and again until none is left. What a replacement makes
/// together with its neighbours is replaced too: two blanks replaced by one leave no two blanks side by side. An empty
/// search text gives the empty text; a replacement equal to the search text gives the source.
///
/// That is the result for every call that comes to an end. Two kinds of calls do not, or not before memory does, and
/// give what one single pass from left to right gives, in which replaced text is not looked at again:
/// - the replacement holds the search text,
/// - the replacement is longer than the search text, and replacements that stand on earlier ones sum up to more than
///   64 MiB.
///
/// Memory is that of the texts. The time is that of the source and of the replacements made, with a factor of the
/// search text's length at worst. Where the two are of equal length, they may be as many as the source's length squared
/// ("ab" by "ba"), so whoever takes one of them from outside calls FindReplaceWithin.
std::string FindReplace(std::string_view SourceString, std::string_view SearchString, std::string_view ReplaceString);

/// As FindReplace, but nothing once replacements that stand on earlier ones sum up to more than `most` bytes.
std::optional<std::string> FindReplaceWithin(std::string_view SourceString, std::string_view SearchString,
                                             std::string_view ReplaceString, std::size_t most);

/// Whether `sought` occurs in `text`; the empty text occurs in every text. The time is proportional to the two lengths
/// together, whatever they hold.
bool containsText(std::string_view text, std::string_view sought);

} // namespace quarrynet

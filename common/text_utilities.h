#pragma once

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
/// The time is proportional to the text as long as replacements form no new matches, and then to the bytes that pass
/// through, replacements included. Two cases are bounded, because the texts may come out of a page:
/// - the replacement holds the search text (replacing for ever would never end),
/// - replacements form new matches, and too many bytes would pass through: 16 times the source and a mebibyte where the
///   replacement is shorter than the search text (never reached with one of at most 15 bytes), else 4 times.
/// Both give what one single pass from left to right gives, in which replaced text is not looked at again.
std::string FindReplace(std::string_view SourceString, std::string_view SearchString, std::string_view ReplaceString);

/// Whether `sought` occurs in `text`; the empty text occurs in every text. The time is proportional to the two lengths
/// together, whatever they hold.
bool containsText(std::string_view text, std::string_view sought);

} // namespace quarrynet

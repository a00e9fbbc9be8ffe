#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarrynet {

/// How keywords are matched; the values are the positions in the list of modes.
enum class MatchMode : int
{
    AnyKeyword = 0,
    AllKeywords = 1,
    ExactSearch = 2,
};

/// A row of the result list.
struct PresenceRow
{
    std::string keyword;               // or the summary text
    std::optional<std::string> result; // "Found" or "Not Found"; nothing in a summary row

    friend bool operator==(const PresenceRow&, const PresenceRow&) = default;
};

/// Returns the rows that say whether keywords occur in `pageText`, also as parts of words, case-insensitively (see
/// lowerCase). `entries` are the keywords (see keywordEntries), `typed` is the text that they came from; blanks around
/// either are ignored, and an empty keyword occurs in every text. `mode` is the position in the list of modes; any
/// other number gives no rows.
/// - AnyKeyword: a row for each entry, in lower case.
/// - AllKeywords: the same, or a single summary row as soon as one is missing.
/// - ExactSearch: one row for the whole text as typed, or a summary row. The time is proportional to the page and to
///   all keywords together: the page is read once per keyword for up to 32 different keywords, and once in total for
///   more.
std::vector<PresenceRow> presenceRows(std::string_view pageText, const std::vector<std::string>& entries,
                                      std::string_view typed, int mode);

} // namespace quarrynet

#include "search/page/presence.h"

#include <algorithm>
#include <unordered_map>

#include "common/cutting.h"
#include "common/letter_case.h"
#include "common/text_utilities.h"
#include "search/page/KeywordFinder.h"

namespace quarrynet {

namespace {

constexpr const char* kFound = "Found";
constexpr const char* kNotFound = "Not Found";

// At most this many keywords are faster to find one by one.
constexpr std::size_t kFewKeywords = 32;

constexpr std::size_t kPiece = std::size_t{1} << 20;

/// Calls `look` with `page` in lower case, piece by piece, because a whole copy would be the check's largest
/// allocation. Each piece begins with the last `overlap` bytes of the one before. Stops when `look` returns false.
template <class Look>
void readInLowerCase(std::string_view page, std::size_t overlap, Look look)
{
    const std::size_t step = std::max(kPiece, 4 * overlap);
    std::string piece;
    do {
        const std::size_t end = letterBoundary(page, std::min(step, page.size()));
        piece.erase(0, piece.size() - std::min(piece.size(), overlap));
        piece += lowerCase(page.substr(0, end));
        page.remove_prefix(end);
    } while (look(std::string_view(piece)) && !page.empty());
}

/// Returns for each of `keywords`, given in lower case, whether it occurs in `page`.
std::vector<bool> presence(std::string_view page, const std::vector<std::string_view>& keywords)
{
    if (keywords.size() > kFewKeywords) {
        KeywordFinder finder;
        for (const std::string_view keyword : keywords)
            finder.add(keyword);
        readInLowerCase(page, 0, [&](std::string_view piece) {
            finder.read(piece);
            return true;
        });
        return finder.found();
    }
    std::vector<bool> found(keywords.size());
    std::size_t longest = 1;
    for (const std::string_view keyword : keywords)
        longest = std::max(longest, keyword.size());
    readInLowerCase(page, longest - 1, [&](std::string_view piece) {
        bool open = false;
        for (std::size_t i = 0; i < keywords.size(); ++i) {
            if (!found[i])
                found[i] = containsText(piece, keywords[i]);
            open = open || !found[i];
        }
        return open;
    });
    return found;
}

} // namespace

std::vector<PresenceRow> presenceRows(std::string_view pageText, const std::vector<std::string>& entries,
                                      std::string_view typed, int mode)
{
    if (mode == static_cast<int>(MatchMode::ExactSearch)) {
        const std::string phrase = lowerCase(trimBlanks(typed));
        if (!presence(pageText, {phrase})[0])
            return {{"Keyword/s not found in this page", std::nullopt}};
        return {{std::string(typed), kFound}};
    }
    if (mode != static_cast<int>(MatchMode::AnyKeyword) && mode != static_cast<int>(MatchMode::AllKeywords))
        return {};

    std::vector<std::string> keywords;
    keywords.reserve(entries.size());
    for (const std::string& entry : entries)
        keywords.push_back(lowerCase(trimBlanks(entry)));
    std::unordered_map<std::string_view, std::size_t> numbers;
    std::vector<std::string_view> different;
    for (const std::string& keyword : keywords) {
        if (numbers.try_emplace(keyword, different.size()).second)
            different.push_back(keyword);
    }
    const std::vector<bool> found = presence(pageText, different);

    std::vector<PresenceRow> rows;
    rows.reserve(keywords.size());
    for (const std::string& keyword : keywords) {
        const bool isFound = found[numbers.at(keyword)];
        if (!isFound && mode == static_cast<int>(MatchMode::AllKeywords))
            return {{"Not all keywords are found in this page", std::nullopt}};
        rows.push_back({keyword, isFound ? kFound : kNotFound});
    }
    return rows;
}

} // namespace quarrynet

#include "search/page/presence.h"

#include <unordered_map>

#include "common/cutting.h"
#include "common/letter_case.h"
#include "common/text_utilities.h"
#include "search/page/keyword_finder.h"

namespace quarrynet {

namespace {

constexpr const char* kFound = "Found";
constexpr const char* kNotFound = "Not Found";

// Up to this many keywords are quicker to look for one by one.
constexpr std::size_t kFewKeywords = 32;

/// Which keywords occur in `page`; all in lower case. In mode AllKeywords what follows the first missing one is left
/// open.
std::unordered_map<std::string_view, bool> presence(std::string_view page, const std::vector<std::string>& keywords,
                                                    bool all)
{
    std::unordered_map<std::string_view, bool> found;
    std::vector<std::string_view> different;
    for (const std::string& keyword : keywords) {
        if (found.try_emplace(keyword, false).second)
            different.push_back(keyword);
    }
    if (different.size() <= kFewKeywords) {
        for (const std::string_view keyword : different) {
            found[keyword] = containsText(page, keyword);
            if (all && !found[keyword])
                break;
        }
        return found;
    }
    KeywordFinder finder;
    for (const std::string_view keyword : different)
        finder.add(keyword);
    const std::vector<bool> present = finder.foundIn(page);
    for (std::size_t i = 0; i < different.size(); ++i)
        found[different[i]] = present[i];
    return found;
}

} // namespace

std::vector<PresenceRow> presenceRows(std::string_view pageText, const std::vector<std::string>& entries,
                                      std::string_view typed, int mode)
{
    const std::string page = lowerCase(pageText);
    if (mode == static_cast<int>(MatchMode::ExactSearch)) {
        if (!containsText(page, lowerCase(trimBlanks(typed))))
            return {{"Keyword/s not found in this page", std::nullopt}};
        return {{std::string(typed), kFound}};
    }
    if (mode != static_cast<int>(MatchMode::AnyKeyword) && mode != static_cast<int>(MatchMode::AllKeywords))
        return {};

    std::vector<std::string> keywords;
    keywords.reserve(entries.size());
    for (const std::string& entry : entries)
        keywords.push_back(lowerCase(trimBlanks(entry)));
    const bool all = mode == static_cast<int>(MatchMode::AllKeywords);
    const auto found = presence(page, keywords, all);

    std::vector<PresenceRow> rows;
    rows.reserve(keywords.size());
    for (const std::string& keyword : keywords) {
        const bool isFound = found.at(keyword);
        if (all && !isFound)
            return {{"Not all keywords are found in this page", std::nullopt}};
        rows.push_back({keyword, isFound ? kFound : kNotFound});
    }
    return rows;
}

} // namespace quarrynet

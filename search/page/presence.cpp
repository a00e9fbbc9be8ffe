#include "search/page/presence.h"

#include <unordered_map>

#include "common/cutting.h"
#include "common/letter_case.h"
#include "common/text_utilities.h"

namespace quarrynet {

namespace {

constexpr const char* kFound = "Found";
constexpr const char* kNotFound = "Not Found";

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

    std::vector<PresenceRow> rows;
    std::unordered_map<std::string, bool> known;
    for (const std::string& entry : entries) {
        std::string keyword = lowerCase(trimBlanks(entry));
        const auto [found, isNew] = known.try_emplace(keyword, false);
        if (isNew)
            found->second = containsText(page, keyword);
        if (!found->second && mode == static_cast<int>(MatchMode::AllKeywords))
            return {{"Not all keywords are found in this page", std::nullopt}};
        rows.push_back({std::move(keyword), found->second ? kFound : kNotFound});
    }
    return rows;
}

} // namespace quarrynet

#include "crawl/robots.h"

#include <algorithm>
#include <utility>

#include "ground/ascii.h"
#include "ground/percent_coding.h"

namespace quarrynet::services {

namespace {

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlankOrControl(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlankOrControl(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Returns `path` with each octet in one form, so that escaped and plain ones compare equal. Keeps what means something
/// else when escaped: "%2F" is no folder, and a pattern's "*" no plain one.
std::string normalized(std::string_view path)
{
    return encodePercentOnce(path, "-._~!$&'()*+,;=:@/?");
}

/// Returns whether `pattern` matches the beginning of `path`. Each part between stars is looked for once, from left to
/// right, because an earlier place leaves more of the path for the rest.
bool matches(std::string_view pattern, std::string_view path)
{
    const bool toTheEnd = !pattern.empty() && pattern.back() == '$';
    if (toTheEnd)
        pattern.remove_suffix(1);
    std::size_t at = 0;
    for (bool isFirst = true;; isFirst = false) {
        const std::size_t star = std::min(pattern.find('*'), pattern.size());
        const std::string_view part = pattern.substr(0, star);
        const bool isLast = star == pattern.size();
        if (isLast && toTheEnd && !isFirst)
            return path.size() - at >= part.size() && path.ends_with(part);
        const std::size_t place = isFirst ? (path.starts_with(part) ? 0 : std::string_view::npos) : path.find(part, at);
        if (place == std::string_view::npos)
            return false;
        at = place + part.size();
        if (isLast)
            return !toTheEnd || at == path.size();
        pattern.remove_prefix(star + 1);
    }
}

} // namespace

RobotsRules::RobotsRules(std::string_view text, std::string_view product)
{
    text = text.substr(0, kMaxRobots);
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    std::vector<Rule> general;
    bool ofProduct = false;
    bool ofAll = false;
    bool named = false;  // some group is for the product
    bool inRules = true; // a user-agent line after a rule begins a group
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        line = line.substr(0, line.find('#'));
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos)
            continue;
        const std::string_view field = trimmed(line.substr(0, colon));
        const std::string_view value = trimmed(line.substr(colon + 1));
        if (equalsIgnoringCase(field, "user-agent")) {
            if (std::exchange(inRules, false))
                ofProduct = ofAll = false;
            ofProduct = ofProduct || equalsIgnoringCase(value, product);
            ofAll = ofAll || value == "*";
            named = named || ofProduct;
            continue;
        }
        const bool allow = equalsIgnoringCase(field, "allow");
        if (!allow && !equalsIgnoringCase(field, "disallow"))
            continue;
        inRules = true;
        if (value.empty() || value.size() > kMaxRobotsRule ||
            static_cast<std::size_t>(std::count(value.begin(), value.end(), '*')) > kMaxRobotsStars)
            continue;
        for (const auto& [isOf, rules] : {std::pair(ofProduct, &rules_), std::pair(ofAll, &general)}) {
            if (isOf && rules->size() < kMaxRobotsRules)
                rules->push_back({normalized(value), allow});
        }
    }
    if (!named)
        rules_ = std::move(general);
}

bool RobotsRules::allows(std::string_view path) const
{
    const std::string wanted = normalized(path);
    const Rule* decides = nullptr;
    for (const Rule& rule : rules_) {
        const bool stronger = decides == nullptr || rule.pattern.size() > decides->pattern.size() ||
                              (rule.pattern.size() == decides->pattern.size() && rule.allow);
        if (stronger && matches(rule.pattern, wanted))
            decides = &rule;
    }
    return decides == nullptr || decides->allow;
}

} // namespace quarrynet::services

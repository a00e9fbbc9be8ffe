#include "crawl/robots.h"

#include <algorithm>
#include <cstdint>
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

enum class Text : std::uint8_t
{
    Path,
    Pattern, ///< in which a plain "*", and a plain "$" at the end, mean something else than their escapes
};

/// Returns `text` with each octet in one form (RFC 9309, section 2.2.2), so that escaped and plain ones compare equal.
/// Only "/" and "?" stay as they are, because their escapes separate nothing.
std::string normalized(std::string_view text, Text kind)
{
    std::string out;
    for (; !text.empty(); text.remove_prefix(1)) {
        char c = text.front();
        const bool isEscape = beginsPercentEscape(text);
        if (isEscape) {
            c = static_cast<char>(hexDigitValue(text[1]) * 16 + hexDigitValue(text[2]));
            text.remove_prefix(2);
        }
        const bool hasMeaning =
            c == '/' || c == '?' || (kind == Text::Pattern && (c == '*' || (c == '$' && text.size() == 1)));
        const bool isPlain = isAsciiAlphanumeric(c) || std::string_view("-._~!&'()+,;=:@").find(c) != std::string::npos;
        if (isPlain || (hasMeaning && !isEscape))
            out.push_back(c);
        else
            appendPercentEscape(out, c);
    }
    return out;
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
    if (text.size() > kMaxRobots)
        text = text.substr(0, text.find_last_of("\r\n", kMaxRobots) + 1);
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
                rules->push_back({normalized(value, Text::Pattern), allow});
        }
    }
    if (!named)
        rules_ = std::move(general);
}

bool RobotsRules::allows(std::string_view path) const
{
    const std::string wanted = normalized(path, Text::Path);
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

#include "text/languages.h"

#include <algorithm>
#include <array>
#include <optional>

#include "ground/ascii.h"

namespace quarrynet::services {

namespace {

// kCodes, with "en" first; Row; and kRows, sorted by the English text
#include "translations_table.inc"

constexpr int kFullWeight = 1000;

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t";
    const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
    const std::size_t last = text.find_last_not_of(kBlanks);
    return last == std::string_view::npos ? std::string_view() : text.substr(begin, last + 1 - begin);
}

/// Returns a weight such as "0.8" in thousandths; nothing if it is malformed (RFC 9110, section 12.4.2).
std::optional<int> weightOf(std::string_view text)
{
    if (text.empty() || text.size() > 5 || (text.front() != '0' && text.front() != '1') ||
        (text.size() > 1 && text[1] != '.'))
        return std::nullopt;
    int weight = text.front() == '1' ? kFullWeight : 0;
    int place = kFullWeight / 10;
    for (const char c : text.substr(std::min<std::size_t>(2, text.size()))) {
        if (!isAsciiDigit(c))
            return std::nullopt;
        weight += (c - '0') * place;
        place /= 10;
    }
    return weight <= kFullWeight ? std::optional(weight) : std::nullopt;
}

/// A range of an Accept-Language field with its weight.
struct Range
{
    std::string_view name;
    int weight = 0;
};

std::optional<Range> rangeOf(std::string_view element)
{
    const std::size_t semicolon = element.find(';');
    const std::string_view name = trimmed(element.substr(0, semicolon));
    if (name.empty())
        return std::nullopt;
    if (semicolon == std::string_view::npos)
        return Range{name, kFullWeight};
    const std::string_view parameter = trimmed(element.substr(semicolon + 1));
    if (parameter.size() < 2 || (parameter[0] != 'q' && parameter[0] != 'Q') || parameter[1] != '=')
        return std::nullopt;
    const std::optional<int> weight = weightOf(parameter.substr(2));
    return weight ? std::optional(Range{name, *weight}) : std::nullopt;
}

/// What a field says about one language of the table.
struct Wish
{
    int weight = 0;
    std::size_t place = 0; ///< among the ranges of the field
    bool exact = false;    ///< a range without subtags names the language
    bool named = false;
};

void take(Wish& wish, const Range& range, std::size_t place, bool exact)
{
    const bool better = !wish.named || (exact && !wish.exact) || (exact == wish.exact && range.weight > wish.weight);
    if (better)
        wish = {range.weight, place, exact, true};
}

} // namespace

Language preferredLanguage(std::string_view field)
{
    field = field.substr(0, kMaxAcceptLanguage);
    std::array<Wish, kCodes.size()> wishes{};
    Wish others;
    for (std::size_t place = 0; place < kMaxLanguageRanges && !field.empty(); ++place) {
        const std::size_t comma = std::min(field.find(','), field.size());
        const std::optional<Range> range = rangeOf(field.substr(0, comma));
        field.remove_prefix(std::min(comma + 1, field.size()));
        if (!range)
            continue;
        if (range->name == "*")
            take(others, *range, place, true);
        const std::string_view language = range->name.substr(0, range->name.find('-'));
        for (std::size_t i = 0; i < kCodes.size(); ++i) {
            if (equalsIgnoringCase(language, kCodes[i]))
                take(wishes[i], *range, place, language.size() == range->name.size());
        }
    }
    std::size_t best = 0;
    for (Wish& wish : wishes) {
        if (!wish.named)
            wish = others;
    }
    for (std::size_t i = 1; i < wishes.size(); ++i) {
        const Wish& wish = wishes[i];
        if (wish.weight > wishes[best].weight ||
            (wish.weight == wishes[best].weight && wish.weight > 0 && wish.place < wishes[best].place))
            best = i;
    }
    return static_cast<Language>(best);
}

std::string_view codeOf(Language language)
{
    return kCodes[static_cast<std::size_t>(language)];
}

std::string_view translated(std::string_view english, Language language)
{
    if (language == Language::English)
        return english;
    const auto* const row =
        std::lower_bound(kRows.begin(), kRows.end(), english,
                         [](const Row& each, std::string_view text) { return each.english < text; });
    if (row == kRows.end() || row->english != english)
        return english;
    const std::string_view text = row->others[static_cast<std::size_t>(language) - 1];
    return text.empty() ? english : text;
}

std::string translated(std::string_view english, Language language, std::string_view argument)
{
    std::string text(translated(english, language));
    if (const std::size_t mark = text.find("%1"); mark != std::string::npos)
        text.replace(mark, 2, argument);
    return text;
}

} // namespace quarrynet::services

#include "search/page/reduction/reduction.h"

#include <cstdint>
#include <optional>
#include <random>

#include "search/page/reduction/TagRemoval.h"

namespace quarrynet {

namespace {

void appendWithoutQuotes(std::string& text, std::string_view part)
{
    std::size_t from = 0;
    for (std::size_t at = part.find('"'); at != std::string_view::npos; at = part.find('"', from)) {
        text.append(part, from, at - from);
        from = at + 1;
    }
    text.append(part, from);
}

/// Returns the reduced text of a page in which no tag has a second "<", as in most pages, or nothing for any other
/// page. Needs no copy of the page and no record of its tags.
std::optional<std::string> withoutPlainTags(std::string_view body)
{
    std::string text;
    text.reserve(body.size());
    while (true) {
        const std::size_t open = body.find('<');
        appendWithoutQuotes(text, body.substr(0, open));
        if (open == std::string_view::npos)
            return text;
        body.remove_prefix(open);
        const std::size_t close = body.find('>');
        if (close == std::string_view::npos) {
            appendWithoutQuotes(text, body);
            return text;
        }
        if (body.substr(1, close).find('<') != std::string_view::npos)
            return std::nullopt;
        body.remove_prefix(close + 1);
    }
}

} // namespace

std::string reducedPage(std::string_view body)
{
    std::optional<std::string> reduced = withoutPlainTags(body);
    if (!reduced) {
        std::string text;
        text.reserve(body.size());
        appendWithoutQuotes(text, body);
        std::random_device random;
        while (!reduced) // about one page in many thousands needs a retry
            reduced = TagRemoval((std::uint64_t{random()} << 32) | random()).run(text);
    }
    return reduced->empty() ? std::string(body) : *std::move(reduced);
}

} // namespace quarrynet

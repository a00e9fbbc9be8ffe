#include "common/text_utilities.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

namespace quarrynet {

namespace {

// Maximum length of a search text for find(), whose cost per byte of the text may be that length.
constexpr std::size_t kShortSearch = 32;

// Maximum total length of replacements that involve earlier ones in a growing text, which might never end.
constexpr std::size_t kMostFormed = std::size_t{64} << 20;

std::string replaceInOnePass(std::string_view source, std::string_view sought, std::string_view replacement)
{
    std::string out;
    std::size_t from = 0;
    for (std::size_t at = source.find(sought); at != std::string_view::npos; at = source.find(sought, from)) {
        out.append(source, from, at - from).append(replacement);
        from = at + sought.size();
    }
    return out.append(source, from);
}

/// Replaces matches until none is left. Returns nothing once replacements that involve earlier ones total more than
/// `most` bytes.
std::optional<std::string> rewritten(std::string_view source, std::string_view sought, std::string_view replacement,
                                     std::size_t most)
{
    // `out` has no matches. The texts in `unread`, the rest of replacements and of the source, follow it, the last one
    // first. So the first match of the whole text is always the first one that `out` ends with.
    std::string out(source, 0, source.find(sought));
    std::vector<std::string_view> unread{source.substr(out.size())};
    std::size_t replaced = 0; // number of source bytes read before the last replacement
    while (unread.size() > 1 || !unread.front().empty()) {
        // Only the search text's last byte can complete a match.
        std::string_view& next = unread.back();
        const std::size_t end = next.find(sought.back());
        const std::size_t taken = end == std::string_view::npos ? next.size() : end + 1;
        out.append(next, 0, taken);
        next.remove_prefix(taken);
        const std::size_t read = source.size() - unread.front().size();
        if (next.empty() && unread.size() > 1)
            unread.pop_back();
        if (end == std::string_view::npos || !out.ends_with(sought))
            continue;
        if (read - replaced < sought.size()) { // part of the match comes from a replacement
            if (replacement.size() > most)
                return std::nullopt;
            most -= replacement.size();
        }
        replaced = read;
        out.resize(out.size() - sought.size());
        if (!replacement.empty())
            unread.push_back(replacement);
    }
    return out;
}

} // namespace

std::string ReplaceFirstInstance(std::string_view SourceString, std::string_view SearchString,
                                 std::string_view ReplaceString)
{
    const std::size_t at = SourceString.find(SearchString);
    if (at == std::string_view::npos)
        return std::string(SourceString);
    std::string out;
    out.reserve(SourceString.size() - SearchString.size() + ReplaceString.size());
    return out.append(SourceString, 0, at).append(ReplaceString).append(SourceString, at + SearchString.size());
}

std::string FindReplace(std::string_view SourceString, std::string_view SearchString, std::string_view ReplaceString)
{
    // The replacement of a text that does not grow always ends.
    const bool grows = ReplaceString.size() > SearchString.size();
    const std::size_t most = grows ? kMostFormed : std::numeric_limits<std::size_t>::max();
    if (std::optional<std::string> done = FindReplaceWithin(SourceString, SearchString, ReplaceString, most))
        return *std::move(done);
    return replaceInOnePass(SourceString, SearchString, ReplaceString);
}

std::optional<std::string> FindReplaceWithin(std::string_view SourceString, std::string_view SearchString,
                                             std::string_view ReplaceString, std::size_t most)
{
    if (SearchString.empty())
        return std::string();
    if (SearchString == ReplaceString)
        return std::string(SourceString);
    if (containsText(ReplaceString, SearchString))
        return replaceInOnePass(SourceString, SearchString, ReplaceString);
    return rewritten(SourceString, SearchString, ReplaceString, most);
}

bool containsText(std::string_view text, std::string_view sought)
{
    if (sought.size() <= kShortSearch || sought.size() > text.size())
        return text.find(sought) != std::string_view::npos;
    // Knuth-Morris-Pratt: the state is the length of the longest prefix of `sought` that the bytes read so far end
    // with.
    std::vector<std::size_t> shorter(sought.size() + 1); // the next shorter state that fits the same bytes
    const auto next = [&](std::size_t state, char byte) {
        while (state > 0 && sought[state] != byte)
            state = shorter[state];
        return sought[state] == byte ? state + 1 : 0;
    };
    for (std::size_t i = 1; i < sought.size(); ++i)
        shorter[i + 1] = next(shorter[i], sought[i]);
    std::size_t state = 0;
    for (const char byte : text) {
        state = next(state, byte);
        if (state == sought.size())
            return true;
    }
    return false;
}

} // namespace quarrynet

#include "common/text_utilities.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace quarrynet {

namespace {

// Up to this length a search text is looked for with find(), which may cost its length for each byte of the text.
constexpr std::size_t kShortSearch = 32;

// How many bytes may pass for each byte of the source once replacements form new matches. A shorter replacement makes
// the text shrink and so costs time only; one that does not may make it grow, and memory with it.
constexpr std::size_t kPassesShrinking = 16;
constexpr std::size_t kPassesGrowing = 4;
constexpr std::size_t kMebibyte = std::size_t{1} << 20;

/// Knuth, Morris and Pratt's automaton for one search text. Its state is how many bytes of the search text the bytes
/// read so far end with.
class Matcher
{
public:
    explicit Matcher(std::string_view sought) : sought_(sought), fallback_(sought.size() + 1)
    {
        // The failure links that skip states which would fail on the same byte: they bound a single step by the
        // logarithm of the length, also where a state is restored again and again.
        fallback_[0] = kNone;
        std::size_t border = 0;
        for (std::size_t i = 1; i < sought_.size(); ++i) {
            fallback_[i] = sought_[i] == sought_[border] ? fallback_[border] : border;
            while (border != kNone && sought_[i] != sought_[border])
                border = fallback_[border];
            border = border == kNone ? 0 : border + 1;
        }
    }

    std::size_t next(std::size_t state, char byte) const
    {
        while (state != kNone && sought_[state] != byte)
            state = fallback_[state];
        return state == kNone ? 0 : state + 1;
    }

private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::string_view sought_;
    std::vector<std::size_t> fallback_;
};

std::string replaceInOnePass(std::string_view source, std::string_view sought, std::string_view replacement)
{
    std::string out;
    std::size_t from = 0;
    if (sought.size() <= kShortSearch) {
        for (std::size_t at = source.find(sought); at != std::string_view::npos; at = source.find(sought, from)) {
            out.append(source, from, at - from).append(replacement);
            from = at + sought.size();
        }
        return out.append(source, from);
    }
    const Matcher matcher(sought);
    std::size_t state = 0;
    for (std::size_t i = 0; i < source.size(); ++i) {
        state = matcher.next(state, source[i]);
        if (state == sought.size()) {
            out.append(source, from, i + 1 - sought.size() - from).append(replacement);
            from = i + 1;
            state = 0;
        }
    }
    return out.append(source, from);
}

/// Whether a replacement can ever form a match with bytes beside it. Errs on the side of yes.
bool canJoin(std::string_view sought, std::string_view replacement)
{
    if (sought.size() > kShortSearch)
        return true;
    for (std::size_t split = 1; split < sought.size(); ++split) {
        const std::string_view head = sought.substr(0, split);
        const std::string_view tail = sought.substr(split);
        if (replacement.starts_with(tail) || tail.starts_with(replacement))
            return true;
        if (replacement.ends_with(head) || head.ends_with(replacement))
            return true;
    }
    return false;
}

/// Reads `settled`, then `rest`, and keeps the result as a stack of bytes, each with the automaton's state behind it. A
/// match is popped and its replacement read as if it came next, so the earliest match is always the one replaced.
/// Nothing when too many bytes pass.
std::optional<std::string> replaceOnStack(std::string settled, std::string_view rest, std::string_view sought,
                                          std::string_view replacement, std::size_t bytesLeft)
{
    const Matcher matcher(sought);
    // What the match and its replacement begin with alike may stay on the stack.
    const auto [soughtEnd, replacementEnd] =
        std::mismatch(sought.begin(), sought.end(), replacement.begin(), replacement.end());
    const auto kept = static_cast<std::size_t>(soughtEnd - sought.begin());
    const std::string_view added = replacement.substr(kept);

    std::string out = std::move(settled);
    std::vector<std::uint32_t> states;
    states.reserve(out.size() + rest.size() + 1);
    states.push_back(0);
    for (const char byte : out)
        states.push_back(static_cast<std::uint32_t>(matcher.next(states.back(), byte)));

    std::vector<std::size_t> reading; // how far each replacement under way has been read; the innermost is last
    std::size_t at = 0;
    while (true) {
        char byte = 0;
        if (!reading.empty()) {
            if (reading.back() == added.size()) {
                reading.pop_back();
                continue;
            }
            byte = added[reading.back()++];
            if (reading.back() == added.size())
                reading.pop_back();
        } else if (at < rest.size()) {
            byte = rest[at++];
        } else {
            return out;
        }
        if (bytesLeft-- == 0)
            return std::nullopt;
        const std::size_t state = matcher.next(states.back(), byte);
        out.push_back(byte);
        states.push_back(static_cast<std::uint32_t>(state));
        if (state == sought.size()) {
            out.resize(out.size() - sought.size() + kept);
            states.resize(out.size() + 1);
            if (!added.empty())
                reading.push_back(0);
        }
    }
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
    if (SearchString.empty())
        return {};
    if (SearchString == ReplaceString || SearchString.size() > SourceString.size())
        return std::string(SourceString);
    if (!canJoin(SearchString, ReplaceString) || containsText(ReplaceString, SearchString))
        return replaceInOnePass(SourceString, SearchString, ReplaceString);

    const std::size_t passes = ReplaceString.size() < SearchString.size() ? kPassesShrinking : kPassesGrowing;
    const std::size_t budget = passes * (SourceString.size() + kMebibyte);
    std::string out;
    std::string_view rest = SourceString;
    if (SearchString.size() <= kShortSearch) {
        // As long as no replacement forms a match with its neighbours, jumping from match to match is the same.
        const std::size_t reach = SearchString.size() - 1;
        std::string joint;
        while (true) {
            const std::size_t at = rest.find(SearchString);
            if (at == std::string_view::npos)
                return out.append(rest);
            out.append(rest, 0, at);
            rest.remove_prefix(at + SearchString.size());
            const std::size_t tail = std::min(reach, out.size());
            joint.assign(out, out.size() - tail).append(ReplaceString).append(rest, 0, reach);
            out.append(ReplaceString);
            if (joint.find(SearchString) != std::string::npos)
                break;
        }
        // The automaton reads the bytes before the joint as settled, so they must end in front of its match.
        const std::size_t unsettled = std::min(out.size(), ReplaceString.size() + reach);
        std::string again(out, out.size() - unsettled);
        out.resize(out.size() - unsettled);
        again.append(rest);
        if (std::optional<std::string> done =
                replaceOnStack(std::move(out), again, SearchString, ReplaceString, budget))
            return *std::move(done);
    } else if (std::optional<std::string> done = replaceOnStack({}, rest, SearchString, ReplaceString, budget)) {
        return *std::move(done);
    }
    return replaceInOnePass(SourceString, SearchString, ReplaceString);
}

bool containsText(std::string_view text, std::string_view sought)
{
    if (sought.size() <= kShortSearch || sought.size() > text.size())
        return text.find(sought) != std::string_view::npos;
    const Matcher matcher(sought);
    std::size_t state = 0;
    for (const char byte : text) {
        state = matcher.next(state, byte);
        if (state == sought.size())
            return true;
    }
    return false;
}

} // namespace quarrynet

#include "common/text_utilities.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <optional>
#include <vector>

namespace quarrynet {

namespace {

// Up to this length a search text is looked for with find(), which may cost its length for each byte of the text.
constexpr std::size_t kShortSearch = 32;

// What replacements that stand on earlier ones may sum up to in a text that grows: it need never end.
constexpr std::size_t kMostFormed = std::size_t{64} << 20;

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
    for (std::size_t at = source.find(sought); at != std::string_view::npos; at = source.find(sought, from)) {
        out.append(source, from, at - from).append(replacement);
        from = at + sought.size();
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

/// The text during the replacements: `out` is free of matches, and what follows it is `unread`, its next byte last, and
/// then the rest of the source. So the first match of the whole text is always the first one that `out` ends with.
class Rewriting
{
public:
    Rewriting(std::string_view source, std::string_view sought, std::string_view replacement)
        : source_(source)
        , sought_(sought)
        , replacement_(replacement)
        , kept_(static_cast<std::size_t>(
              std::mismatch(sought.begin(), sought.end(), replacement.begin(), replacement.end()).first -
              sought.begin()))
        , backwards_(replacement.rbegin(), replacement.rend() - static_cast<std::ptrdiff_t>(kept_))
        , joins_(canJoin(sought, replacement))
    {}

    /// The text without a match, or nothing once replacements that stand on earlier ones sum up to more than `most`
    /// bytes.
    std::optional<std::string> run(std::size_t most)
    {
        std::size_t searched = 0; // from here on nothing but the source follows, and no match has been looked for
        for (std::size_t at = source_.find(sought_); at != std::string_view::npos;
             at = source_.find(sought_, searched)) {
            leapTo(at);
            read_ = searched = at + sought_.size();
            if (!joins_) {
                out_.append(replacement_);
                continue;
            }
            out_.append(replacement_, 0, kept_);
            unread_ = backwards_;
            // A match that the replacement is part of ends within it or so soon behind it.
            while (!unread_.empty() || (read_ - searched < sought_.size() - 1 && read_ < source_.size())) {
                readByte();
                if (out_.back() != sought_.back() || !std::string_view(out_).ends_with(sought_))
                    continue;
                if (replacement_.size() > most)
                    return std::nullopt;
                most -= replacement_.size();
                out_.resize(out_.size() - sought_.size() + kept_);
                unread_.append(backwards_);
                searched = read_;
            }
        }
        return std::move(out_.append(source_, read_));
    }

private:
    /// Takes the source up to `at`, or gives back what was read behind it.
    void leapTo(std::size_t at)
    {
        if (at >= read_)
            out_.append(source_, read_, at - read_);
        else
            out_.resize(out_.size() - (read_ - at));
    }

    void readByte()
    {
        if (unread_.empty()) {
            out_.push_back(source_[read_++]);
        } else {
            out_.push_back(unread_.back());
            unread_.pop_back();
        }
    }

    std::string_view source_;
    std::string_view sought_;
    std::string_view replacement_;
    std::size_t kept_;      // how many bytes a match and its replacement begin with alike: they stay where they are
    std::string backwards_; // the rest of the replacement
    bool joins_;
    std::string out_;
    std::string unread_;
    std::size_t read_ = 0; // of the source
};

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
    // A text that does not grow comes to an end by itself.
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
    return Rewriting(SourceString, SearchString, ReplaceString).run(most);
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

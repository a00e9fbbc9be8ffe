#include "search/page/reduction/TagRemoval.h"

#include <algorithm>
#include <span>

#include "search/page/reduction/wide_product.h"

namespace quarrynet {

namespace {

// Fingerprints are polynomials over the field of this prime.
constexpr std::uint64_t kPrime = (std::uint64_t{1} << 61) - 1;

constexpr std::size_t kSmallPowers = 256;

// Approximate number of bytes per different tag in a page with many tags.
constexpr std::size_t kBytesPerTag = 48;

std::uint64_t multiply(std::uint64_t a, std::uint64_t b)
{
    const WideProduct product = multiplyWide(a, b);
    const std::uint64_t sum = (product.low & kPrime) + (product.high << 3 | product.low >> 61);
    return sum >= kPrime ? sum - kPrime : sum;
}

std::uint64_t append(std::uint64_t fingerprint, std::uint64_t base, char byte)
{
    const std::uint64_t sum = multiply(fingerprint, base) + static_cast<unsigned char>(byte) + 1;
    return sum >= kPrime ? sum - kPrime : sum;
}

/// Returns a hash of `fingerprint`. Neighbouring fingerprints lie at regular distances; their hashes must not.
std::uint32_t hashOf(std::uint64_t fingerprint)
{
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15; // any odd number without a pattern
    const std::uint64_t hashed = multiply(fingerprint, fingerprint ^ (kFactor >> 3));
    return static_cast<std::uint32_t>(hashed ^ (hashed >> 32));
}

} // namespace

TagRemoval::TagRemoval(std::uint64_t base) : base_(base % kPrime), smallPowers_{1}, largePowers_{1}, index_(base) {}

TagRemoval::Round TagRemoval::firstFrom(const ListPool<Round>::List& rounds, Round round) const
{
    const std::span<const Round> all = rounds_.of(rounds);
    const auto found = std::lower_bound(all.begin(), all.end(), round);
    return found == all.end() ? kNever : *found;
}

std::optional<std::string> TagRemoval::run(std::string_view text)
{
    out_.reserve(text.size());
    index_.expect(text.size() / kBytesPerTag);
    std::size_t at = 0;
    while (true) {
        if (opens_.empty()) {
            const std::size_t open = text.find('<', at);
            out_.append(text, at, open - at);
            if (open == std::string_view::npos)
                return std::move(out_);
            at = open;
        }
        const std::size_t close = text.find('>', at);
        if (close == std::string_view::npos)
            return std::move(out_.append(text, at));
        const std::string_view segment = text.substr(at, close + 1 - at);
        if (opens_.empty() && segment.find('<', 1) == std::string_view::npos)
            noteTag(segment);
        else if (!closeTag(segment))
            return std::nullopt;
        at = close + 1;
    }
}

/// Processes the text up to a ">" that may end several tags. Returns false after a fingerprint collision.
bool TagRemoval::closeTag(std::string_view segment)
{
    const std::size_t open = segment.rfind('<');
    std::string_view text = segment;
    if (open == std::string_view::npos) {
        push(segment);
        text = std::string_view(out_).substr(opens_.back().at);
    } else {
        text = segment.substr(open);
    }
    const TagIndex::Key key = index_.key(text);
    const TagIndex::Entry* const last = index_.find(key);
    if (last == nullptr)
        return startRound(open == std::string_view::npos ? std::string_view() : segment, key.hash);
    if (open != std::string_view::npos)
        push(segment);
    const Match match = earliest(*last);
    if (match.round == kNever)
        return startRound({}, key.hash);
    if (match.nested != nullptr && std::string_view(out_).substr(opens_[match.open].at) != match.nested->text)
        return false;
    remove(match);
    return true;
}

/// Records the round of a tag with a single "<".
void TagRemoval::noteTag(std::string_view tag)
{
    TagIndex::Entry& entry = index_.at(tag);
    if (entry.first == 0)
        entry.first = ++round_;
}

void TagRemoval::push(std::string_view segment)
{
    const std::size_t before = opens_.size();
    const std::size_t end = out_.size();
    for (std::size_t i = 0; i < segment.size(); ++i) {
        if (segment[i] == '<')
            opens_.push_back({end + i, fingerprint_});
        fingerprint_ = append(fingerprint_, base_, segment[i]);
    }
    out_.append(segment);
    if (opens_.size() != before)
        arrivals_.push_back({before, 0});
}

TagRemoval::Match TagRemoval::earliest(const TagIndex::Entry& entryOfLast)
{
    const std::size_t top = opens_.size() - 1;
    Match best{entryOfLast.first, top, nullptr};
    const bool inTime = entryOfLast.first != 0 && entryOfLast.first >= arrivals_.back().round;
    if (entryOfLast.more == 0) {
        if (!inTime)
            best.round = kNever;
        return best;
    }
    const LastTag& last = lastTags_[entryOfLast.more - 1];
    if (!inTime)
        best.round = firstFrom(last.later, arrivals_.back().round);
    const std::span<const NestedRound> nestedRounds = nestedRounds_.of(last.nested);
    if (nestedRounds.empty() || top == 0)
        return best;

    // The bytes that were here from the start are examined only this once.
    std::size_t arrived = arrivals_.back().round == 0 ? arrivals_.back().firstOpen : opens_.size();
    for (std::size_t open = top; open-- > arrived;)
        consider(open, 0, best);
    arrived = std::min(arrived, top);
    if (arrived == 0)
        return best;

    // Arrived bytes may be examined repeatedly. The search begins round by round: the rounds before the last arrival
    // are past for all of them, so it never goes back.
    auto entry = std::lower_bound(nestedRounds.begin(), nestedRounds.end(), arrivalOf(arrived - 1),
                                  [](const NestedRound& nested, Round round) { return nested.round < round; });
    for (std::size_t steps = 0; steps < arrived; ++steps, ++entry) {
        if (entry == nestedRounds.end() || entry->round >= best.round)
            return best;
        const NestedTag& tag = nestedTags_[entry->tag - 1];
        if (tag.opens > opens_.size())
            continue;
        const std::size_t open = opens_.size() - tag.opens;
        if (open < arrived && opens_[open].at + tag.text.size() == out_.size() && arrivalOf(open) <= entry->round &&
            fingerprintFrom(opens_[open]) == tag.fingerprint)
            return {entry->round, open, &tag};
    }
    std::size_t open = arrived;
    for (auto arrival = arrivals_.rbegin(); arrival != arrivals_.rend() && arrival->round < best.round; ++arrival) {
        while (open > arrival->firstOpen)
            consider(--open, arrival->round, best);
    }
    return best;
}

void TagRemoval::consider(std::size_t open, Round arrived, Match& best)
{
    const std::uint32_t number = nestedTag(fingerprintFrom(opens_[open]));
    if (number == HashSlots::kNone)
        return;
    const NestedTag& tag = nestedTags_[number - 1];
    if (opens_[open].at + tag.text.size() != out_.size())
        return;
    const Round round = firstFrom(tag.rounds, arrived);
    if (round < best.round)
        best = {round, open, &tag};
}

/// Makes the text from the first open on, followed by `unread`, the tag of a new round. `hashOfLast` is the hash of its
/// last tag. Returns false after a fingerprint collision.
bool TagRemoval::startRound(std::string_view unread, std::uint32_t hashOfLast)
{
    const std::uint64_t print = appended(fingerprint_, unread);
    const std::size_t opens = opens_.size() + static_cast<std::size_t>(std::count(unread.begin(), unread.end(), '<'));
    std::string_view tag = unread;
    if (!opens_.empty()) {
        const std::size_t begin = opens_.front().at;
        tag = keep(std::string_view(out_).substr(begin), unread);
        out_.resize(begin);
        opens_.clear();
        arrivals_.clear();
        fingerprint_ = 0;
    }
    ++round_;
    const std::size_t last = tag.rfind('<');
    TagIndex::Entry& entry = index_.at({tag.substr(last), hashOfLast});
    if (last == 0) {
        if (entry.first == 0)
            entry.first = round_;
        else
            rounds_.append(details(entry).later, round_);
        return true;
    }
    std::uint32_t number = nestedTag(print);
    if (number == HashSlots::kNone) {
        nestedTags_.push_back({tag, print, static_cast<std::uint32_t>(opens), {}});
        number = static_cast<std::uint32_t>(nestedTags_.size());
        nestedSlots_.add(hashOf(print), number);
    } else if (nestedTags_[number - 1].text != tag) {
        return false;
    }
    rounds_.append(nestedTags_[number - 1].rounds, round_);
    nestedRounds_.append(details(entry).nested, {round_, number});
    return true;
}

/// Stores the two texts, one after the other, at an address that stays valid. Returns that copy.
std::string_view TagRemoval::keep(std::string_view first, std::string_view second)
{
    constexpr std::size_t kTogether = 65536;
    const std::size_t length = first.size() + second.size();
    if (texts_.empty() || texts_.back().capacity() - texts_.back().size() < length)
        texts_.emplace_back().reserve(std::max(kTogether, length));
    std::string& texts = texts_.back();
    texts.append(first).append(second);
    return std::string_view(texts).substr(texts.size() - length);
}

/// Returns the number of the tag with this fingerprint, or HashSlots::kNone.
std::uint32_t TagRemoval::nestedTag(std::uint64_t fingerprint) const
{
    return nestedSlots_.find(hashOf(fingerprint),
                             [&](std::uint32_t number) { return nestedTags_[number - 1].fingerprint == fingerprint; });
}

void TagRemoval::remove(const Match& match)
{
    out_.resize(opens_[match.open].at);
    fingerprint_ = opens_[match.open].fingerprint;
    opens_.resize(match.open);
    while (!arrivals_.empty() && arrivals_.back().firstOpen >= match.open)
        arrivals_.pop_back();
    std::size_t first = match.open;
    while (!arrivals_.empty() && arrivals_.back().round <= match.round) {
        first = arrivals_.back().firstOpen;
        arrivals_.pop_back();
    }
    if (first != match.open)
        arrivals_.push_back({first, match.round});
}

TagRemoval::LastTag& TagRemoval::details(TagIndex::Entry& entry)
{
    if (entry.more == 0) {
        lastTags_.emplace_back();
        entry.more = static_cast<std::uint32_t>(lastTags_.size());
    }
    return lastTags_[entry.more - 1];
}

TagRemoval::Round TagRemoval::arrivalOf(std::size_t open) const
{
    const auto after = std::upper_bound(arrivals_.begin(), arrivals_.end(), open,
                                        [](std::size_t index, const Arrival& a) { return index < a.firstOpen; });
    return std::prev(after)->round;
}

/// Returns the fingerprint of a text followed by `text`; `fingerprint` is that of the first text alone.
std::uint64_t TagRemoval::appended(std::uint64_t fingerprint, std::string_view text) const
{
    for (const char byte : text)
        fingerprint = append(fingerprint, base_, byte);
    return fingerprint;
}

std::uint64_t TagRemoval::fingerprintFrom(const Open& open)
{
    const std::uint64_t before = multiply(open.fingerprint, power(out_.size() - open.at));
    return fingerprint_ >= before ? fingerprint_ - before : fingerprint_ + kPrime - before;
}

std::uint64_t TagRemoval::power(std::size_t exponent)
{
    while (smallPowers_.size() < kSmallPowers)
        smallPowers_.push_back(multiply(smallPowers_.back(), base_));
    while (largePowers_.size() <= exponent / kSmallPowers)
        largePowers_.push_back(multiply(largePowers_.back(), multiply(smallPowers_.back(), base_)));
    return multiply(largePowers_[exponent / kSmallPowers], smallPowers_[exponent % kSmallPowers]);
}

} // namespace quarrynet

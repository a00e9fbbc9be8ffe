#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "search/page/reduction/HashSlots.h"
#include "search/page/reduction/ListPool.h"
#include "search/page/reduction/TagIndex.h"

namespace quarrynet {

/// Removes the tags from a page. The result is, byte for byte, that of this procedure:
///
///     repeat: find the first "<", and the first ">" after it; if either is missing, end.
///             Remove every occurrence of the text from that "<" to that ">", and go on removing it
///             while the removals form it again.
///
/// A tag without a second "<" is removed whichever round it is. With several "<" before a ">", the order of the rounds
/// matters: a tag of an earlier round may end there too. Then only that end is removed, and the rest joins the text
/// after the ">". So the page is read once, and such ends are looked up among the tags removed so far:
///
/// - A round removes the text up to a ">", so each ">" is removed once, in one round. The text before the removed end
///   "arrives" at the next ">" in that round, in front of the text that arrived there earlier.
/// - Of all the tags that end at a ">", each beginning at one of its "<", the one with the earliest round is removed;
///   rounds before the arrival of a tag's bytes do not count. If there is none, the text from the first "<" is the tag
///   of a new round.
///
/// Costs for a page of n bytes: time and memory are proportional to n as long as the arrived text is examined in
/// bounded portions. Each ">" examines the fewer of two: the "<" that arrived before it, or the rounds since then of
/// tags with several "<" that share its last tag. Over a page, these add up to n again, unless the page has very many
/// such tags that were designed for this; the worst case is n times the square root of their number. Texts are compared
/// by fingerprints with a random base, and each match is verified byte for byte before it is used.
class TagRemoval
{
public:
    /// `base` is the base of the fingerprint polynomial. Small values make collisions more likely.
    explicit TagRemoval(std::uint64_t base);

    /// Returns `text` without its tags, or nothing when two different texts collided; retry with another base. Call
    /// once per object.
    std::optional<std::string> run(std::string_view text);

private:
    using Round = std::uint32_t;

    struct NestedTag // a tag with several "<"
    {
        std::string_view text;
        std::uint64_t fingerprint;
        std::uint32_t opens;
        ListPool<Round>::List rounds; // that removed it, in order
    };

    struct NestedRound
    {
        Round round = 0;
        std::uint32_t tag = HashSlots::kNone;
        bool operator==(const NestedRound&) const = default;
    };

    /// Further data of a last tag (a tag's last "<" and the text after it). In its index entry, `first` is the first
    /// round in which it was a tag of its own, and `more` is the number of this record; 0 means none.
    struct LastTag
    {
        ListPool<Round>::List later;        // further rounds in which it was a tag of its own
        ListPool<NestedRound>::List nested; // rounds of tags with several "<" that end with it
    };

    struct Open // a "<" whose ">" has not been read yet
    {
        std::size_t at;            // in out_
        std::uint64_t fingerprint; // of the text from the first open to here
    };

    struct Arrival // of the opens from `firstOpen` on
    {
        std::size_t firstOpen;
        Round round; // 0: these bytes were before the ">" from the start
    };

    struct Match
    {
        Round round;
        std::size_t open;
        const NestedTag* nested;
    };

    static constexpr Round kNever = 0xFFFFFFFF;

    Round firstFrom(const ListPool<Round>::List& rounds, Round round) const; // kNever when there is none
    bool closeTag(std::string_view segment);
    void noteTag(std::string_view tag);
    void push(std::string_view segment);
    Match earliest(const TagIndex::Entry& last);
    void consider(std::size_t open, Round arrived, Match& best);
    bool startRound(std::string_view unread, std::uint32_t hashOfLast);
    std::string_view keep(std::string_view first, std::string_view second);
    std::uint32_t nestedTag(std::uint64_t fingerprint) const;
    void remove(const Match& match);
    LastTag& details(TagIndex::Entry& entry);
    Round arrivalOf(std::size_t open) const;
    std::uint64_t appended(std::uint64_t fingerprint, std::string_view text) const;
    std::uint64_t fingerprintFrom(const Open& open);
    std::uint64_t power(std::size_t exponent);

    const std::uint64_t base_;
    std::vector<std::uint64_t> smallPowers_;
    std::vector<std::uint64_t> largePowers_;

    std::string out_; // the text that stays, then from the first open on the text that waits for its ">"
    std::vector<Open> opens_;
    std::vector<Arrival> arrivals_; // later rounds first
    std::uint64_t fingerprint_ = 0; // from the first open to the end of out_

    Round round_ = 0;
    TagIndex index_;
    std::deque<LastTag> lastTags_;
    HashSlots nestedSlots_;
    std::deque<NestedTag> nestedTags_;
    ListPool<Round> rounds_;
    ListPool<NestedRound> nestedRounds_;
    std::deque<std::string> texts_; // of tags that are not contiguous in the page, several per string
};

} // namespace quarrynet

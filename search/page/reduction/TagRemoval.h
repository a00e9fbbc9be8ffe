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

/// Takes the tags out of a page, and gives byte for byte the text of this procedure:
///
///     repeat: find the first "<", and the first ">" behind it; if either is missing, end.
///             Remove every occurrence of the text from that "<" to that ">", and go on removing it
///             while the removals form it anew.
///
/// A tag that holds no further "<" goes, whichever round takes it. Where several "<" stand before a ">" the order of
/// the rounds shows: a tag of an earlier round may end there too, and then only that end goes, and what is left of it
/// joins the text behind the ">". So the page is read once, and such ends are looked up among the tags removed so far:
///
/// - A round removes the text up to a ">", so each ">" is removed once, in one round; what stood before the removed end
///   "arrives" at the next ">" in that round, in front of what arrived there earlier.
/// - Of all the tags that end at a ">", each beginning at one of its "<", that one is removed whose first round not
///   before the arrival of its bytes is the earliest. When there is none, the text from the first "<" is the tag of a
///   new round.
///
/// Costs, for a page of n bytes: time and memory proportional to n, as long as what arrived is looked at in bounded
/// portions. Each ">" looks at the least of: the "<" that arrived before it, and the rounds since, of tags with several
/// "<" that share its last tag. Over a page these add up to n again, unless the page holds very many such tags that
/// were laid out for the purpose; the worst is n times the square root of their number. Texts are compared by
/// fingerprints with a base drawn at random, and whatever is acted on is then compared byte for byte.
class TagRemoval
{
public:
    /// `base` is the base of the fingerprints. The smaller the likelier are two texts with one fingerprint.
    explicit TagRemoval(std::uint64_t base);

    /// `text` without its tags, or nothing when two different texts with one fingerprint met; then another base is
    /// called for. To be called once.
    std::optional<std::string> run(std::string_view text);

private:
    using Round = std::uint32_t;

    struct NestedTag // one with several "<"
    {
        std::string_view text;
        std::uint64_t fingerprint;
        std::uint32_t opens;
        ListPool<Round>::List rounds; // in which it was removed, in order
    };

    struct NestedRound
    {
        Round round = 0;
        std::uint32_t tag = HashSlots::kNone;
        bool operator==(const NestedRound&) const = default;
    };

    /// What is known of a last tag (a tag's last "<" and what follows) beyond its index entry. There, `first` is the
    /// first round in which it was a tag of its own, and `more` the number of this record; 0 for none.
    struct LastTag
    {
        ListPool<Round>::List later;        // further rounds in which it was a tag of its own
        ListPool<NestedRound>::List nested; // rounds of tags with several "<" that end with it
    };

    struct Open // a "<" whose ">" has not come yet
    {
        std::size_t at;            // in out_
        std::uint64_t fingerprint; // of what stands from the first open to here
    };

    struct Arrival // of the opens from `firstOpen` on
    {
        std::size_t firstOpen;
        Round round; // 0: these bytes stood before the ">" from the start
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

    std::string out_; // the text that stays, and from the first open on what waits for its ">"
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
    std::deque<std::string> texts_; // of the tags that do not stand in the page as they are, many to a string
};

} // namespace quarrynet

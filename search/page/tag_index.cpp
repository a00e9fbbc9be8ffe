#include "search/page/tag_index.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace quarrynet {

namespace {

constexpr std::size_t kFirstSlots = 64;

// Any odd numbers without a pattern.
constexpr std::uint64_t kLengthFactor = 0x9E3779B97F4A7C15;
constexpr std::uint64_t kWordSalt = 0xD6E8FEB86659FD93;

std::uint64_t fold(std::uint64_t a, std::uint64_t b)
{
    __extension__ using Product = unsigned __int128;
    const Product product = static_cast<Product>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

} // namespace

TagIndex::TagIndex(std::uint64_t seed) : seed_(seed), slots_(kFirstSlots) {}

void TagIndex::expect(std::size_t count)
{
    entries_.reserve(count);
    slots_.assign(std::bit_ceil(std::max(kFirstSlots, count + count / 2)), Slot());
}

TagIndex::Key TagIndex::key(std::string_view text) const
{
    const std::uint32_t hashed = hash(text);
#ifdef __GNUC__
    __builtin_prefetch(&slots_[hashed & (slots_.size() - 1)]);
#endif
    return {text, hashed};
}

const TagIndex::Entry* TagIndex::find(std::string_view text) const
{
    const Slot& slot = slots_[slotOf({text, hash(text)})];
    return slot.entry == 0 ? nullptr : &entries_[slot.entry - 1];
}

TagIndex::Entry& TagIndex::at(const Key& key)
{
    std::size_t at = slotOf(key);
    if (slots_[at].entry == 0) {
        if (3 * entries_.size() >= 2 * slots_.size()) {
            grow();
            at = slotOf(key);
        }
        entries_.push_back({key.text, 0, 0});
        slots_[at] = {key.hash, static_cast<std::uint32_t>(entries_.size())};
    }
    return entries_[slots_[at].entry - 1];
}

std::uint32_t TagIndex::hash(std::string_view text) const
{
    std::uint64_t hashed = fold(seed_ ^ kLengthFactor, text.size() + kLengthFactor);
    for (; text.size() > sizeof hashed; text.remove_prefix(sizeof hashed)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data(), sizeof word);
        hashed = fold(hashed ^ word, seed_ ^ kWordSalt);
    }
    std::uint64_t word = 0;
    std::memcpy(&word, text.data(), text.size());
    hashed = fold(hashed ^ word, seed_ ^ kWordSalt);
    return static_cast<std::uint32_t>(hashed ^ (hashed >> 32));
}

std::size_t TagIndex::slotOf(const Key& key) const
{
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = key.hash & mask;
    while (slots_[at].entry != 0 && (slots_[at].hash != key.hash || entries_[slots_[at].entry - 1].text != key.text))
        at = (at + 1) & mask;
    return at;
}

void TagIndex::grow()
{
    std::vector<Slot> slots(2 * slots_.size());
    for (const Slot& slot : slots_) {
        if (slot.entry == 0)
            continue;
        std::size_t at = slot.hash & (slots.size() - 1);
        while (slots[at].entry != 0)
            at = (at + 1) & (slots.size() - 1);
        slots[at] = slot;
    }
    slots_ = std::move(slots);
}

} // namespace quarrynet

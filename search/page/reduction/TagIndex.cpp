#include "search/page/reduction/TagIndex.h"

#include <cstring>

#include "search/page/reduction/wide_product.h"

namespace quarrynet {

namespace {

// Any odd numbers without a pattern.
constexpr std::uint64_t kLengthFactor = 0x9E3779B97F4A7C15;
constexpr std::uint64_t kWordSalt = 0xD6E8FEB86659FD93;

std::uint64_t fold(std::uint64_t a, std::uint64_t b)
{
    const WideProduct product = multiplyWide(a, b);
    return product.low ^ product.high;
}

} // namespace

TagIndex::TagIndex(std::uint64_t seed) : seed_(seed) {}

void TagIndex::expect(std::size_t count)
{
    entries_.reserve(count);
    slots_.expect(count);
}

TagIndex::Key TagIndex::key(std::string_view text) const
{
    return {text, hash(text)};
}

const TagIndex::Entry* TagIndex::find(const Key& key) const
{
    const std::uint32_t number = numberOf(key);
    return number == HashSlots::kNone ? nullptr : &entries_[number - 1];
}

TagIndex::Entry& TagIndex::at(const Key& key)
{
    const std::uint32_t number = numberOf(key);
    if (number != HashSlots::kNone)
        return entries_[number - 1];
    entries_.push_back({key.text, 0, 0});
    slots_.add(key.hash, static_cast<std::uint32_t>(entries_.size()));
    return entries_.back();
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

std::uint32_t TagIndex::numberOf(const Key& key) const
{
    return slots_.find(key.hash, [&](std::uint32_t number) { return entries_[number - 1].text == key.text; });
}

} // namespace quarrynet

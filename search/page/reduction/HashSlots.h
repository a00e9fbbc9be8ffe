#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quarrynet {

/// The slots of a hash table with open addressing. The records are stored elsewhere and numbered from 1 on. A slot
/// keeps the hash beside the number, so growing reads no record, and a lookup almost never reads one of another key.
class HashSlots
{
public:
    static constexpr std::uint32_t kNone = 0;

    HashSlots();

    /// Reserves room for about `count` records. Call only while there are none.
    void expect(std::size_t count);

    /// Returns the number of the record with this hash for which `isSame(number)` holds, or kNone.
    template <typename IsSame>
    std::uint32_t find(std::uint32_t hash, const IsSame& isSame) const
    {
        const std::size_t mask = slots_.size() - 1;
        std::size_t at = hash & mask;
        while (slots_[at].number != kNone && (slots_[at].hash != hash || !isSame(slots_[at].number)))
            at = (at + 1) & mask;
        return slots_[at].number;
    }

    /// Adds a record that find() does not find yet.
    void add(std::uint32_t hash, std::uint32_t number);

private:
    struct Slot
    {
        std::uint32_t hash = 0;
        std::uint32_t number = kNone;
    };

    static void put(std::vector<Slot>& slots, const Slot& slot);
    void grow();

    std::vector<Slot> slots_; // a power of two; at most three quarters are taken
    std::size_t taken_ = 0;
};

} // namespace quarrynet

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quarrynet {

/// The slots of an open hash table. The records stand elsewhere and are known here by their numbers, from 1 on; a slot
/// keeps the hash beside the number, so that growing reads no record, and a look-up almost never one of another key.
class HashSlots
{
public:
    static constexpr std::uint32_t kNone = 0;

    HashSlots();

    /// Makes room for about `count` records in advance. Only while there are none.
    void expect(std::size_t count);

    /// The number of the record with this hash for which `isSame(number)` holds; kNone when there is none.
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

    std::vector<Slot> slots_; // a power of two, at most two thirds of them taken
    std::size_t taken_ = 0;
};

} // namespace quarrynet

#include "search/page/reduction/HashSlots.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace quarrynet {

namespace {

constexpr std::size_t kFirstSlots = 64;

} // namespace

HashSlots::HashSlots() : slots_(kFirstSlots) {}

void HashSlots::expect(std::size_t count)
{
    slots_.assign(std::bit_ceil(std::max(kFirstSlots, count + count / 2)), Slot());
}

void HashSlots::add(std::uint32_t hash, std::uint32_t number)
{
    if (4 * taken_ >= 3 * slots_.size())
        grow();
    put(slots_, {hash, number});
    ++taken_;
}

void HashSlots::put(std::vector<Slot>& slots, const Slot& slot)
{
    const std::size_t mask = slots.size() - 1;
    std::size_t at = slot.hash & mask;
    while (slots[at].number != kNone)
        at = (at + 1) & mask;
    slots[at] = slot;
}

void HashSlots::grow()
{
    std::vector<Slot> slots(2 * slots_.size());
    for (const Slot& slot : slots_) {
        if (slot.number != kNone)
            put(slots, slot);
    }
    slots_ = std::move(slots);
}

} // namespace quarrynet

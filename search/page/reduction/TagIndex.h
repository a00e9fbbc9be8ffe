#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "search/page/reduction/HashSlots.h"

namespace quarrynet {

/// A hash table of tag texts, each with a small record. Designed for hundreds of thousands of different tags of one
/// page: adding one costs little more than reading it. The hash depends on a seed, so no page can provoke collisions.
class TagIndex
{
public:
    struct Entry
    {
        std::string_view text; // must outlive the table
        std::uint32_t first = 0;
        std::uint32_t more = 0;
    };

    /// A text with its hash.
    struct Key
    {
        std::string_view text;
        std::uint32_t hash = 0;
    };

    explicit TagIndex(std::uint64_t seed);

    /// Reserves room for about `count` entries. Call only while there are none.
    void expect(std::size_t count);

    Key key(std::string_view text) const;

    /// Returns the entry of this text, or null. The pointer is valid until the next call of at().
    const Entry* find(const Key& key) const;
    const Entry* find(std::string_view text) const { return find(key(text)); }

    /// Returns the entry of this text, created with both numbers 0 if it was missing. Valid until the next call of
    /// at().
    Entry& at(const Key& key);
    Entry& at(std::string_view text) { return at(key(text)); }

private:
    std::uint32_t hash(std::string_view text) const;
    std::uint32_t numberOf(const Key& key) const;

    std::uint64_t seed_;
    HashSlots slots_;
    std::vector<Entry> entries_;
};

} // namespace quarrynet

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quarrynet {

/// Finds many keywords in one pass over a text (Aho-Corasick automaton). Keywords are bytes, fewer than 2^32 in total;
/// an empty keyword occurs in every text.
///
///     KeywordFinder finder;
///     finder.add("apple"); // 0
///     finder.add("pea");   // 1
///     finder.read("a pinea");
///     finder.read("pple");
///     finder.found();      // {true, false}
class KeywordFinder
{
public:
    KeywordFinder();

    /// Adds a keyword; the first one has index 0.
    void add(std::string_view keyword);

    /// Reads the next piece of the text. No keyword may be added after the first call.
    void read(std::string_view piece);

    /// Returns for each keyword whether it occurs in the text read so far. The total time is proportional to the text
    /// and to all keywords together, however many there are and however they overlap.
    std::vector<bool> found();

private:
    using State = std::uint32_t;
    static constexpr State kRoot = 0;
    static constexpr std::uint64_t kFree = ~std::uint64_t{0};

    struct Step
    {
        std::uint64_t from = kFree; // state and byte
        State to = kRoot;
    };

    static std::uint64_t key(State state, char byte)
    {
        return (std::uint64_t{state} << 8) | static_cast<unsigned char>(byte);
    }
    std::size_t place(std::uint64_t key) const;
    State step(State state, char byte) const;
    void insert(std::uint64_t key, State to);
    State next(State state, char byte) const;
    void link();

    // A table of steps with open addressing. Few states have more than one step, so a row of 256 for each would waste
    // memory.
    std::vector<Step> steps_;
    std::size_t used_ = 0;
    std::vector<State> parents_; // by state, as all below
    std::vector<char> bytes_;
    std::vector<std::uint32_t> depths_;
    std::vector<State> fallbacks_;
    std::vector<bool> reached_;
    std::vector<State> byDepth_; // the states from the shortest to the longest; empty until linked
    std::vector<State> ends_;    // by keyword
    State state_ = kRoot;
};

} // namespace quarrynet

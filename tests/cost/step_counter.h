#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// What a call costs, as a number that is the same in every run. Steps are the basic blocks that counted code (compiled
/// with -fsanitize-coverage=trace-pc) enters, the bytes that memchr, memcpy and their like go over, whoever calls them,
/// and the bytes that operator new gives out. Other libraries' loops do not count.
namespace quarrynet::cost {

/// The steps of this thread so far.
std::uint64_t stepsTaken();

/// Adds to them.
void countSteps(std::uint64_t steps);

template <typename Call>
std::uint64_t stepsOf(Call&& call)
{
    const std::uint64_t before = stepsTaken();
    call();
    return stepsTaken() - before;
}

/// What doubled input may cost at most, as a multiple. Proportional costs double; a part that grows with the square
/// brings them to four times.
inline constexpr double kMostGrowth = 2.6;

/// Large enough that what does not depend on the length vanishes.
inline constexpr std::size_t kLength = 256 * 1024;

/// What a run took.
struct Cost
{
    Cost(std::uint64_t taken, std::uint64_t madeOfIt = 0) : steps(taken), made(madeOfIt) {}

    std::uint64_t steps;
    std::uint64_t made; ///< size of input and output together, for what may make much out of little; else 0
};

/// What an input costs, and one of twice the length.
struct Growth
{
    Cost once;
    Cost doubled;

    /// How many times as much the second costs. Where more than twice as much is made of it, in proportion to that.
    double ratio() const;
};

/// The costs of `run`, which gets the length of its input. Where a quarter of `length` already shows a square, that is
/// what is returned: larger inputs would take hours.
Growth growthOf(std::size_t length, const std::function<Cost(std::size_t)>& run);

/// Fails the test, with the figures, where the growth is above `most`. With QUARRYNET_COST_TABLE in the environment all
/// figures are printed.
void expectProportional(const std::string& what, const std::function<Cost(std::size_t)>& run,
                        std::size_t length = kLength, double most = kMostGrowth);

/// `pattern`, which is not empty, again and again: as often as it fits into `length` bytes, but at least once.
std::string filled(std::string_view pattern, std::size_t length);

/// As expectProportional(), for texts, of which `make` gives one of the length asked for.
template <typename Make, typename Call>
void expectProportionalText(const std::string& what, Make make, Call call, std::size_t length = kLength)
{
    expectProportional(
        what,
        [&](std::size_t size) {
            const std::string text = make(size);
            return stepsOf([&] { call(text); });
        },
        length);
}

} // namespace quarrynet::cost

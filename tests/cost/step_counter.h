#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// Measures the cost of a call as a number of steps that is the same in every run. Steps are the basic blocks that
/// counted code (compiled with -fsanitize-coverage=trace-pc) enters, the bytes that memchr, memcpy and similar
/// functions process for any caller, and the bytes that operator new allocates. Loops in other libraries do not count.
namespace quarrynet::cost {

/// Returns the number of steps of this thread so far.
std::uint64_t stepsTaken();

/// Adds to the number of steps of this thread.
void countSteps(std::uint64_t steps);

template <typename Call>
std::uint64_t stepsOf(Call&& call)
{
    const std::uint64_t before = stepsTaken();
    call();
    return stepsTaken() - before;
}

/// Maximum cost of doubled input, as a multiple. Linear cost gives a factor of 2, quadratic cost one of 4.
inline constexpr double kMostGrowth = 2.6;

/// Default input length, large enough to make constant costs negligible.
inline constexpr std::size_t kLength = 256 * 1024;

/// The cost of one run.
struct Cost
{
    Cost(std::uint64_t taken, std::uint64_t madeOfIt = 0) : steps(taken), made(madeOfIt) {}

    std::uint64_t steps;
    std::uint64_t made; ///< size of input and output together where the output may outgrow the input, otherwise 0
};

/// The costs of an input and of one twice as long.
struct Growth
{
    Cost once;
    Cost doubled;

    /// Returns the quotient of the two costs. If `made` more than doubles, the quotient is scaled down accordingly.
    double ratio() const;
};

/// Returns the costs of `run`, which gets the length of its input. If a quarter of `length` already shows quadratic
/// growth, returns the costs of that: larger inputs would take hours.
Growth growthOf(std::size_t length, const std::function<Cost(std::size_t)>& run);

/// Fails the test, with the figures, if the growth is above `most`. Prints all figures if QUARRYNET_COST_TABLE is in
/// the environment.
void expectProportional(const std::string& what, const std::function<Cost(std::size_t)>& run,
                        std::size_t length = kLength, double most = kMostGrowth);

/// Returns `pattern`, which must not be empty, repeated as often as it fits into `length` bytes, but at least once.
std::string filled(std::string_view pattern, std::size_t length);

/// Does the same as expectProportional(), for a call on a text; `make` returns a text of a given length.
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

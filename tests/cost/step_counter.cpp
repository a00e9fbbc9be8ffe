#include "tests/cost/step_counter.h"

#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

namespace quarrynet::cost {

namespace {

// Quadratic cost gives a factor near four even for small inputs; a switch to another algorithm stays below this.
constexpr double kSurelySquare = 3.5;

constinit thread_local std::uint64_t steps = 0;

} // namespace

std::uint64_t stepsTaken()
{
    return steps;
}

void countSteps(std::uint64_t more)
{
    steps += more;
}

double Growth::ratio() const
{
    const double steps = static_cast<double>(doubled.steps) / static_cast<double>(once.steps);
    if (doubled.made <= 2 * once.made)
        return steps;
    return steps * 2 * static_cast<double>(once.made) / static_cast<double>(doubled.made);
}

Growth growthOf(std::size_t length, const std::function<Cost(std::size_t)>& run)
{
    const Growth small{run(length / 8), run(length / 4)};
    if (small.ratio() > kSurelySquare)
        return small;
    return {run(length), run(2 * length)};
}

void expectProportional(const std::string& what, const std::function<Cost(std::size_t)>& run, std::size_t length,
                        double most)
{
    const Growth growth = growthOf(length, run);
    if (std::getenv("QUARRYNET_COST_TABLE") != nullptr)
        std::printf("%5.2f times, %9.2f steps per unit at %zu: %s\n", growth.ratio(),
                    static_cast<double>(growth.once.steps) / static_cast<double>(length), length, what.c_str());
    EXPECT_LE(growth.ratio(), most) << what << ": " << growth.once.steps << " steps, and " << growth.doubled.steps
                                    << " for twice the input";
    EXPECT_GT(growth.once.steps, 0U) << what << ": no steps were counted";
}

std::string filled(std::string_view pattern, std::size_t length)
{
    std::string text;
    text.reserve(length + pattern.size());
    do
        text.append(pattern);
    while (text.size() + pattern.size() <= length);
    return text;
}

} // namespace quarrynet::cost

/// Counted code calls this in every basic block.
extern "C" void __sanitizer_cov_trace_pc();

extern "C" void __sanitizer_cov_trace_pc()
{
    ++quarrynet::cost::steps;
}

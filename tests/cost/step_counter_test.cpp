#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/cost/step_counter.h"

/// This file is compiled as counted code. The counter must reveal quadratic growth wherever the time is spent.
using namespace quarrynet::cost;

namespace {

constexpr std::size_t kShort = 8 * 1024;
constexpr double kNearSquare = 0.5; // tolerance, because linear costs are added to the quadratic ones

template <typename Call>
double growth(Call call)
{
    return growthOf(kShort,
                    [&](std::size_t length) {
                        const std::string text(length, 'a');
                        return stepsOf([&] { call(text); });
                    })
        .ratio();
}

volatile std::size_t sink = 0;

} // namespace

TEST(StepCounter, OneLoopDoubles)
{
    EXPECT_NEAR(growth([](const std::string& text) {
                    for (const char c : text)
                        sink = sink + static_cast<unsigned char>(c);
                }),
                2.0, 0.05);
}

TEST(StepCounter, ALoopInALoopGrowsWithTheSquare)
{
    EXPECT_NEAR(growth([](const std::string& text) {
                    for (std::size_t i = 0; i < text.size(); ++i)
                        for (std::size_t j = i; j < text.size(); ++j)
                            sink = sink + j;
                }),
                4.0, kNearSquare);
}

TEST(StepCounter, SearchesInsideOfTheStandardLibraryCount)
{
    const auto searches = [](const std::string& text) {
        for (std::size_t i = 0; i < text.size(); ++i)
            sink = text.find("b", i);
    };
    EXPECT_NEAR(growth(searches), 4.0, kNearSquare);
    EXPECT_NEAR(growth([](const std::string& text) { sink = text.find("b"); }), 2.0, 0.05);
    EXPECT_NEAR(growth([](const std::string& text) {
                    for (std::size_t i = 0; i < text.size(); ++i)
                        sink = text.rfind('b', i);
                }),
                4.0, kNearSquare);
    EXPECT_NEAR(growth([](const std::string& text) { sink = text.find(text.substr(text.size() / 2) + "b"); }), 4.0,
                kNearSquare);
}

TEST(StepCounter, BytesThatMoveCount)
{
    EXPECT_NEAR(growth([](std::string text) {
                    while (!text.empty())
                        text.erase(0, 1);
                }),
                4.0, kNearSquare);
    EXPECT_NEAR(growth([](const std::string& text) {
                    std::string copy;
                    for (const char c : text)
                        copy = copy + c;
                }),
                4.0, kNearSquare);
    EXPECT_NEAR(growth([](const std::string& text) {
                    std::string copy;
                    for (const char c : text)
                        copy += c;
                }),
                2.0, 0.05);
    EXPECT_NEAR(growth([](const std::string& text) {
                    const std::string copy = text;
                    for (std::size_t i = 0; i < text.size(); ++i)
                        sink = static_cast<std::size_t>(text == copy);
                }),
                4.0, kNearSquare);
}

TEST(StepCounter, MemoryThatIsAskedForCounts)
{
    EXPECT_NEAR(growth([](const std::string& text) {
                    for (std::size_t i = 0; i < text.size(); ++i) {
                        std::vector<char> room;
                        room.reserve(text.size());
                        sink = room.capacity();
                    }
                }),
                4.0, kNearSquare);
}

TEST(StepCounter, TemplatesOfTheStandardLibraryCount)
{
    const auto sorted = [](const std::string& text) {
        std::string copy = text;
        for (std::size_t i = 0; i < copy.size(); ++i)
            copy[i] = static_cast<char>((i * 7919) % 251);
        std::sort(copy.begin(), copy.end());
    };
    EXPECT_GT(growth(sorted), 2.0);
    EXPECT_LT(growth(sorted), kMostGrowth);
    EXPECT_NEAR(growth([](const std::string& text) {
                    for (std::size_t i = 0; i < text.size(); ++i)
                        sink = static_cast<std::size_t>(std::count(text.begin(), text.end(), 'b'));
                }),
                4.0, kNearSquare);
}

TEST(StepCounter, TheCountIsTheSameInEveryRun)
{
    const auto work = [] {
        return stepsOf([] {
            std::string text = filled("abc", 10000);
            for (std::size_t at = text.find("ca"); at != std::string::npos; at = text.find("ca", at))
                text.replace(at, 2, "x");
        });
    };
    EXPECT_EQ(work(), work());
}

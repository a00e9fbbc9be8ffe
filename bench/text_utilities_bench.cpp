// Compares FindReplace, in calls that the program makes, with a single std::string pass that does the same replacement
// from left to right. FindReplace may take at most 3 times as long as the pass of the same size, and 8 MB may take 8
// times as long as 1 MB.
#include <cstddef>
#include <string>
#include <string_view>

#include <benchmark/benchmark.h>

#include "common/text_utilities.h"

using namespace quarrynet;

namespace {

// A match about every 20 bytes, so about 50,000 per megabyte.
std::string textWithMatches(std::size_t megabytes, std::string_view sought)
{
    std::string text;
    text.reserve((megabytes << 20) + 20);
    while (text.size() < (megabytes << 20))
        text.append("some").append(sought).append("word of text.");
    return text;
}

std::string pass(std::string_view source, std::string_view sought, std::string_view replacement)
{
    std::string out;
    std::size_t from = 0;
    for (std::size_t at = source.find(sought); at != std::string_view::npos; at = source.find(sought, from)) {
        out.append(source, from, at - from).append(replacement);
        from = at + sought.size();
    }
    return out.append(source, from);
}

using Routine = std::string(std::string_view, std::string_view, std::string_view);

void replace(benchmark::State& state, Routine* routine, std::string_view sought, std::string_view replacement)
{
    const std::string text = textWithMatches(static_cast<std::size_t>(state.range(0)), sought);
    for (auto _ : state)
        benchmark::DoNotOptimize(routine(text, sought, replacement));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

// Each removal forms the next match, from the middle of the text outward.
void nest(benchmark::State& state)
{
    const auto depth = static_cast<std::size_t>(state.range(0)) << 18;
    std::string text;
    for (std::size_t i = 0; i < depth; ++i)
        text += "<b/";
    text.append(depth, '>');
    for (auto _ : state)
        benchmark::DoNotOptimize(FindReplace(text, "<b/>", ""));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

// Replacing one match at a time would never end: this reaches the bound.
void growing(benchmark::State& state)
{
    std::string text;
    while (text.size() < static_cast<std::size_t>(state.range(0)) << 20)
        text += "aaab";
    for (auto _ : state)
        benchmark::DoNotOptimize(FindReplace(text, "ab", "bbaa"));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

} // namespace

BENCHMARK_CAPTURE(replace, remove_by_pass, pass, "<b>", "")->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(replace, remove, FindReplace, "<b>", "")->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(replace, decode_by_pass, pass, "%2F", "/")->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(replace, decode, FindReplace, "%2F", "/")->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);
BENCHMARK(nest)->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);
BENCHMARK(growing)->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);

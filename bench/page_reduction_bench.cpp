// Measures the reduction of a page to its text. Pages without and with nested tags (the second argument) are compared
// with sed 's/<[^>]*>//g' on the same file; the reduction should be at least 5 times as fast. A page of ten times the
// size may take 12 times as long without nested tags, if the caches are not larger than the small page; with nested
// tags it takes 20 times as long, because the table of all tags outgrows the caches. Each hostile page, 10 MB long,
// should take less than two seconds.
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <benchmark/benchmark.h>

#include "bench/pipeline.h"
#include "search/page/reduction/reduction.h"

using namespace quarrynet;

namespace {

constexpr std::size_t kHostile = 10'000'000;

std::string times(std::size_t count, std::string_view text)
{
    std::string out;
    out.reserve(count * text.size());
    for (std::size_t i = 0; i < count; ++i)
        out += text;
    return out;
}

std::string joined(std::initializer_list<std::string_view> parts)
{
    std::string out;
    for (const std::string_view part : parts)
        out += part;
    return out;
}

// 30,000 different tags per megabyte, with some line ends, quotes and text between them.
std::string page(std::size_t megabytes, bool nested)
{
    std::string text;
    for (std::size_t i = 0; i < megabytes * 30000; ++i) {
        const std::string number = std::to_string(i);
        text.append("<a id=\"").append(number).append("\">word ").append(number).append(" of text\n");
        if (nested && i % 100 == 0)
            text.append("<script>if (a<b) f();<i>x</i>");
    }
    return text;
}

void reduce(benchmark::State& state, const std::string& text)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(reducedPage(text));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void sed(benchmark::State& state, const std::string& text)
{
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "quarrynet-reduction-bench.html";
    std::ofstream(file, std::ios::binary) << text;
    for (auto _ : state) {
        if (!bench::runPipeline({{"sed", "s/<[^>]*>//g", file.string()}}))
            state.SkipWithError("sed failed");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
    std::filesystem::remove(file);
}

// The program reduces a page once, into memory that it has not touched yet. Without this setting, the repeated small
// page would reuse the same warm memory, and only the large page would pay for fresh memory.
[[maybe_unused]] const bool freshMemory = [] {
#ifdef __GLIBC__
    return mallopt(M_MMAP_THRESHOLD, 1 << 20) == 1;
#else
    return false;
#endif
}();

void pages(benchmark::State& state)
{
    reduce(state, page(static_cast<std::size_t>(state.range(0)), state.range(1) != 0));
}

void pagesBySed(benchmark::State& state)
{
    sed(state, page(static_cast<std::size_t>(state.range(0)), state.range(1) != 0));
}

std::string onlyOpen()
{
    return times(kHostile, "<");
}

std::string onlyOpenThenClose()
{
    return joined({times(kHostile, "<"), ">"});
}

std::string onlyTags()
{
    return times(kHostile / 2, "<>");
}

std::string oneNest()
{
    return joined({times(kHostile / 2, "<"), times(kHostile / 2, ">")});
}

std::string nests()
{
    return times(kHostile / 2000, joined({times(1000, "<"), times(1000, ">")}));
}

std::string unclosedTag()
{
    return joined({"<", times(kHostile, "a")});
}

std::string tagsDifferingByOneByte()
{
    std::string text;
    std::string tag = joined({"<", times(98, "a"), ">"});
    for (std::size_t i = 0; text.size() < kHostile; ++i) {
        const std::size_t at = 1 + i % 98;
        tag[at] = static_cast<char>('a' + (tag[at] - 'a' + 1) % 26);
        text += tag;
    }
    return text;
}

std::string nestedTagsDifferingByOneByte()
{
    std::string text;
    std::string tag = joined({"<", times(48, "a"), "<", times(48, "a"), ">"});
    for (std::size_t i = 0; text.size() < kHostile; ++i) {
        const std::size_t at = 1 + i % 48;
        tag[at] = static_cast<char>('a' + (tag[at] - 'a' + 1) % 26);
        text += tag;
    }
    return text;
}

std::string everyRemovalFormsATag()
{
    return joined({"<>", times(kHostile / 2, "<"), times(kHostile / 2, ">")});
}

std::string everyRemovalFormsANewTag()
{
    return joined({"<b>", times(kHostile / 6, "<a<b>"), times(kHostile / 6, ">")});
}

// One long tag whose end resembles every nest that follows, but matches none.
std::string longTagBeforeNest()
{
    return joined({times(kHostile / 3, "<"), "><>", times(kHostile / 4, "<"), times(kHostile / 4, ">")});
}

// As above, with thousands of long tags.
std::string manyTagsBeforeNest()
{
    std::string text;
    for (std::size_t depth = 2500; depth > 0; --depth)
        text += joined({"<x", times(depth, "<"), ">"});
    const std::size_t half = (kHostile - text.size()) / 2;
    return joined({text, "<>", times(half, "<"), times(half, ">")});
}

// The worst known case: many nests whose ends are all missing among many tags with the same last tag.
std::string manyTagsBeforeManyNests()
{
    std::string text = joined({"<x", times(600, "<"), ">"});
    for (std::size_t i = 0; text.size() < kHostile / 3; ++i)
        text.append("<").append(std::to_string(i)).append("<>");
    text += "<>";
    return text + times((kHostile - text.size()) / 1200, joined({times(600, "<"), times(600, ">")}));
}

// Tags of rounds that are over before the nest is reached.
std::string staleTagsBeforeNest()
{
    std::string text;
    for (std::size_t depth = 2500; depth > 0; --depth)
        text += joined({times(depth, "<"), ">"});
    text += "<z><<z>";
    const std::size_t half = (kHostile - text.size()) / 2;
    return joined({text, times(half, "<"), "<z>", times(half, ">")});
}

// Returns the shortest name for `number`: at most three bytes for the first ten million, without "<", ">" and the
// quote.
std::string shortName(std::size_t number)
{
    static const std::string kLetters = [] {
        std::string letters;
        for (int byte = 0; byte < 256; ++byte) {
            const char letter = static_cast<char>(byte);
            if (letter != '<' && letter != '>' && letter != '"')
                letters.push_back(letter);
        }
        return letters;
    }();
    std::string name;
    do {
        name.push_back(kLetters[number % kLetters.size()]);
        number /= kLetters.size();
    } while (number != 0);
    return name;
}

std::string numbered(std::string_view before, std::string_view after)
{
    std::string text;
    for (std::size_t i = 0; text.size() < kHostile; ++i)
        text.append(before).append(shortName(i)).append(after);
    return text;
}

std::string differentNests()
{
    return numbered("<<", ">");
}

std::string differentNestsWithTextBetween()
{
    return numbered("<a<", "> ");
}

std::string differentNestsWithOneLastTag()
{
    return numbered("<", "<>");
}

// All these "<" are looked up among the tags of earlier rounds.
std::string differentDeepNests()
{
    return numbered("<", "<<<<<>");
}

// Each tag is first removed in its own round and later ends a nest.
std::string differentTagsThenNests()
{
    const std::string tags = numbered("<", ">");
    std::string text = tags.substr(0, tags.rfind('<', kHostile / 2));
    for (std::size_t i = 0; text.size() < kHostile; ++i)
        text.append("<").append(shortName(2 * i)).append("<").append(shortName(i)).append(">");
    return text;
}

// Every nest occurs twice; a part of each second one remains and ends a further nest.
std::string differentNestsTwice()
{
    std::string text;
    for (std::size_t i = 0; text.size() < kHostile; ++i) {
        const std::string name = shortName(i);
        text.append("<<").append(name).append("><<<").append(name).append(">>");
    }
    return text;
}

void hostile(benchmark::State& state, std::string (*make)())
{
    reduce(state, make());
}

} // namespace

BENCHMARK(pagesBySed)->Args({6, 0})->Args({6, 1})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(pages)
    ->Args({6, 0})
    ->Args({60, 0})
    ->Args({6, 1})
    ->Args({60, 1})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

#define HOSTILE(name) BENCHMARK_CAPTURE(hostile, name, name)->Unit(benchmark::kMillisecond)
HOSTILE(onlyOpen);
HOSTILE(onlyOpenThenClose);
HOSTILE(onlyTags);
HOSTILE(oneNest);
HOSTILE(nests);
HOSTILE(unclosedTag);
HOSTILE(tagsDifferingByOneByte);
HOSTILE(nestedTagsDifferingByOneByte);
HOSTILE(everyRemovalFormsATag);
HOSTILE(everyRemovalFormsANewTag);
HOSTILE(longTagBeforeNest);
HOSTILE(manyTagsBeforeNest);
HOSTILE(manyTagsBeforeManyNests);
HOSTILE(staleTagsBeforeNest);
HOSTILE(differentNests);
HOSTILE(differentNestsWithTextBetween);
HOSTILE(differentNestsWithOneLastTag);
HOSTILE(differentDeepNests);
HOSTILE(differentTagsThenNests);
HOSTILE(differentNestsTwice);

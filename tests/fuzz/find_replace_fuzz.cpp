#include <optional>
#include <string>

#include "common/text_utilities.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;

// The input is the search text and the replacement, each terminated by a NUL, and the source.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view source = fuzz::textOf(data, size);
    const std::string_view search = fuzz::takeText(source);
    const std::string_view replacement = fuzz::takeText(source);
    // Some results grow without end or beyond any memory; the bounded function returns nothing for them.
    constexpr std::size_t kMost = 1 << 18;
    const std::optional<std::string> result = FindReplaceWithin(source, search, replacement, kMost);
    if (search.empty())
        fuzz::check(result == "", "an empty search text gives the empty text");
    if (!result || search.empty() || replacement.find(search) != std::string_view::npos)
        return 0;
    std::string current(source);
    // Bounds the work for small machines; replacements that never terminate are not compared.
    for (std::size_t work = 0; work < 200'000; work += current.size() + 100) {
        std::string next = ReplaceFirstInstance(current, search, replacement);
        if (next == current) {
            fuzz::check(*result == current, "the result equals that of replacing one by one");
            return 0;
        }
        current = std::move(next);
    }
    return 0;
}

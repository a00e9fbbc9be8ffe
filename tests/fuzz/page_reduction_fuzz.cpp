#include <string>

#include "search/page/reduction/reduction.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;

namespace {

std::string without(std::string text, const std::string& sought)
{
    for (std::size_t at = text.find(sought); at != std::string::npos; at = text.find(sought))
        text.erase(at, sought.size());
    return text;
}

// The reduction as it is defined, in quadratic time.
std::string plainReduction(std::string_view body)
{
    std::string text = without(std::string(body), "\"");
    while (true) {
        const std::size_t open = text.find('<');
        const std::size_t close = open == std::string::npos ? open : text.find('>', open);
        if (close == std::string::npos)
            break;
        text = without(text, text.substr(open, close + 1 - open));
    }
    return text.empty() ? std::string(body) : text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view body = fuzz::textOf(data, size);
    fuzz::check(reducedPage(body) == plainReduction(body), "the reduction equals that of the plain procedure");
    return 0;
}

#include <array>
#include <string>

#include "common/address_check.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::optional<std::string> address = openableAddress(fuzz::textOf(data, size));
    if (!address)
        return 0;
    constexpr std::array<std::string_view, 5> kSchemes = {"http://", "https://", "ftp://", "ftps://", "mailto:"};
    bool known = false;
    for (const std::string_view scheme : kSchemes)
        known = known || address->compare(0, scheme.size(), scheme) == 0;
    fuzz::check(known, "only these schemes are opened");
    for (const char c : *address)
        fuzz::check(c > ' ' && c < '\x7f' && std::string_view("\"'`<>\\^{|}$()").find(c) == std::string_view::npos,
                    "no byte is special to an opener");
    fuzz::check(address->size() <= 64 * 1024, "the length is bounded");
    fuzz::check(openableAddress(*address) == address, "checking a checked address changes nothing");
    return 0;
}

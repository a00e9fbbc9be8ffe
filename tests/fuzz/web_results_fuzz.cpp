#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "search/web/results.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view page(reinterpret_cast<const char*>(data), size);
    const quarrynet::WebResults results = quarrynet::parseWebResults(page);
    if (results.rows != 0 && results.rows != results.positions.size())
        std::abort();
    return 0;
}

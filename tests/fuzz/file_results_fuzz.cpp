#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "search/file/results.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view page(reinterpret_cast<const char*>(data), size);
    const quarrynet::FileResults results = quarrynet::parseFileResults(page);
    if (results.rows.size() > 20)
        std::abort();
    return 0;
}

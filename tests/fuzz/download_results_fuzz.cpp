#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "search/download/results.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view page(reinterpret_cast<const char*>(data), size);
    const quarrynet::DownloadResults results = quarrynet::parseDownloadResults(page);
    if (results.rows.size() != results.links.size())
        std::abort();
    return 0;
}

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "search/image/results.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view page(reinterpret_cast<const char*>(data), size);
    const quarrynet::ImageResults results = quarrynet::parseImageResults(page, "engine.example");
    if (results.gallery.has_value() != results.timeCaption.has_value())
        std::abort();
    return 0;
}

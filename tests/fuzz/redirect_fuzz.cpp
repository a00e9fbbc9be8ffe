#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "search/download/redirect.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view page(reinterpret_cast<const char*>(data), size);
    const auto address = quarrynet::downloadAddress(page);
    const auto path = quarrynet::redirectPath(page);
    if (address && *address && (*address)->find("%2F") != std::string::npos)
        std::abort();
    if (path &&
        quarrynet::linkRequest(*path, "d.example", quarrynet::Route::Direct).find("\r\nHOST: ") == std::string::npos)
        std::abort();
    return 0;
}

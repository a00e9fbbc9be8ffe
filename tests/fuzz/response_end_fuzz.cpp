#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "common/response_end.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view response(reinterpret_cast<const char*>(data), size);
    // What is complete has a whole header.
    if (quarrynet::isCompleteResponse(response) && response.find("\r\n\r\n") == std::string_view::npos)
        std::abort();
    return 0;
}

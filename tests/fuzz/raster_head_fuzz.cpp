#include "common/raster_head.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::optional<RasterHead> head = readRasterHead(fuzz::textOf(data, size));
    if (!head)
        return 0;
    fuzz::check(head->width > 0 && head->height > 0, "a picture has pixels");
    fuzz::check(mediaType(head->format).substr(0, 6) == "image/", "a format has a media type");
    return 0;
}

#include "search/image/request.h"

namespace quarrynet {

Result<std::string> imageRequest(std::string_view keywords, std::optional<ImagePages> pages, std::string_view host,
                                 Route route)
{
    const std::string query = encodeQuery(keywords);
    if (!pages)
        return engineRequest("/images?num=10&hl=en&filter=0&safe=off&q=" + query, host, route);

    // Deliberate: through a proxy, the page is that of the web search's slider, and "svnum" and "sa" are missing.
    const bool direct = route == Route::Direct;
    const Result<std::int32_t> start = firstResultOfPage(direct ? pages->imageSlider : pages->webSlider, 10, -10);
    if (!start)
        return start.error();
    const std::string paging = "start=" + std::to_string(*start) + "&safe=off&q=" + query;
    return engineRequest(direct ? "/images?num=10&svnum=10&hl=en&filter=0&" + paging + "&sa=N"
                                : "/images?num=10&hl=en&filter=0&" + paging,
                         host, route);
}

} // namespace quarrynet

#include "search/web/request.h"

namespace quarrynet {

Result<std::string> webRequest(std::string_view keywords, std::optional<std::int32_t> page, std::string_view host,
                               Route route)
{
    std::string target = "/search?num=30&hl=en&filter=0&";
    if (page) {
        const Result<std::int32_t> start = firstResultOfPage(*page, 30, -30);
        if (!start)
            return start.error();
        target += "start=" + std::to_string(*start) + "&";
    }
    target += "safe=off&q=" + encodeQuery(keywords);
    return engineRequest(target, host, route);
}

} // namespace quarrynet

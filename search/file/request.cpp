#include "search/file/request.h"

namespace quarrynet {

Result<std::string> fileRequest(std::string_view fileName, std::optional<std::int32_t> page, std::string_view host,
                                Route route)
{
    std::string target = "/cgi-bin/s?t=f&d=&l=en&m=20&q=" + encodeQuery(fileName);
    if (page) {
        const Result<std::int32_t> first = firstResultOfPage(*page, 20, -19);
        if (!first)
            return first.error();
        target += "&f=" + std::to_string(*first);
    }
    return engineRequest(target, host, route);
}

} // namespace quarrynet

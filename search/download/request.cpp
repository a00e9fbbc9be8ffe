#include "search/download/request.h"

namespace quarrynet {

std::string downloadRequest(std::string_view keywords, std::optional<std::int32_t> page, std::string_view host,
                            Route route)
{
    // Deliberate: a first search through a proxy has two slashes between host and path, a paged one has one.
    std::string target = !page && route == Route::Proxy ? "//3120-20-0-" : "/3120-20-0-";
    target += std::to_string(page.value_or(1));
    target += "-5.html?qt=" + encodeQuery(keywords) + "&ca=20";
    return engineRequest(target, host, route);
}

} // namespace quarrynet

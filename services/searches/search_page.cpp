#include "searches/search_page.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "ground/decimal.h"
#include "ground/percent_coding.h"
#include "http/message.h"
#include "text/markup.h"

namespace quarrynet::services {

std::string_view typedPart(std::string_view query)
{
    if (query.substr(0, 2) == "q=")
        return query.substr(2);
    const std::size_t mark = query.find("&q=");
    return mark == std::string_view::npos ? std::string_view() : query.substr(mark + 3);
}

std::int64_t startPart(std::string_view query)
{
    const std::string_view settings =
        query.substr(0, 2) == "q=" ? std::string_view() : query.substr(0, query.find("&q="));
    std::size_t at = 0;
    while (at < settings.size()) {
        const std::size_t end = std::min(settings.find('&', at), settings.size());
        const std::string_view setting = settings.substr(at, end - at);
        if (setting.substr(0, 6) == "start=")
            return wholeNumber(setting.substr(6)).value_or(0);
        at = end + 1;
    }
    return 0;
}

std::string resultsHeading(std::int64_t first, std::int64_t last, std::int64_t total, double seconds)
{
    std::array<char, 32> time{};
    std::snprintf(time.data(), time.size(), "%.3f", seconds);
    return "<div>Results <b>" + withSeparators(first) + "</b> - <b>" + withSeparators(last) + "</b> of about <b>" +
           withSeparators(total) + "</b>, found in <b>" + time.data() + "</b> seconds</div>\n";
}

std::string pageLinks(std::string_view path, std::string_view typed, std::int64_t start, std::int64_t pageSize,
                      std::int64_t total, Language language)
{
    std::string links = "<div>";
    const auto link = [&](std::int64_t to, std::string_view label) {
        links += " <a href=\"";
        links += path;
        links += "?start=" + std::to_string(to) + "&amp;q=" + encodeComponent(typed) + "\">";
        links += label;
        links += "</a>";
    };
    if (start > 0)
        link(std::max<std::int64_t>(0, start - pageSize), translated("Previous", language));
    if (start + pageSize < total)
        link(start + pageSize, translated("Next", language));
    return links + "</div>\n";
}

} // namespace quarrynet::services

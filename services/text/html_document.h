#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quarrynet::services {

/// What a search needs of an HTML page: UTF-8, one line each, character references decoded.
struct HtmlDocument
{
    std::string title;                 ///< empty when the page has none
    std::string text;                  ///< the visible text, as far as the bound allows
    std::vector<std::string> pictures; ///< addresses of what it shows, as they stand in it; at most kMaxPagePictures
};

inline constexpr std::size_t kMaxPagePictures = 1000;

/// Reads any bytes: a page in the encoding that its byte order mark, its markup or its XML declaration names, else in
/// UTF-8 if it is that, else in Windows-1252. Markup is read as the HTML standard says, as far as HtmlLimits allow; of
/// the text at most `maxText` bytes are kept. Time grows in proportion to the page.
HtmlDocument readHtml(std::string_view page, std::size_t maxText);

} // namespace quarrynet::services

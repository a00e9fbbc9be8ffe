#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quarrynet::services {

/// The searchable content of an HTML page: UTF-8 texts of one line each, with character references decoded.
struct HtmlDocument
{
    std::string title;                 ///< empty when the page has none
    std::string text;                  ///< the visible text, up to the limit
    std::vector<std::string> pictures; ///< addresses as the page has them; at most kMaxPagePictures
};

inline constexpr std::size_t kMaxPagePictures = 1000;

/// Parses a page of any bytes. Its encoding is the one that the byte order mark, the markup or the XML declaration
/// states, else UTF-8 if the page is valid UTF-8, else Windows-1252. Parses markup by the HTML standard, within
/// HtmlLimits; keeps at most `maxText` bytes of the text. The time is proportional to the page's length.
HtmlDocument readHtml(std::string_view page, std::size_t maxText);

} // namespace quarrynet::services

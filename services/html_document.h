#pragma once

#include <string>
#include <string_view>

namespace quarrynet::services {

/// What a search needs of an HTML page: UTF-8, one line each, character references decoded.
struct HtmlDocument
{
    std::string title; ///< empty when the page has none
    std::string text;  ///< the visible text, as far as the bound allows
};

/// Reads any bytes: a page in the encoding that its byte order mark, its markup or its XML declaration names, else in
/// UTF-8 if it is that, else in Windows-1252. Markup is read as the HTML standard says, as far as HtmlLimits allow; of
/// the text at most `maxText` bytes are kept. Time grows in proportion to the page.
HtmlDocument readHtml(std::string_view page, std::size_t maxText);

} // namespace quarrynet::services

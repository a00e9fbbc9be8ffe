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

/// Reads any bytes; markup that is not well-formed costs text, nothing else. Of the text at most `maxText` bytes are
/// kept. Time grows in proportion to the page.
HtmlDocument readHtml(std::string_view page, std::size_t maxText);

} // namespace quarrynet::services

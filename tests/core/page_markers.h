#pragma once

#include <string_view>
#include <vector>

namespace quarrynet::samples {

/// The pieces of broken pages: the markers that the parsers look for, and extreme numbers.
inline const std::vector<std::string_view> kMarkers = {
    "<p><a",
    "<p><a href=",
    ">",
    "<",
    "</a>",
    "http",
    "&e=",
    "<b>",
    "</b>",
    "<b> ",
    "</b> of about <b>",
    "</b> of <b>",
    "src=/images?q=tbn",
    ":",
    " ",
    "main loop",
    "Found:",
    "-",
    "class",
    "pick",
    "OS:",
    " <",
    "/redir?",
    "redir",
    "%2F",
    "%3A",
    "/form",
    "&lt;dir&gt;",
    "<a",
    "q=",
    "not found",
    "newlocation = \"",
    "\";",
    "2000000000",
    "-1",
    "99999999999",
    "1 - 2000000000</b>",
    "\r\n",
    "\xff",
    ",",
    "30",
    "60",
    "=",
};

} // namespace quarrynet::samples

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Builds result pages for the parsers' tests from the markers that the parsers look for.
namespace quarrynet::samples {

inline std::string repeated(std::string_view text, std::size_t count)
{
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        all.append(text);
    return all;
}

/// Returns the heading of web and image pages.
inline std::string heading(std::string_view count, std::string_view time = "0.27")
{
    return "<p>Results <b>1</b> - <b>30</b> of about <b>" + std::string(count) + "</b>. Took <b>" + std::string(time) +
           "</b> s</p>";
}

inline std::string webEntry(std::string_view address, std::string_view title)
{
    return "<p><a href=" + std::string(address) + ">" + std::string(title) + "</a><br>text";
}

inline std::string webPage(std::string_view count, std::size_t entries = 1)
{
    return heading(count) + repeated(webEntry("http://a.example/", "A <b>title</b>"), entries);
}

inline std::string thumbnail(std::string_view address)
{
    return "<img src=/images?q=tbn:AbC:" + std::string(address) + " width=90>";
}

inline std::string imagePage(std::string_view count, std::size_t thumbnails = 1)
{
    return heading(count) + repeated(thumbnail("hostA/pics/a.jpg"), thumbnails);
}

inline std::string downloadHead(std::string_view count, std::string_view range)
{
    return "Found: <b>" + std::string(count) + "</b> <b>" + std::string(range) + "</b><!-- main loop -->";
}

inline std::string downloadEntry(std::string_view name, std::string_view link = "/redir?id=1")
{
    return "<b>" + std::string(name) + "</b><i class=d>Text of " + std::string(name) +
           "</i><b>OS:</b>Linux <b>Size:</b>1MB<b>License:</b>Free<a href=\"" + std::string(link) + "\">get</a>";
}

inline std::string fileEntry(std::string_view name, std::string_view size = "1,234")
{
    return "<b> " + std::string(size) + " </b><a href=ftp://h.example/" + std::string(name) + " class=f>" +
           std::string(name) + "</a>\n";
}

inline std::string directoryEntry(std::string_view name)
{
    return "&lt;dir&gt; <a href=/up class=u>up</a> <a href=/s?q=ftp://h.example/" + std::string(name) + " class=d><b>" +
           std::string(name) + "</b></a>\n";
}

inline std::string filePage(std::size_t files, std::size_t directories = 0)
{
    return "<form></form>" + repeated(fileEntry("a.zip"), files) + repeated(directoryEntry("dir"), directories);
}

} // namespace quarrynet::samples

#include "search/download/redirect.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "common/cutting.h"
#include "common/memory.h"
#include "common/text_utilities.h"

namespace quarrynet {

namespace {

constexpr std::string_view kPathWord = "redir";

// Maximum number of bytes that are replaced again because replacements formed them. Genuine links form none; a hostile
// link could take time quadratic in its length.
constexpr std::size_t kMostFormed = std::size_t{64} << 20;

std::size_t countPathWords(std::string_view text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(kPathWord); at != std::string_view::npos;
         at = text.find(kPathWord, at + kPathWord.size()))
        ++count;
    return count;
}

} // namespace

Result<std::string> redirectPath(std::string_view link)
{
    const std::string_view tail = cutFrom(link, findMarker(link, "%2F", 1) + 3);
    const std::size_t longest = textAllowance();
    if (link.size() > longest || countPathWords(link) * tail.size() > longest - link.size())
        return RuntimeError::OutOfMemory;
    std::optional<std::string> path = FindReplaceWithin(link, kPathWord, tail, kMostFormed);
    if (!path)
        return RuntimeError::OutOfMemory;
    return *std::move(path);
}

std::string linkRequest(std::string_view path, std::string_view host, Route route)
{
    std::string line(path);
    std::erase_if(line, [](char c) { return c == '\r' || c == '\n'; });
    return engineRequest(line, host, route);
}

Result<std::optional<std::string>> downloadAddress(std::string_view page)
{
    const Position p = findMarker(page, "newlocation = ", 1);
    if (p == 0)
        return std::optional<std::string>();
    // 15 skips the marker and the opening quote. 2 goes back over the ";" and the closing quote to the last byte, which
    // the length then excludes. The opened address has always lacked it.
    const Position begin = p + 15;
    const Position end = findMarker(page, ";", begin) - 2;
    const Result<std::string_view> address = cut(page, begin, end - begin);
    if (!address)
        return address.error();
    return std::optional<std::string>(FindReplace(FindReplace(*address, "%3A", ":"), "%2F", "/"));
}

std::string fallbackAddress(std::string_view host, std::string_view entry)
{
    std::string address = "http://";
    return address.append(host).append(entry);
}

} // namespace quarrynet

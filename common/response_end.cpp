#include "common/response_end.h"

#include <cstdint>
#include <optional>

#include "ground/ascii.h"
#include "ground/decimal.h"

namespace quarrynet {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kEmptyLine = "\r\n\r\n";

/// Removes `text` up to the first line end and returns the removed line. Returns nothing when there is no line end.
std::optional<std::string_view> takeLine(std::string_view& text)
{
    const std::size_t end = text.find(kLineEnd);
    if (end == std::string_view::npos)
        return std::nullopt;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + kLineEnd.size());
    return line;
}

std::string_view withoutBlanks(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Returns the status code of a status line, or nothing when it has none.
std::optional<int> statusCode(std::string_view line)
{
    const std::size_t blank = line.find(' ');
    if (!line.starts_with("HTTP/") || blank == std::string_view::npos)
        return std::nullopt;
    constexpr std::size_t kDigits = 3;
    return wholeNumber(line.substr(blank + 1, kDigits));
}

struct Framing
{
    bool chunked = false;
    bool broken = false;
    std::optional<std::uint64_t> length;
};

void readField(std::string_view line, Framing& framing)
{
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos)
        return;
    const std::string_view name = line.substr(0, colon);
    const std::string_view value = withoutBlanks(line.substr(colon + 1));
    if (equalsIgnoringCase(name, "Transfer-Encoding")) {
        framing.chunked = endsWithIgnoringCase(value, "chunked");
        framing.broken = framing.broken || !framing.chunked;
    } else if (equalsIgnoringCase(name, "Content-Length")) {
        const auto length = wholeNumberAs<std::uint64_t>(value);
        framing.broken = framing.broken || !length || (framing.length && framing.length != length);
        framing.length = length;
    }
}

/// Returns the size in the first line of a chunk, or nothing when there is none below 2^60.
std::optional<std::uint64_t> chunkSize(std::string_view line)
{
    constexpr std::size_t kMostDigits = 15;
    std::size_t digits = 0;
    std::uint64_t size = 0;
    for (; digits < line.size() && hexDigitValue(line[digits]) >= 0; ++digits) {
        if (digits == kMostDigits)
            return std::nullopt;
        size = size * 16 + static_cast<std::uint64_t>(hexDigitValue(line[digits]));
    }
    const std::string_view rest = withoutBlanks(line.substr(digits));
    if (digits == 0 || (!rest.empty() && rest.front() != ';'))
        return std::nullopt;
    return size;
}

bool hasLastChunk(std::string_view body)
{
    while (const std::optional<std::string_view> line = takeLine(body)) {
        const std::optional<std::uint64_t> size = chunkSize(*line);
        if (!size)
            return false;
        if (*size == 0) // trailer fields may follow, then an empty line
            return body.starts_with(kLineEnd) || body.find(kEmptyLine) != std::string_view::npos;
        if (*size > body.size() || body.substr(*size, kLineEnd.size()) != kLineEnd)
            return false;
        body.remove_prefix(*size + kLineEnd.size());
    }
    return false;
}

} // namespace

bool isCompleteResponse(std::string_view response)
{
    for (;;) {
        const std::size_t end = response.find(kEmptyLine);
        if (end == std::string_view::npos)
            return false;
        std::string_view header = response.substr(0, end + kLineEnd.size());
        response.remove_prefix(end + kEmptyLine.size());
        const std::optional<int> status = statusCode(*takeLine(header));
        if (!status)
            return false;
        if (*status >= 100 && *status < 200)
            continue; // an interim response; another one follows
        if (*status == 204 || *status == 304)
            return true;
        Framing framing;
        while (const std::optional<std::string_view> line = takeLine(header))
            readField(*line, framing);
        if (framing.broken)
            return false;
        if (framing.chunked)
            return hasLastChunk(response);
        return framing.length && response.size() >= *framing.length;
    }
}

} // namespace quarrynet

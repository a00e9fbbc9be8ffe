#include "services/http_message.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include "services/markup.h"

namespace quarrynet::services {

namespace {

char lowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string lowered(std::string_view text)
{
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), lowerAscii);
    return out;
}

/// A token of RFC 9110, section 5.6.2.
bool isToken(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        const char l = lowerAscii(c);
        return (l >= 'a' && l <= 'z') || (c >= '0' && c <= '9') ||
               std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
    });
}

std::string_view withoutBlanks(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

/// Takes one line off the front of `text`, without its end; nothing when no line end has arrived.
std::optional<std::string_view> takeLine(std::string_view& text)
{
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos)
        return std::nullopt;
    std::string_view line = text.substr(0, end);
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    text.remove_prefix(end + 1);
    return line;
}

std::optional<HttpResponse> checkVersion(std::string_view version)
{
    const bool wellFormed = version.size() == 8 && version.substr(0, 5) == "HTTP/" && version[5] >= '0' &&
                            version[5] <= '9' && version[6] == '.' && version[7] >= '0' && version[7] <= '9';
    if (!wellFormed)
        return errorResponse(400, "The request line does not end in an HTTP version.");
    if (version[5] != '1')
        return errorResponse(505, "This server speaks HTTP/1.0 and HTTP/1.1.");
    return std::nullopt;
}

/// Splits the request target (RFC 9112, section 3.2) into the request's host, path and query.
std::optional<HttpResponse> readTarget(std::string_view target, HttpRequest& request)
{
    constexpr std::string_view kScheme = "http://";
    if (target.size() >= kScheme.size() && lowered(target.substr(0, kScheme.size())) == kScheme) {
        request.absoluteForm = true;
        target.remove_prefix(kScheme.size());
        const std::size_t end = std::min(target.find_first_of("/?"), target.size());
        request.host = hostOfAuthority(target.substr(0, end));
        target.remove_prefix(end);
        if (request.host.empty())
            return errorResponse(400, "The address in the request line has no host.");
    } else if (target.empty() || target.front() != '/') {
        return request.method == "CONNECT"
                   ? errorResponse(501, "This server opens no tunnels.")
                   : errorResponse(400, "The request target is neither a path nor an http address.");
    }
    const std::size_t mark = target.find('?');
    request.path = std::string(target.substr(0, mark));
    if (mark != std::string_view::npos)
        request.query = std::string(target.substr(mark + 1));
    if (request.path.empty())
        request.path.push_back('/');
    return std::nullopt;
}

std::optional<HttpResponse> readRequestLine(std::string_view line, HttpRequest& request, bool& hostRequired)
{
    const std::size_t first = line.find(' ');
    const std::size_t last = line.rfind(' ');
    if (first == std::string_view::npos || first == last || !isToken(line.substr(0, first)))
        return errorResponse(400, "The request line is not a method, a target and a version.");
    request.method = std::string(line.substr(0, first));
    const std::string_view version = line.substr(last + 1);
    if (auto refusal = checkVersion(version))
        return refusal;
    hostRequired = version != "HTTP/1.0";
    const std::string_view target = line.substr(first + 1, last - first - 1);
    if (target.find_first_of(" \r") != std::string_view::npos)
        return errorResponse(400, "The request target holds a blank.");
    return readTarget(target, request);
}

/// The current time as RFC 9110, section 5.6.7 wants it, whatever the locale.
std::string httpDate()
{
    constexpr std::array<const char*, 7> kDays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s, %02d %s %04d %02d:%02d:%02d GMT",
                  kDays[static_cast<std::size_t>(parts.tm_wday)], parts.tm_mday,
                  kMonths[static_cast<std::size_t>(parts.tm_mon)], parts.tm_year + 1900, parts.tm_hour, parts.tm_min,
                  parts.tm_sec);
    return text.data();
}

} // namespace

std::string_view reasonPhrase(int status)
{
    switch (status) {
    case 200:
        return "OK";
    case 304:
        return "Not Modified";
    case 400:
        return "Bad Request";
    case 403:
        return "Forbidden";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 408:
        return "Request Timeout";
    case 414:
        return "URI Too Long";
    case 421:
        return "Misdirected Request";
    case 431:
        return "Request Header Fields Too Large";
    case 500:
        return "Internal Server Error";
    case 501:
        return "Not Implemented";
    case 503:
        return "Service Unavailable";
    case 505:
        return "HTTP Version Not Supported";
    default:
        return "Unknown";
    }
}

HttpResponse errorResponse(int status, std::string_view text)
{
    HttpResponse response;
    response.status = status;
    const std::string title = std::to_string(status) + " " + std::string(reasonPhrase(status));
    response.body = "<!DOCTYPE html>\n<html lang=\"en\"><head><title>" + title + "</title></head>\n<body><h1>" + title +
                    "</h1>\n<div>" + escapeText(text) + "</div></body></html>\n";
    if (status == 405)
        response.fields.emplace_back("Allow", "GET, HEAD");
    return response;
}

HeadState readRequestHead(std::string_view received)
{
    std::string_view rest = received;
    // A client may send an empty line before its request (RFC 9112, section 2.2).
    while (rest.substr(0, 2) == "\r\n" || rest.substr(0, 1) == "\n")
        takeLine(rest);
    const std::optional<std::string_view> line = takeLine(rest);
    if (!line) {
        if (received.size() > kMaxRequestLine)
            return errorResponse(414, "The request line is too long.");
        return HeadIncomplete{};
    }
    if (line->size() > kMaxRequestLine)
        return errorResponse(414, "The request line is too long.");

    HttpRequest request;
    bool hostRequired = true;
    if (auto refusal = readRequestLine(*line, request, hostRequired))
        return *refusal;

    std::size_t hosts = 0;
    for (std::size_t fields = 0;; ++fields) {
        const std::optional<std::string_view> field = takeLine(rest);
        if (fields > kMaxFields || received.size() - rest.size() > kMaxHead || (!field && received.size() > kMaxHead))
            return errorResponse(431, "The request's header is too large.");
        if (!field)
            return HeadIncomplete{};
        if (field->empty())
            break;
        const std::size_t colon = field->find(':');
        if (colon == std::string_view::npos || !isToken(field->substr(0, colon)))
            return errorResponse(400, "A header line is not a name, a colon and a value.");
        if (lowered(field->substr(0, colon)) != "host")
            continue;
        ++hosts;
        // The absolute form's host goes before the field's (RFC 9112, section 3.2.2).
        if (!request.absoluteForm)
            request.host = hostOfAuthority(withoutBlanks(field->substr(colon + 1)));
    }
    if (hosts > 1 || (hosts == 0 && hostRequired))
        return errorResponse(400, "The request needs exactly one Host line.");
    return request;
}

std::string responseBytes(const HttpResponse& response, bool headOnly)
{
    std::string bytes = "HTTP/1.1 " + std::to_string(response.status) + " ";
    bytes += reasonPhrase(response.status);
    bytes += "\r\nDate: " + httpDate();
    bytes += "\r\nContent-Type: " + response.contentType;
    bytes += "\r\nContent-Length: " + std::to_string(response.body.size());
    bytes += "\r\nX-Content-Type-Options: nosniff\r\nConnection: close\r\n";
    for (const auto& [name, value] : response.fields)
        bytes.append(name).append(": ").append(value).append("\r\n");
    bytes += "\r\n";
    if (!headOnly)
        bytes += response.body;
    return bytes;
}

std::string hostOfAuthority(std::string_view authority)
{
    const std::size_t at = authority.rfind('@');
    if (at != std::string_view::npos)
        authority.remove_prefix(at + 1);
    if (!authority.empty() && authority.front() == '[')
        return lowered(authority.substr(0, authority.find(']') + 1));
    return lowered(authority.substr(0, authority.find(':')));
}

std::optional<int> wholeNumber(std::string_view text)
{
    if (text.empty() || text.size() > 9)
        return std::nullopt;
    int number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        number = number * 10 + (c - '0');
    }
    return number;
}

} // namespace quarrynet::services

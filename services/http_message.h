#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// HTTP/1.1 messages as bytes, apart from sockets (RFC 9110, RFC 9112). Written for this project and not taken from a
/// library because the requests that arrive here carry what people typed without any escaping: a "#", a "&" or a "?"
/// in the keywords belongs to them, and a library would end or split the query there.
namespace quarrynet::services {

struct HttpRequest
{
    std::string method;
    std::string host;  ///< lower case, without port: of the absolute form, else of the Host field; may be empty
    std::string path;  ///< as sent, escapes and all; begins with "/"
    std::string query; ///< as sent: everything behind the first "?"
    bool absoluteForm = false;
};

struct HttpResponse
{
    int status = 200;
    std::string contentType = "text/html; charset=utf-8";
    std::string body;
    std::vector<std::pair<std::string, std::string>> fields = {};
};

/// A longer request line is answered with 414, a longer head with 431.
inline constexpr std::size_t kMaxRequestLine = 16 * 1024;
inline constexpr std::size_t kMaxHead = 64 * 1024;
inline constexpr std::size_t kMaxFields = 100;

/// The standard's phrase for a status code, such as "Not Found"; "Unknown" for one that is never sent here.
std::string_view reasonPhrase(int status);

/// A short page that says what was wrong. `text` is plain text.
HttpResponse errorResponse(int status, std::string_view text);

/// How far a request head has come.
struct HeadIncomplete
{};
using HeadState = std::variant<HeadIncomplete, HttpRequest, HttpResponse>;

/// Reads a request head from the beginning of what has arrived: not there yet, a request, or the answer that refuses it
/// (400, 414, 431, 501, 505). Lines may end in CR LF or in LF alone (RFC 9112, section 2.2). Bytes of the
/// request target are taken as they are, blanks and line ends excepted.
HeadState readRequestHead(std::string_view received);

/// The whole response: status line, Content-Length and "Connection: close" fields, and the body unless `headOnly`.
/// Nothing is chunked or compressed: the reader takes everything up to the connection's end.
std::string responseBytes(const HttpResponse& response, bool headOnly);

/// The lower-case host of "host", "host:port" or "[address]:port".
std::string hostOfAuthority(std::string_view authority);

/// The whole number that `text` consists of, at most nine digits and nothing else.
std::optional<int> wholeNumber(std::string_view text);

} // namespace quarrynet::services

#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "ground/OpenFile.h"

/// HTTP/1.1 messages as bytes, apart from sockets (RFC 9110, RFC 9112). Boost.Beast reads and writes them, because it
/// hands out the request target as it was sent: the requests that arrive here carry what people typed without any
/// escaping, and a "#", a "&" or a "?" in the keywords belongs to them.
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
    std::shared_ptr<const OpenFile> file = nullptr; ///< whose content is the body instead, when there is one
};

/// A longer request line is answered with 414, a longer head with 431.
inline constexpr std::size_t kMaxRequestLine = 16 * 1024;
inline constexpr std::size_t kMaxHead = 64 * 1024;
inline constexpr std::size_t kMaxFields = 100;

/// A short page that says what was wrong. `text` is plain text.
HttpResponse errorResponse(int status, std::string_view text);

/// How far a request head has come.
struct HeadIncomplete
{};
using HeadState = std::variant<HeadIncomplete, HttpRequest, HttpResponse>;

/// Reads one request head, piece by piece as it arrives.
class RequestReader
{
public:
    RequestReader();
    ~RequestReader();
    RequestReader(const RequestReader&) = delete;
    RequestReader& operator=(const RequestReader&) = delete;

    /// What all pieces up to this one make: not all there yet, a request, or the answer that refuses it (400, 414, 431,
    /// 501, 505). The last two are final. What follows the head is left out. Lines end in CR LF, and empty ones before
    /// the request do not count (RFC 9112, section 2.2). The target's bytes are taken as they are, but for control
    /// bytes, which come out escaped (a tab as "%09"); blanks and a lone CR are refused.
    HeadState take(std::string_view piece);

    /// Whether nothing of a request has arrived.
    bool empty() const;

private:
    class Parser;
    std::unique_ptr<Parser> parser_;
};

/// Returns the status line and the fields, with the length of the body and "Connection: close", up to the empty line
/// before the body. Nothing is chunked or compressed: the reader takes everything up to the connection's end.
std::string responseHead(const HttpResponse& response);

/// Returns the whole response; without its body when `headOnly`. A body that is a file is left out.
std::string responseBytes(const HttpResponse& response, bool headOnly);

/// The lower-case host of "host", "host:port" or "[address]:port".
std::string hostOfAuthority(std::string_view authority);

} // namespace quarrynet::services

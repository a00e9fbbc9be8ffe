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
#include "text/languages.h"

/// HTTP/1.1 messages as bytes, independent of sockets (RFC 9110, RFC 9112). Boost.Beast parses and writes them, because
/// it returns the request target as it was sent: requests here carry what people typed without escaping, so that a "#",
/// "&" or "?" may be part of the keywords.
namespace quarrynet::services {

struct HttpRequest
{
    std::string method;
    std::string host;  ///< lower case, without port: from the absolute form, else from the Host field; may be empty
    std::string path;  ///< as sent, not decoded; begins with "/"
    std::string query; ///< as sent: everything after the first "?"
    bool absoluteForm = false;
    std::string agent = {};                ///< the User-Agent field; may be empty
    Language language = Language::English; ///< of own texts, by the Accept-Language field
};

/// The beginning of the User-Agent of every request that this program makes.
inline constexpr std::string_view kOwnAgent = "quarrynet-services/";

struct HttpResponse
{
    int status = 200;
    std::string contentType = "text/html; charset=utf-8";
    std::string body;
    std::vector<std::pair<std::string, std::string>> fields = {};
    std::shared_ptr<const OpenFile> file = nullptr;  ///< replaces `body` unless null
    std::optional<Language> language = std::nullopt; ///< set if the body depends on the request's language
};

/// A longer request line gets 414, a longer head 431.
inline constexpr std::size_t kMaxRequestLine = 16 * 1024;
inline constexpr std::size_t kMaxHead = 64 * 1024;
inline constexpr std::size_t kMaxFields = 100;

/// Returns a short page that states the error. `text` is an own text in English, with "%1" for `argument`, which is
/// plain text from elsewhere.
HttpResponse errorResponse(int status, std::string_view text, Language language = Language::English,
                           std::string_view argument = {});

/// Returns a page of own texts in `language`.
HttpResponse pageResponse(std::string body, Language language);

/// The request head has not arrived completely.
struct HeadIncomplete
{};
using HeadState = std::variant<HeadIncomplete, HttpRequest, HttpResponse>;

/// Parses one request head, piece by piece as it arrives.
class RequestReader
{
public:
    RequestReader();
    ~RequestReader();
    RequestReader(const RequestReader&) = delete;
    RequestReader& operator=(const RequestReader&) = delete;

    /// Adds a piece. Returns HeadIncomplete, the request, or an error response (400, 414, 431, 501, 505); the last two
    /// are final. Ignores whatever follows the head. Lines end in CR LF, and empty lines before the request are skipped
    /// (RFC 9112, section 2.2). Bytes of the target are kept as they are, except that control bytes are escaped (a tab
    /// as "%09"); blanks and a lone CR are rejected.
    HeadState take(std::string_view piece);

    /// Returns whether no byte of a request has arrived.
    bool empty() const;

private:
    class Parser;
    std::unique_ptr<Parser> parser_;
};

/// Returns the status line and the fields, including the body's length and "Connection: close", up to the empty line
/// before the body. Nothing is chunked or compressed: the program reads up to the end of the connection.
std::string responseHead(const HttpResponse& response);

/// Returns the whole response, without its body when `headOnly`. A body from a file is not included.
std::string responseBytes(const HttpResponse& response, bool headOnly);

/// Returns the host of "host", "host:port" or "[address]:port", in lower case.
std::string hostOfAuthority(std::string_view authority);

} // namespace quarrynet::services

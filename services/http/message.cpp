#include "http/message.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <sstream>

#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/write.hpp>

#include "ground/ascii.h"
#include "ground/percent_coding.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

namespace http = boost::beast::http;

std::string_view viewOf(boost::beast::string_view text)
{
    return {text.data(), text.size()};
}

/// Line ends do not count.
bool isControl(char c)
{
    return isAsciiControl(c) && c != '\r' && c != '\n';
}

/// Returns whether the third word of a request line is an unsupported HTTP version. The parser has rejected the line
/// and returns nothing of it.
bool namesOtherVersion(std::string_view line)
{
    const std::size_t target = line.find(' ') + 1;
    const std::string_view version = line.substr(std::min(line.find(' ', target), line.size() - 1) + 1, 8);
    return version.size() == 8 && version.substr(0, 5) == "HTTP/" && isAsciiDigit(version[5]) && version[6] == '.' &&
           isAsciiDigit(version[7]) && version != "HTTP/1.0" && version != "HTTP/1.1";
}

/// Splits the request target (RFC 9112, section 3.2) into the request's host, path and query.
std::optional<HttpResponse> readTarget(std::string_view target, HttpRequest& request)
{
    constexpr std::string_view kScheme = "http://";
    if (startsWithIgnoringCase(target, kScheme)) {
        request.absoluteForm = true;
        target.remove_prefix(kScheme.size());
        const std::size_t end = std::min(target.find_first_of("/?"), target.size());
        request.host = hostOfAuthority(target.substr(0, end));
        target.remove_prefix(end);
        if (request.host.empty())
            return errorResponse(400, "The address in the request line has no host.", request.language);
    } else if (target.empty() || target.front() != '/') {
        return request.method == "CONNECT"
                   ? errorResponse(501, "This server opens no tunnels.", request.language)
                   : errorResponse(400, "The request target is neither a path nor an http address.", request.language);
    }
    const std::size_t mark = target.find('?');
    request.path = std::string(target.substr(0, mark));
    if (mark != std::string_view::npos)
        request.query = std::string(target.substr(mark + 1));
    if (request.path.empty())
        request.path.push_back('/');
    return std::nullopt;
}

/// Returns the current time in the form of RFC 9110, section 5.6.7. The program never leaves the "C" locale.
std::string httpDate()
{
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    std::array<char, 64> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S GMT", &parts)};
}

} // namespace

HttpResponse pageResponse(std::string body, Language language)
{
    HttpResponse response;
    response.body = std::move(body);
    response.language = language;
    return response;
}

HttpResponse errorResponse(int status, std::string_view text, Language language, std::string_view argument)
{
    HttpResponse response = pageResponse({}, language);
    response.status = status;
    const std::string title =
        std::to_string(status) + " " + std::string(viewOf(http::obsolete_reason(static_cast<http::status>(status))));
    response.body = "<!DOCTYPE html>\n<html lang=\"" + std::string(codeOf(language)) + "\"><head><title>" + title +
                    "</title></head>\n<body><h1>" + title + "</h1>\n<div>" +
                    escapeText(translated(text, language, argument)) + "</div></body></html>\n";
    if (status == 405)
        response.fields.emplace_back("Allow", "GET, HEAD");
    return response;
}

class RequestReader::Parser
{
public:
    Parser()
    {
        parser_.skip(true); // no request answered here has a body
        parser_.header_limit(kMaxHead);
    }

    HeadState take(std::string_view piece)
    {
        append(piece);
        if ((lineSize_ > 0 ? lineSize_ : received_.size()) > kMaxRequestLine)
            return errorResponse(414, "The request line is too long.");
        boost::beast::error_code error;
        parsed_ += parser_.put(boost::asio::buffer(received_) + parsed_, error);
        if (error == http::error::need_more)
            return HeadIncomplete{};
        if (error == http::error::header_limit)
            return errorResponse(431, "The request's header is too large.");
        if (error == http::error::bad_version && namesOtherVersion(received_))
            return errorResponse(505, "This server supports HTTP/1.0 and HTTP/1.1 only.");
        if (error)
            return errorResponse(400, "The request is malformed: %1.", Language::English, error.message());
        return readMessage(parser_.get());
    }

    bool empty() const { return received_.empty(); }

private:
    void append(std::string_view piece)
    {
        for (const char c : piece) {
            if (received_.empty() && (c == '\r' || c == '\n'))
                continue;
            // The parser would reject control bytes in the target, but pasted keywords may contain them.
            if (lineSize_ == 0 && inTarget_ && isControl(c))
                received_ += encodeComponent({&c, 1});
            else
                received_.push_back(c);
            inTarget_ = inTarget_ || c == ' ';
            if (c == '\n' && lineSize_ == 0)
                lineSize_ = received_.size();
        }
    }

    /// Several fields are one list (RFC 9110, section 5.3).
    static Language languageOf(const http::request<http::empty_body>& message)
    {
        std::string wanted;
        const auto fields = message.equal_range(http::field::accept_language);
        for (auto field = fields.first; field != fields.second; ++field)
            wanted.append(viewOf(field->value())).append(",");
        return preferredLanguage(wanted);
    }

    static HeadState readMessage(const http::request<http::empty_body>& message)
    {
        if (std::distance(message.begin(), message.end()) > static_cast<std::ptrdiff_t>(kMaxFields))
            return errorResponse(431, "The request's header is too large.");
        HttpRequest request;
        request.method = std::string(viewOf(message.method_string()));
        request.host = hostOfAuthority(viewOf(message[http::field::host]));
        request.agent = std::string(viewOf(message[http::field::user_agent]));
        request.language = languageOf(message);
        // The host of the absolute form takes precedence over the Host field (RFC 9112, section 3.2.2).
        if (auto refusal = readTarget(viewOf(message.target()), request))
            return *refusal;
        const std::size_t hosts = message.count(http::field::host);
        if (hosts > 1 || (hosts == 0 && message.version() >= 11))
            return errorResponse(400, "The request needs exactly one Host field.", request.language);
        return request;
    }

    std::string received_;
    bool inTarget_ = false;    ///< or after it
    std::size_t lineSize_ = 0; ///< of the request line including its end; 0 until it has arrived
    std::size_t parsed_ = 0;
    http::request_parser<http::empty_body> parser_;
};

RequestReader::RequestReader() : parser_(std::make_unique<Parser>()) {}

RequestReader::~RequestReader() = default;

HeadState RequestReader::take(std::string_view piece)
{
    return parser_->take(piece);
}

bool RequestReader::empty() const
{
    return parser_->empty();
}

std::string responseHead(const HttpResponse& response)
{
    http::response<http::empty_body> message(static_cast<http::status>(response.status), 11);
    message.set(http::field::date, httpDate());
    message.set(http::field::content_type, response.contentType);
    message.content_length(response.file ? response.file->size() : response.body.size());
    message.set("X-Content-Type-Options", "nosniff");
    if (response.language) {
        message.set(http::field::content_language, std::string(codeOf(*response.language)));
        message.set(http::field::vary, "Accept-Language");
    }
    message.keep_alive(false);
    for (const auto& [name, value] : response.fields)
        message.insert(name, value);
    std::ostringstream head;
    head << message.base();
    return head.str();
}

std::string responseBytes(const HttpResponse& response, bool headOnly)
{
    std::string bytes = responseHead(response);
    if (!headOnly && response.file == nullptr)
        bytes += response.body;
    return bytes;
}

std::string hostOfAuthority(std::string_view authority)
{
    const std::size_t at = authority.rfind('@');
    if (at != std::string_view::npos)
        authority.remove_prefix(at + 1);
    if (!authority.empty() && authority.front() == '[')
        return toLowerAscii(authority.substr(0, authority.find(']') + 1));
    return toLowerAscii(authority.substr(0, authority.find(':')));
}

} // namespace quarrynet::services

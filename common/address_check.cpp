#include "common/address_check.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "common/cutting.h"
#include "ground/ascii.h"
#include "ground/percent_coding.h"

namespace quarrynet {

namespace {

// The smallest limit of any supported system for a program's argument is 128 KB.
constexpr std::size_t kMaxLength = 64 * 1024;

bool isOneOf(char c, std::string_view characters)
{
    return characters.find(c) != std::string_view::npos;
}

// Validates user information, host and port (RFC 3986, section 3.2). Stricter to protect the program that opens the
// address: the host must not look like an option, nor be empty.
bool isAuthority(std::string_view authority)
{
    std::string_view user;
    std::string_view host = authority;
    if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos) {
        user = authority.substr(0, at);
        host = authority.substr(at + 1);
    }
    const auto isUserByte = [](char c) {
        return isAsciiAlphanumeric(c) || !isAscii(c) || isOneOf(c, "-._~%!&*+,;=:$'()");
    };
    if (!std::all_of(user.begin(), user.end(), isUserByte))
        return false;
    if (authority.empty() || authority.front() == '-' || host.empty() || host.front() == '-')
        return false;

    std::string_view port;
    if (host.front() == '[') { // an IPv6 address
        const std::size_t end = host.find(']');
        if (end == std::string_view::npos || end < 3)
            return false;
        const std::string_view inner = host.substr(1, end - 1);
        if (!std::all_of(inner.begin(), inner.end(), [](char c) { return hexDigitValue(c) >= 0 || isOneOf(c, ":."); }))
            return false;
        port = host.substr(end + 1);
    } else {
        const std::size_t colon = std::min(host.find(':'), host.size());
        port = host.substr(colon);
        const std::string_view name = host.substr(0, colon);
        const auto isHostByte = [](char c) { return isAsciiAlphanumeric(c) || !isAscii(c) || isOneOf(c, "-._~%"); };
        if (name.empty() || !std::all_of(name.begin(), name.end(), isHostByte))
            return false;
    }
    if (port.empty())
        return true;
    if (port.front() != ':')
        return false;
    port.remove_prefix(1);
    return port.size() <= 5 && std::all_of(port.begin(), port.end(), isAsciiDigit);
}

// Characters that stay after the scheme's colon. "!" is one of them, because some pages keep their state after "#!".
constexpr std::string_view kPathBytes = "-._~!*&+,;=:@/";

std::string encodedPath(std::string_view text)
{
    const std::size_t fragment = std::min(text.find('#'), text.size());
    const std::size_t query = std::min(text.find('?'), fragment);
    constexpr std::string_view kQueryBytes = "-._~!*&+,;=:@/?";
    std::string result = encodePercentOnce(text.substr(0, query), kPathBytes);
    if (query < fragment)
        result += '?' + encodePercentOnce(text.substr(query + 1, fragment - query - 1), kQueryBytes);
    if (fragment < text.size())
        result += '#' + encodePercentOnce(text.substr(fragment + 1), kQueryBytes);
    return result;
}

std::optional<std::string> networkAddress(std::string_view scheme, std::string_view rest)
{
    if (rest.substr(0, 2) != "//")
        return std::nullopt;
    rest.remove_prefix(2);
    const std::size_t end = std::min(rest.find_first_of("/?#"), rest.size());
    const std::string_view authority = rest.substr(0, end);
    if (!isAuthority(authority))
        return std::nullopt;
    return std::string(scheme) + "://" + encodePercentOnce(authority, "-._~!*&+,;=:@[]") +
           encodedPath(rest.substr(end));
}

// Returns whether an address may set this field. Only the ordinary fields of a message are safe (RFC 6068, section 4).
bool isLetterField(std::string_view field)
{
    constexpr std::array<std::string_view, 7> kFields = {"to",   "cc",       "bcc",        "subject",
                                                         "body", "keywords", "in-reply-to"};
    const std::string name = toLowerAscii(field.substr(0, field.find('=')));
    return std::find(kFields.begin(), kFields.end(), name) != kFields.end();
}

std::optional<std::string> mailAddress(std::string_view rest)
{
    // A fragment after "#" has no meaning here, and mail programs treat it differently.
    if (rest.empty() || rest.front() == '-' || isOneOf('#', rest))
        return std::nullopt;
    if (const std::size_t query = rest.find('?'); query != std::string_view::npos) {
        std::string_view fields = rest.substr(query + 1);
        while (!fields.empty()) {
            const std::size_t end = std::min(fields.find('&'), fields.size());
            if (!isLetterField(fields.substr(0, end)))
                return std::nullopt;
            fields.remove_prefix(std::min(end + 1, fields.size()));
        }
    }
    return "mailto:" + encodedPath(rest);
}

} // namespace

std::optional<std::string> openableAddress(std::string_view address)
{
    address = trimBlanks(address);
    if (address.size() > kMaxLength || std::any_of(address.begin(), address.end(), isAsciiControl))
        return std::nullopt;
    const std::size_t colon = address.find(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    const std::string scheme = toLowerAscii(address.substr(0, colon));
    const std::string_view rest = address.substr(colon + 1);

    std::optional<std::string> result;
    if (scheme == "http" || scheme == "https" || scheme == "ftp" || scheme == "ftps")
        result = networkAddress(scheme, rest);
    else if (scheme == "mailto")
        result = mailAddress(rest);
    if (result && result->size() > kMaxLength)
        return std::nullopt;
    return result;
}

} // namespace quarrynet

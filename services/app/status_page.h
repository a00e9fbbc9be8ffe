#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "http/Router.h"
#include "index/database.h"

/// The page on which a running service says how it is, for "quarrynet-services status": also to people who may not
/// read its index. It names no folders.
namespace quarrynet::services {

inline constexpr std::string_view kStatusPath = Router::kOwnPage;

/// A longer page is not one of these services'.
inline constexpr std::size_t kMaxStatusPage = 16 * 1024;

/// What a service says. Texts from outside are one line of at most a few hundred bytes, without control characters
/// and without those that change the direction of writing.
struct ServiceStatus
{
    std::string version;    ///< at most 40 of the characters 0-9 A-Z a-z . + ~ -
    std::string service;    ///< its name, or that of the proxy
    std::string fault;      ///< why it does not search, because of its configuration; empty if it does
    std::string indexFault; ///< why it cannot use the index; empty if it can
    std::optional<std::int64_t> indexTime;
    std::optional<std::int64_t> unfinishedIndexTime;
    std::map<std::string, std::int64_t> counts; ///< by the words that people read, such as "web pages"
};

/// Returns the content of the page: lines of plain text.
std::string statusText(const ServiceStatus& status);

/// Parses a page. Returns nothing for one that no service of this program made, such as one without a version. Unknown
/// lines are ignored.
std::optional<ServiceStatus> readStatus(std::string_view text);

/// Returns a handler that answers a request for the page, and passes all others on. `fault` is as above.
Router::Handler withStatusPage(const std::string& service, const std::string& fault, IndexPool& index,
                               Router::Handler handler);

/// Returns the proxy's page.
HttpResponse proxyStatusPage();

} // namespace quarrynet::services

#include "crawl/HttpClient.h"

#include <chrono>
#include <functional>
#include <utility>

#include "crawl/http_listing.h"
#include "ground/ascii.h"
#include "ground/percent_coding.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

constexpr std::chrono::seconds kMaxTime{120};
constexpr int kMostRobotsRedirects = 5;
constexpr int kOk = 200;
constexpr int kRedirects = 300;    ///< and above
constexpr int kClientErrors = 400; ///< and above
constexpr int kTooManyRequests = 429;
constexpr int kBroken = 500; ///< and above
constexpr int kUnavailable = 503;

bool isPage(std::string_view type)
{
    return startsWithIgnoringCase(type, "text/html") || startsWithIgnoringCase(type, "application/xhtml+xml");
}

bool isWebAddress(std::string_view address)
{
    return startsWithIgnoringCase(address, "http://") || startsWithIgnoringCase(address, "https://");
}

} // namespace

bool HttpClient::mayFetch(std::string_view address) const
{
    // Only within the very same site, so that the entries' addresses are right.
    return address.substr(0, site_.size()) == site_ && address.substr(site_.size(), 1) == "/" &&
           (!robots_ || robots_->allows(address.substr(site_.size())));
}

Fetched HttpClient::fetch(FetchOrder order, FetchPool& pool)
{
    order.end = std::chrono::steady_clock::now() + kMaxTime;
    Fetched result;
    result.fault = Fetched::Fault::Broken;
    Fetches fetches(pool);
    fetches.start(std::move(order), [&result](Fetched fetched) { result = std::move(fetched); });
    fetches.run();
    return result;
}

HttpClient::Page HttpClient::fetchPage(const std::string& address)
{
    Page page;
    page.address = address;
    FetchOrder order;
    order.address = address;
    order.maxBytes = kMaxListing;
    order.mayRedirect = [this, &page](std::string_view, std::string_view to) {
        if (!mayFetch(to))
            return false;
        page.address = std::string(to);
        return true;
    };
    page.fetched = fetch(std::move(order), pool_);
    return page;
}

/// Fetches robots.txt over up to kMostRobotsRedirects redirects. The first that leaves the site ends the use of the
/// site's own connections, which may reach private hosts.
Fetched HttpClient::fetchRobots() const
{
    std::string address = site_ + "/robots.txt";
    int redirects = 0;
    const auto order = [&address, &redirects](std::function<bool(std::string_view, std::string_view)> mayRedirect) {
        FetchOrder made;
        made.address = address;
        made.maxBytes = kMaxRobots + 1; // one more tells RobotsRules that the file goes on
        made.cut = true;
        made.mostRedirects = kMostRobotsRedirects - redirects;
        made.mayRedirect = std::move(mayRedirect);
        return made;
    };
    FetchOrder onSite = order([&redirects](std::string_view from, std::string_view to) {
        const bool follows = followsOnSite(from, to);
        redirects += follows ? 1 : 0;
        return follows;
    });
    Fetched fetched = fetch(std::move(onSite), pool_);
    if (fetched.fault != Fetched::Fault::Redirect || !isWebAddress(fetched.detail) || redirects >= kMostRobotsRedirects)
        return fetched;
    address = fetched.detail;
    ++redirects;
    return fetch(order([](std::string_view, std::string_view to) { return isWebAddress(to); }), otherSites_);
}

/// As RFC 9309, section 2.3.1, says: a site without the file allows everything, and one that fails to send it nothing.
Outcome<Done> HttpClient::readRobots()
{
    const std::string name = site_ + "/robots.txt";
    const Fetched fetched = fetchRobots();
    const bool isRedirect = fetched.fault == Fetched::Fault::Redirect;
    const bool hasTooManyRedirects = isRedirect && isWebAddress(fetched.detail);
    if (isRedirect && !hasTooManyRedirects)
        return Failure{name + ": it leads to " + tidyAddress(fetched.detail)};
    if (!isRedirect && fetched.fault != Fetched::Fault::None)
        return Failure{name + ": " +
                       (fetched.fault == Fetched::Fault::TooLarge ? "its answer is too large" : fetched.detail)};
    const bool isSuccess = fetched.status >= kOk && fetched.status < kRedirects;
    const bool isUnavailable = hasTooManyRedirects || (fetched.status >= kClientErrors && fetched.status < kBroken &&
                                                       fetched.status != kTooManyRequests);
    if (!isSuccess && !isUnavailable)
        return Failure{name + ": the server answers " + std::to_string(fetched.status)};
    robots_.emplace();
    if (isSuccess) {
        const std::string agent = userAgent();
        robots_.emplace(fetched.body, std::string_view(agent).substr(0, agent.find('/')));
    }
    return Done{};
}

Outcome<ListedDirectory> HttpClient::list(std::string_view path)
{
    if (!robots_) {
        const Outcome<Done> read = readRobots();
        if (!read)
            return read.error();
    }
    const std::string address = site_ + "/" + encodePath(path);
    if (!mayFetch(address))
        return refusedDirectory("the server's robots.txt does not allow it");
    const Page page = fetchPage(address);
    const Fetched& fetched = page.fetched;
    if (fetched.fault == Fetched::Fault::TooLarge)
        return refusedDirectory("it is too large");
    if (fetched.fault == Fetched::Fault::Redirect)
        return refusedDirectory("it leads to " + tidyAddress(fetched.detail));
    if (fetched.fault != Fetched::Fault::None)
        return Failure{address + ": " + fetched.detail};
    if (fetched.status == kTooManyRequests || fetched.status >= kBroken)
        return Failure{address + ": the server answers " + std::to_string(fetched.status) +
                       (fetched.status == kTooManyRequests || fetched.status == kUnavailable
                            ? ", which asks for fewer requests; try again later or with a lower rate"
                            : "")};
    if (fetched.status != kOk)
        return refusedDirectory("the server answers " + std::to_string(fetched.status));
    std::optional<HttpListing> listing;
    if (isPage(fetched.contentType) && page.address.back() == '/')
        listing = readHttpListing(fetched.body, page.address);
    if (!listing)
        return refusedDirectory("what it answers is not the listing of a directory");
    if (listing->entries.size() > kMaxListedEntries)
        return refusedDirectory("it is too large");
    ListedDirectory directory;
    directory.listing = std::move(listing->identity);
    directory.entries = std::move(listing->entries);
    return directory;
}

} // namespace quarrynet::services

#include "crawl/HttpClient.h"

#include <chrono>
#include <utility>

#include "crawl/http_listing.h"
#include "ground/ascii.h"
#include "ground/percent_coding.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

constexpr std::chrono::seconds kMaxTime{120};
constexpr int kOk = 200;
constexpr int kTooManyRequests = 429;
constexpr int kBroken = 500; ///< and above
constexpr int kUnavailable = 503;

bool isPage(std::string_view type)
{
    return startsWithIgnoringCase(type, "text/html") || startsWithIgnoringCase(type, "application/xhtml+xml");
}

} // namespace

bool HttpClient::mayFetch(std::string_view address) const
{
    // Only within the very same site, so that the entries' addresses are right.
    return address.substr(0, site_.size()) == site_ && address.substr(site_.size(), 1) == "/" &&
           (!robots_ || robots_->allows(address.substr(site_.size())));
}

HttpClient::Page HttpClient::fetch(const std::string& address, std::size_t most)
{
    Page page;
    page.address = address;
    FetchOrder order;
    order.address = address;
    order.maxBytes = most;
    order.end = std::chrono::steady_clock::now() + kMaxTime;
    order.mayRedirect = [this, &page](std::string_view, std::string_view to) {
        if (!mayFetch(to))
            return false;
        page.address = std::string(to);
        return true;
    };
    Fetches fetches(pool_);
    page.fetched.fault = Fetched::Fault::Broken;
    fetches.start(std::move(order), [&page](Fetched fetched) { page.fetched = std::move(fetched); });
    fetches.run();
    return page;
}

Outcome<Done> HttpClient::readRobots()
{
    const Page page = fetch(site_ + "/robots.txt", kMaxRobots);
    const Fetched& fetched = page.fetched;
    const bool isElsewhere = fetched.fault == Fetched::Fault::Redirect || fetched.fault == Fetched::Fault::TooLarge;
    // A server that fails to send the file allows nothing, one without it everything (RFC 9309, section 2.3.1). A file
    // elsewhere or of excessive length is taken as none.
    if (fetched.fault != Fetched::Fault::None && !isElsewhere)
        return Failure{site_ + "/robots.txt: " + fetched.detail};
    if (fetched.status == kTooManyRequests || fetched.status >= kBroken)
        return Failure{site_ + "/robots.txt: the server answers " + std::to_string(fetched.status)};
    robots_.emplace();
    if (!isElsewhere && fetched.status == kOk) {
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
    const Page page = fetch(address, kMaxListing);
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

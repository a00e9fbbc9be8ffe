#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "config/crawl_address.h"
#include "crawl/listed_directory.h"
#include "crawl/robots.h"
#include "ground/Outcome.h"
#include "live/fetch.h"

namespace quarrynet::services {

/// Lists directories of an HTTP or HTTPS server by the pages that it makes for them (see readHttpListing()). Obeys the
/// server's robots.txt, which may be redirected to other servers; all other redirects are followed within the site
/// only.
class HttpClient
{
public:
    /// `address` is one of http or https, of which only the site counts. `pool` makes its connections, and `otherSites`
    /// those to wherever the site redirects its robots.txt. Both must outlive this object.
    HttpClient(const CrawlAddress& address, FetchPool& pool, FetchPool& otherSites)
        : site_(address.site), pool_(pool), otherSites_(otherSites)
    {}

    /// Lists the directory `path` (see CrawlAddress::path). A page that is no listing, or that robots.txt does not
    /// allow, counts as refused. Fails when the server or its robots.txt cannot be read, and when the server asks for
    /// fewer requests.
    Outcome<ListedDirectory> list(std::string_view path);

private:
    struct Page
    {
        Fetched fetched;
        std::string address; ///< after redirects
    };
    static Fetched fetch(FetchOrder order, FetchPool& pool);
    Fetched fetchRobots() const;
    Page fetchPage(const std::string& address);
    Outcome<Done> readRobots();
    bool mayFetch(std::string_view address) const;

    std::string site_;
    FetchPool& pool_;
    FetchPool& otherSites_;
    std::optional<RobotsRules> robots_; ///< read before the first directory
};

} // namespace quarrynet::services

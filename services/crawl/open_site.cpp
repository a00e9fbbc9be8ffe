#include "crawl/open_site.h"

#include <memory>

#include "crawl/FtpClient.h"
#include "crawl/HttpClient.h"

namespace quarrynet::services {

DirectoryLister openSite(const CrawlAddress& address, const std::string& certificates)
{
    if (address.scheme == CrawlAddress::Scheme::Ftp || address.scheme == CrawlAddress::Scheme::Ftps) {
        const auto client = std::make_shared<FtpClient>(address, certificates);
        return [client](std::string_view path) { return client->list(path); };
    }
    // A person names the site, which may be private, but where its robots.txt leads is the site's choice.
    const auto pool = std::make_shared<FetchPool>(certificates);
    const auto otherSites = std::make_shared<FetchPool>(certificates, Reach::PublicOnly);
    const auto client = std::make_shared<HttpClient>(address, *pool, *otherSites);
    return [pool, otherSites, client](std::string_view path) { return client->list(path); };
}

} // namespace quarrynet::services

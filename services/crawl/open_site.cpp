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
    const auto pool = std::make_shared<FetchPool>(certificates);
    const auto client = std::make_shared<HttpClient>(address, *pool);
    return [pool, client](std::string_view path) { return client->list(path); };
}

} // namespace quarrynet::services

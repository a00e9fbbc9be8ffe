#include "config/crawl_address.h"

#include <algorithm>
#include <array>
#include <utility>

#include "ground/ascii.h"
#include "ground/decimal.h"
#include "ground/percent_coding.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kMaxAddress = 2048;
constexpr std::array<std::pair<std::string_view, CrawlAddress::Scheme>, 4> kSchemes{
    {{"ftp://", CrawlAddress::Scheme::Ftp},
     {"ftps://", CrawlAddress::Scheme::Ftps},
     {"http://", CrawlAddress::Scheme::Http},
     {"https://", CrawlAddress::Scheme::Https}}};

} // namespace

Outcome<CrawlAddress> readCrawlAddress(std::string_view address)
{
    if (address.size() > kMaxAddress)
        return Failure{"the address is too long"};
    const auto* const scheme = std::find_if(kSchemes.begin(), kSchemes.end(), [address](const auto& known) {
        return address.substr(0, known.first.size()) == known.first;
    });
    if (scheme == kSchemes.end())
        return Failure{"the address begins with none of ftp://, ftps://, http:// and https://"};
    const std::string_view rest = address.substr(scheme->first.size());
    const std::string_view authority = rest.substr(0, rest.find('/'));
    if (authority.find('@') != std::string_view::npos)
        return Failure{"an address with a user name cannot be crawled, because everybody can use the file search"};
    const std::string_view host = authority.substr(0, authority.rfind(':'));
    const bool hostFits = !host.empty() && std::all_of(host.begin(), host.end(), [](char c) {
        return isAsciiAlphanumeric(c) || c == '-' || c == '.';
    });
    if (!hostFits || (host.size() < authority.size() && !wholeNumber(authority.substr(host.size() + 1))))
        return Failure{"the address has no valid HOST or HOST:PORT"};
    const bool isHttp = scheme->second == CrawlAddress::Scheme::Http || scheme->second == CrawlAddress::Scheme::Https;
    if (isHttp && rest.find_first_of("?#") != std::string_view::npos)
        return Failure{"an address with \"?\" or \"#\" is not that of a directory"};
    std::string path = decodePercent(rest.substr(std::min(authority.size() + 1, rest.size())));
    path.erase(0, std::min(path.find_first_not_of('/'), path.size()));
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    if (!path.empty())
        path.push_back('/');
    if (std::any_of(path.begin(), path.end(), isAsciiControl))
        return Failure{"the path contains control characters"};
    return CrawlAddress{scheme->second, std::string(scheme->first) + std::string(authority), path};
}

std::string crawlBase(const CrawlAddress& address)
{
    return address.site + "/" + encodePath(address.path);
}

} // namespace quarrynet::services

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ground/Outcome.h"

namespace quarrynet::services {

/// The parts of the address of a directory that can be crawled.
struct CrawlAddress
{
    enum class Scheme : std::uint8_t
    {
        Ftp,
        Ftps, ///< FTP over TLS that the client asks for (RFC 4217), at the port of FTP
        Http,
        Https,
    };

    Scheme scheme = Scheme::Ftp;
    std::string site; ///< "scheme://host" or "scheme://host:port", without a trailing slash
    std::string path; ///< below the site: empty, or names that each end in "/", not escaped
};

/// Parses "SCHEME://host[:port][/path]" with ftp, ftps, http or https. Returns the address, or a message that says what
/// is wrong with the text. Rejects user names and passwords, because everybody can see what was crawled.
Outcome<CrawlAddress> readCrawlAddress(std::string_view address);

/// Returns the address of a directory in full; it ends in "/" and is escaped.
std::string crawlBase(const CrawlAddress& address);

} // namespace quarrynet::services

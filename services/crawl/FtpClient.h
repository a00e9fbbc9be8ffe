#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "config/crawl_address.h"
#include "crawl/listed_directory.h"
#include "ground/Outcome.h"

namespace quarrynet::services {

/// An anonymous FTP session (RFC 959) with passive connections. Uses MLSD, or LIST if the server does not support that.
/// With an ftps address, both connections use TLS (RFC 4217), version 1.2 at least, with verified certificate and name,
/// and nothing is sent without it.
class FtpClient
{
public:
    /// `address` is one of ftp or ftps, of which only the site counts. `certificates` (PEM) are trusted besides the
    /// system's.
    explicit FtpClient(const CrawlAddress& address, std::string certificates = {});
    ~FtpClient();
    FtpClient(const FtpClient&) = delete;
    FtpClient& operator=(const FtpClient&) = delete;

    /// Lists the directory `path` (see CrawlAddress::path), relative to the login directory. Fails when the server
    /// cannot be reached or violates the protocol.
    Outcome<ListedDirectory> list(std::string_view path);

private:
    struct Handle;
    std::string site_; ///< with the scheme ftp, as libcurl wants it for both
    bool encrypted_ = false;
    std::string certificates_;
    std::unique_ptr<Handle> handle_;
    bool hasMlsd_ = true;
};

} // namespace quarrynet::services

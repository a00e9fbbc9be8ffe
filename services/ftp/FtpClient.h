#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ftp/listing.h"
#include "ground/Outcome.h"

namespace quarrynet::services {

/// A server's answer to a request for a directory.
struct FtpDirectory
{
    bool refused = false; ///< the directory may not be listed, does not exist, or is too large
    std::string listing;  ///< as sent
    std::vector<FtpEntry> entries;
};

/// An anonymous FTP session (RFC 959) with passive connections. Uses MLSD, or LIST if the server does not support that.
class FtpClient
{
public:
    /// `site` is "ftp://host" or "ftp://host:port", without a trailing slash.
    explicit FtpClient(std::string site);
    ~FtpClient();
    FtpClient(const FtpClient&) = delete;
    FtpClient& operator=(const FtpClient&) = delete;

    /// Lists the directory `path`, relative to the login directory: empty, or names that each end in "/", not escaped.
    /// Fails when the server cannot be reached or violates the protocol.
    Outcome<FtpDirectory> list(std::string_view path);

private:
    struct Handle;
    std::string site_;
    std::unique_ptr<Handle> handle_;
    bool hasMlsd_ = true;
};

/// The parts of an FTP address.
struct FtpAddress
{
    std::string site; ///< as for FtpClient()
    std::string path; ///< as for FtpClient::list()
};

/// Parses "ftp://host[:port][/path]". Returns the address, or a message that says what is wrong with the text. Rejects
/// user names and passwords, because everybody can see what was crawled.
Outcome<FtpAddress> readFtpAddress(std::string_view address);

} // namespace quarrynet::services

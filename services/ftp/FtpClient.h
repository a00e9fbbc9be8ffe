#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ftp/listing.h"
#include "ground/Outcome.h"

namespace quarrynet::services {

/// What a server says about one of its directories.
struct FtpDirectory
{
    bool refused = false; ///< it may not be listed, is not there, or is longer than can be taken
    std::string listing;  ///< as sent
    std::vector<FtpEntry> entries;
};

/// One anonymous visit to an FTP server (RFC 959), by passive connections, and with MLSD unless the server does not
/// know it.
class FtpClient
{
public:
    /// `site` is "ftp://host" or "ftp://host:port", without a slash at the end.
    explicit FtpClient(std::string site);
    ~FtpClient();
    FtpClient(const FtpClient&) = delete;
    FtpClient& operator=(const FtpClient&) = delete;

    /// `path` is seen from where the server lets visitors in: empty, or directories that each end in "/", not escaped.
    /// Fails when the server cannot be reached or does not keep to the protocol.
    Outcome<FtpDirectory> list(std::string_view path);

private:
    struct Handle;
    std::string site_;
    std::unique_ptr<Handle> handle_;
    bool hasMlsd_ = true;
};

/// An FTP address, taken apart.
struct FtpAddress
{
    std::string site; ///< as FtpClient takes it
    std::string path; ///< likewise
};

/// Reads "ftp://host[:port][/path]"; what is wrong with it otherwise. User names and passwords are refused, because
/// what is crawled is shown to everybody.
Outcome<FtpAddress> readFtpAddress(std::string_view address);

} // namespace quarrynet::services

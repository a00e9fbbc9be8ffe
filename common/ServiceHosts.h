#pragma once

#include <string>

namespace quarrynet {

/// The outside services: host names or addresses as bytes, and the ports for direct connections: one for all of them
/// and for checked pages, and one for checked pages over TLS. Only tests set other ports than 80 and 443.
struct ServiceHosts
{
    std::string webSearch;
    std::string imageSearch;
    std::string downloadSite;
    std::string fileSearch;
    int port = 80;
    int tlsPort = 443;
};

/// Returns `defaults` with the hosts that the section [Services] of the settings file names: WebSearchHost,
/// ImageSearchHost, DownloadSiteHost and FileSearchHost. A missing or empty key keeps its default. `file` is a full
/// path in the file system's encoding and need not exist.
ServiceHosts readServiceHosts(const std::string& file, ServiceHosts defaults);

} // namespace quarrynet

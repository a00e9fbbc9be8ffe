#pragma once

#include <string>

namespace quarrynet {

/// The outside services: host names or addresses as bytes, and the port for direct connections to all of them and to
/// checked pages. Only tests set a port other than 80.
struct ServiceHosts
{
    std::string webSearch;
    std::string imageSearch;
    std::string downloadSite;
    std::string fileSearch;
    int port = 80;
};

/// Returns `defaults` with the hosts that the section [Services] of the settings file names: WebSearchHost,
/// ImageSearchHost, DownloadSiteHost and FileSearchHost. A missing or empty key keeps its default. `file` is a full
/// path in the file system's encoding and need not exist.
ServiceHosts readServiceHosts(const std::string& file, ServiceHosts defaults);

} // namespace quarrynet

#include "common/ServiceHosts.h"

#include "common/CDS_CIni.h"

namespace quarrynet {

ServiceHosts readServiceHosts(const std::string& file, ServiceHosts defaults)
{
    CDS_CIni store;
    store.setFileName(file);
    const auto read = [&store](const char* key, std::string& host) { store.ReadValue("Services", key, host); };
    read("WebSearchHost", defaults.webSearch); // on failure, also for an empty value, the host stays unchanged
    read("ImageSearchHost", defaults.imageSearch);
    read("DownloadSiteHost", defaults.downloadSite);
    read("FileSearchHost", defaults.fileSearch);
    return defaults;
}

} // namespace quarrynet

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "app/commands.h"
#include "app/data_folder.h"
#include "app/own_program.h"
#include "index/database.h"
#include "sources/indexing.h"

namespace quarrynet::services {

namespace {

constexpr std::chrono::seconds kLockPause{1};
constexpr std::chrono::seconds kMostWait = std::chrono::hours(1);

} // namespace

int runIndex(const Options& options)
{
    const auto complain = [](const Failure& failure) {
        std::fprintf(stderr, "quarrynet-services: %s\n", failure.message.c_str());
        return 1;
    };
    const Outcome<std::string> data = openDataFolder(options.dataFolder);
    if (!data)
        return complain(data.error());
    if (options.ifNeeded) {
        IndexPool index(*data);
        if (index.borrow())
            return 0;
    }
    IndexSources sources{options.packageFiles, options.mirror, options.folders, options.pictureFolders};
    sources.contentsFiles = options.contentsFiles;
    sources.catalogFiles = options.catalogFiles;
    sources.force = options.force;
    if (options.wait) {
        sources.again = [waited = std::chrono::seconds(0)]() mutable {
            if (waited == std::chrono::seconds(0))
                std::fputs("quarrynet-services: waiting: another quarrynet-services is writing the index\n", stderr);
            std::this_thread::sleep_for(kLockPause);
            waited += kLockPause;
            return waited <= kMostWait;
        };
    }
    if (!sources.mirror.empty() && sources.mirror.back() != '/')
        sources.mirror.push_back('/');
    const std::string manual = manualFolder(ownProgram());
    const auto addUsual = [&manual](std::vector<std::string>& folders, std::vector<std::string> usual) {
        if (!folders.empty())
            return;
        folders = std::move(usual);
        if (!manual.empty())
            folders.push_back(manual);
    };
    addUsual(sources.folders, {"/usr/share/doc", "/usr/local/share/doc"});
    addUsual(sources.pictureFolders,
             {"/usr/share/icons", "/usr/share/pixmaps", "/usr/share/backgrounds", "/usr/share/images", "/usr/share/doc",
              "/var/lib/swcatalog/icons", "/var/lib/app-info/icons"});
    if (!kHasImageSearch)
        sources.pictureFolders.clear();

    const auto begin = std::chrono::steady_clock::now();
    const Outcome<IndexCounts> counts = buildIndex(*data, sources, [](const std::string& line) {
        std::fprintf(stderr, "quarrynet-services: %s\n", line.c_str());
    });
    if (!counts)
        return complain(counts.error());
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    std::fprintf(stderr,
                 "quarrynet-services: indexed %zu packages (%zu home pages, %zu downloads, %zu of them described by "
                 "software catalogs), %zu documents, %zu "
                 "pictures and %zu files in packages in %.1f seconds\n",
                 counts->packages, counts->homePages, counts->programs, counts->catalogued, counts->documents,
                 counts->pictures, counts->listedFiles, seconds);
    if (counts->leftOut.count > 0)
        std::fprintf(stderr, "quarrynet-services: %zu items were left out, such as %s\n", counts->leftOut.count,
                     counts->leftOut.first.c_str());
    if (counts->programs == 0 && sources.packageFiles.empty())
        std::fputs("quarrynet-services: the index has no programs, because this machine has no package lists; connect "
                   "it to a network, run \"sudo apt update\", then index again\n",
                   stderr);
    return 0;
}

} // namespace quarrynet::services

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>

#include "app/commands.h"
#include "app/data_folder.h"
#include "app/handed_sockets.h"
#include "app/own_program.h"
#include "app/privileges.h"
#include "app/service_table.h"
#include "app/status_page.h"
#include "config/services_file.h"
#include "http/HttpServer.h"
#include "http/Router.h"
#include "index/database.h"
#include "live/Gatherer.h"
#include "live/RemoteThumbnails.h"
#include "searches/DownloadService.h"
#include "searches/FileService.h"
#include "searches/ImageService.h"
#include "searches/WebService.h"
#include "text/markup.h"
#include "thumbnails/Thumbnailer.h"

namespace quarrynet::services {

namespace {

/// A thread waits for each picture of the internet that is being fetched. The window asks for six at a time, and two
/// windows, or one and its searches, must not wait for each other.
constexpr unsigned kWorkersWithRemotePictures = 14;

void say(const std::string& message)
{
    std::fprintf(stderr, "quarrynet-services: %s\n", message.c_str());
}

/// Explains how to permit this program to listen below port 1024, and what to do without the permission.
void explainPermission(std::uint16_t port, const std::string& proxyAddress, std::uint16_t proxyPort)
{
    const std::string program = ownProgram().string();
    std::fprintf(stderr,
                 "quarrynet-services: to permit port %u, run one of these (setcap again after each build):\n"
                 "  sudo setcap cap_net_bind_service=+ep %s\n"
                 "  sudo sysctl net.ipv4.ip_unprivileged_port_start=%u\n",
                 static_cast<unsigned>(port), program.empty() ? "quarrynet-services" : program.c_str(),
                 static_cast<unsigned>(port));
    if (proxyPort != 0)
        std::fprintf(stderr, "without it, switch the proxy on under View > Proxy, and enter %s and %u\n",
                     proxyAddress.c_str(), static_cast<unsigned>(proxyPort));
}

/// Says why a service has no address of its own, and what to do.
class RefusalReport
{
public:
    /// `hasManager`: the service manager has handed over sockets, so it should have handed over all.
    RefusalReport(const Options& options, bool hasManager) : options_(options), hasManager_(hasManager) {}

    void add(const Service& service, const HttpServer::Refusal& refusal)
    {
        const std::string answers = "the " + service.name + " search answers through the proxy only: ";
        const bool notPermitted = refusal.fault == HttpServer::ListenFault::NotPermitted;
        if (notPermitted && hasManager_) {
            say(answers + "the service manager has opened no socket for " + service.host +
                "; \"systemctl status quarrynet-services-" + service.name + ".socket\" says why");
            return;
        }
        say(answers + refusal.message);
        if (refusal.fault == HttpServer::ListenFault::InUse)
            say("another program listens there; " + remedyForPortInUse(options_.port));
        if (notPermitted && !explained_) {
            explainPermission(options_.port, options_.proxyAddress, options_.proxyPort);
            explained_ = true;
        }
    }

private:
    const Options& options_;
    bool hasManager_;
    bool explained_ = false;
};

/// Returns a handler that answers 503, for a service whose configured sources could not be read: no other source may be
/// asked in their place.
Router::Handler misconfigured(const std::string& fault)
{
    return [fault](const HttpRequest& request) {
        return errorResponse(503,
                             "The search cannot answer, because its configuration is wrong: %1. Correct the file and "
                             "restart the services.",
                             request.language, fault);
    };
}

/// Gives up root's rights and capabilities. Fails if the index cannot be read without them.
Outcome<Done> dropRights(const std::string& dataFolder, const User& user, IndexPool& index)
{
    const bool asRoot = ::geteuid() == 0;
    const bool ready = static_cast<bool>(index.borrow());
    if (asRoot)
        handOver(dataFolder, user.user, user.group);
    Outcome<Done> dropped = dropPrivileges(user);
    if (!dropped || !asRoot)
        return dropped;
    index.closeIdle(); // idle connections were opened with root's rights
    if (ready && !index.borrow())
        return Failure{"the user " + user.name + " cannot read the index in " + dataFolder +
                       "; choose another user with --user, or another folder with --data"};
    return dropped;
}

/// Returns a handler that writes each request's query to the error output, for people who asked for that.
Router::Handler logged(const std::string& name, Router::Handler handler)
{
    return [name, handler = std::move(handler)](const HttpRequest& request) {
        if (!request.query.empty())
            std::fprintf(stderr, "quarrynet-services: %s: %s?%s\n", name.c_str(), plainLine(request.path).c_str(),
                         plainLine(request.query).c_str());
        return handler(request);
    };
}

} // namespace

int runServe(const Options& options)
{
    HandedSockets handed = takeHandedSockets(); // before anything opens a descriptor
    for (const std::string& fault : handed.faults)
        say(fault);
    UsableServices usable = loadUsableServices(options.configFile);
    for (const std::string& fault : usable.faults)
        say(fault);
    const ServicesFile* config = &usable.file;
    const Outcome<std::string> data = openDataFolder(options.dataFolder);
    if (!data) {
        say(data.error().message);
        return 1;
    }
    const Outcome<std::string> certificates = readCertificates(config->caFile);
    if (!certificates) {
        const std::string fault = config->path + ": ca-file: " + certificates.error().message;
        say(fault);
        if (config->web.asksOthers() && usable.webFault.empty())
            usable.webFault = fault;
        if (config->image.asksOthers() && usable.imageFault.empty())
            usable.imageFault = fault;
    }
    Outcome<User> user = ::geteuid() == 0 ? findUser(options.user) : User();
    if (!user) {
        say(user.error().message);
        return 1;
    }
    IndexPool index(*data);
    if (::geteuid() == 0)
        index.keepFolder();
    // What the pages say about the index is for anybody; the terminal's reader has chosen the folder.
    {
        IndexPool named(*data, kMaxQueryTime, Reader::Owner);
        if (const Outcome<IndexPool::Lease> ready = named.borrow(); !ready)
            say(ready.error().message);
    }

    const std::string trusted = certificates ? *certificates : std::string();
    FetchPool pool(trusted);
    InstanceTable instances;
    std::optional<Gatherer> liveWeb;
    std::optional<Gatherer> liveImages;
    if (config->web.asksOthers())
        liveWeb.emplace(pool, instances, config->web, SearxCategory::General);
    if (config->image.asksOthers())
        liveImages.emplace(pool, instances, config->image, SearxCategory::Images);

    HttpServer::Limits limits;
    if (liveImages)
        limits.workers = kWorkersWithRemotePictures;
    HttpServer server(limits);
    Router router;
    // The addresses in their pages are known only once they listen.
    std::optional<WebService> web;
    std::optional<ImageService> images;
    const std::string pictureProgram = thumbnailProgram(ownProgram()).string();
    Thumbnailer thumbnailer(pictureProgram);
    Thumbnailer remoteThumbnailer(pictureProgram, RemoteThumbnails::thumbnailerLimits());
    FetchPool picturePool(trusted, config->privatePictures ? Reach::Everywhere : Reach::PublicOnly);
    RemoteThumbnails remoteThumbnails(picturePool, remoteThumbnailer);
    DownloadService downloads(index);
    FileService files(index);
    std::vector<Service> services{
        {"web", QUARRYNET_WEB_SEARCH_HOST, options.webAddress,
         [&web](const HttpRequest& request) { return web->answer(request); },
         [&](const std::string& base) { web.emplace(index, base, liveWeb ? &*liveWeb : nullptr); }},
        {"download", QUARRYNET_DOWNLOAD_SITE_HOST, options.downloadAddress,
         [&downloads](const HttpRequest& request) { return downloads.answer(request); }},
        {"file", QUARRYNET_FILE_SEARCH_HOST, options.fileAddress,
         [&files](const HttpRequest& request) { return files.answer(request); }},
    };
    if (kHasImageSearch) {
        services.push_back({"image", QUARRYNET_IMAGE_SEARCH_HOST, options.imageAddress,
                            [&images](const HttpRequest& request) { return images->answer(request); },
                            [&](const std::string& base) {
                                images.emplace(index, base.substr(std::string_view("http://").size()), &thumbnailer,
                                               liveImages ? &*liveImages : nullptr, &remoteThumbnails);
                            }});
    } else {
        std::fprintf(stderr, "quarrynet-services: this build has no image search\n");
    }
    if (config->logQueries || options.logQueries) {
        for (Service& service : services)
            service.handler = logged(service.name, std::move(service.handler));
    }
    for (Service& service : services) {
        std::string fault;
        if (service.name == "web")
            fault = usable.webFault;
        else if (service.name == "image")
            fault = usable.imageFault;
        if (!fault.empty()) {
            say("the " + service.name + " search does not answer until this is corrected: " + fault);
            service.handler = misconfigured(fault);
        }
        service.handler = withStatusPage(service.name, fault, index, std::move(service.handler));
    }
    const bool hasManager = !handed.sockets.empty();
    RefusalReport refusals(options, hasManager);
    startServices(server, router, options.port, services, handed.sockets,
                  [&](const Service& service, const HttpServer::Refusal& refusal) { refusals.add(service, refusal); });
    std::string proxyAddress = options.proxyAddress;
    const auto proxy = startProxy(server, router, proxyAddress, options.proxyPort, handed.sockets);
    if (const auto* refusal = std::get_if<HttpServer::Refusal>(&proxy)) {
        say("the proxy cannot listen: " + refusal->message);
        if (refusal->fault == HttpServer::ListenFault::InUse)
            say("the services of the system or of another person may be running; choose another port with "
                "--proxy-port, or " +
                remedyForPortInUse(options.proxyPort));
        // Without the proxy, services without an address of their own cannot be reached.
        const bool reached = std::any_of(services.begin(), services.end(),
                                         [](const Service& service) { return !service.address.empty(); });
        if (!hasManager || !reached)
            return 1;
    }
    for (const HandedSocket& unused : handed.sockets)
        say("the handed socket " + unused.address + ":" + std::to_string(unused.port) +
            " is for no service and is closed; its name or its address says which one it is for");
    handed.sockets.clear();
    if (const Outcome<Done> dropped = dropRights(*data, *user, index); !dropped) {
        say(dropped.error().message);
        return 1;
    }
    // Checks as the user that this process has become.
    if (kHasImageSearch && ::access(pictureProgram.c_str(), X_OK) != 0)
        std::fprintf(stderr, "quarrynet-services: thumbnails require %s, which cannot be executed\n",
                     pictureProgram.c_str());
    server.stopOnSignals();
    std::signal(SIGPIPE, SIG_IGN);
    std::printf("quarrynet-services: ready");
    for (const Service& service : services)
        std::printf(" %s=%s", service.name.c_str(), service.address.empty() ? "-" : service.address.c_str());
    if (const auto* port = std::get_if<std::uint16_t>(&proxy))
        std::printf(" proxy=http://%s:%u/\n", proxyAddress.c_str(), static_cast<unsigned>(*port));
    else
        std::printf(" proxy=-\n");
    std::fflush(stdout);
    if (!tellManager("READY=1\nSTATUS=Answering searches"))
        say("the service manager cannot be reached through NOTIFY_SOCKET");
    const bool served = server.run();
    tellManager("STOPPING=1");
    if (!served)
        say("the system refuses the threads that serve needs");
    return served ? 0 : 1;
}

} // namespace quarrynet::services

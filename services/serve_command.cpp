#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>
#include <unistd.h>

#include "services/commands.h"
#include "services/data_folder.h"
#include "services/download_service.h"
#include "services/file_service.h"
#include "services/http_server.h"
#include "services/image_service.h"
#include "services/index_database.h"
#include "services/router.h"
#include "services/thumbnailer.h"
#include "services/web_service.h"

namespace quarrynet::services {

namespace {

/// How to let this program listen below port 1024.
void explainPermission(std::uint16_t port)
{
    std::error_code error;
    const std::string program = std::filesystem::read_symlink("/proc/self/exe", error).string();
    std::fprintf(stderr,
                 "quarrynet-services: to permit port %u, run one of these once:\n"
                 "  sudo setcap cap_net_bind_service=+ep %s\n"
                 "  sudo sysctl net.ipv4.ip_unprivileged_port_start=%u\n",
                 static_cast<unsigned>(port), error ? "quarrynet-services" : program.c_str(),
                 static_cast<unsigned>(port));
}

/// The program that makes thumbnails lies beside this one.
std::string thumbnailProgram()
{
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / "quarrynet-thumbnails").string();
}

struct Service
{
    const char* name;
    std::string usualHost; ///< what the program was built to ask
    std::string host;
    Router::Handler handler;
    std::string address = {}; ///< where it listens; empty when it does not
};

/// Makes the services listen, each at its own address. Those that cannot are told of, and served by the proxy alone.
void listenAt(HttpServer& server, const Router& router, std::uint16_t port, std::vector<Service>& services)
{
    bool explained = false;
    for (Service& service : services) {
        const auto result = server.listen(service.host, port, [&router, &service](const HttpRequest& request) {
            return router.answerAt(service.handler, request);
        });
        if (const auto* refusal = std::get_if<HttpServer::Refusal>(&result)) {
            std::fprintf(stderr, "quarrynet-services: the %s search answers through the proxy only: %s\n", service.name,
                         refusal->message.c_str());
            if (refusal->fault == HttpServer::ListenFault::NotPermitted && !explained)
                explainPermission(port);
            explained = explained || refusal->fault == HttpServer::ListenFault::NotPermitted;
            continue;
        }
        service.address = "http://" + service.host + ":" + std::to_string(std::get<std::uint16_t>(result)) + "/";
    }
}

/// What goes before a path of this service in the addresses that it gives out: port 80 goes without saying.
std::string baseOf(const Service& service)
{
    std::string base =
        service.address.empty() ? "http://" + service.host : service.address.substr(0, service.address.size() - 1);
    if (base.size() > 3 && base.substr(base.size() - 3) == ":80")
        base.resize(base.size() - 3);
    return base;
}

} // namespace

int runServe(const Options& options)
{
    const Outcome<std::string> data = openDataFolder(options.dataFolder);
    if (!data) {
        std::fprintf(stderr, "quarrynet-services: %s\n", data.failure().message.c_str());
        return 1;
    }
    IndexPool index(*data);
    if (const Outcome<IndexPool::Lease> ready = index.borrow(); !ready)
        std::fprintf(stderr, "quarrynet-services: %s\n", ready.failure().message.c_str());

    HttpServer server;
    Router router;
    // The addresses that these two give out are known only once they listen.
    std::optional<WebService> web;
    std::optional<ImageService> images;
    Thumbnailer thumbnailer(thumbnailProgram());
    DownloadService downloads(index);
    FileService files(index);
    std::vector<Service> services{
        {"web", QUARRYNET_WEB_SEARCH_HOST, options.webAddress,
         [&web](const HttpRequest& request) { return web->answer(request); }},
        {"download", QUARRYNET_DOWNLOAD_SITE_HOST, options.downloadAddress,
         [&downloads](const HttpRequest& request) { return downloads.answer(request); }},
        {"file", QUARRYNET_FILE_SEARCH_HOST, options.fileAddress,
         [&files](const HttpRequest& request) { return files.answer(request); }},
    };
    if (kHasImageSearch) {
        services.push_back({"image", QUARRYNET_IMAGE_SEARCH_HOST, options.imageAddress,
                            [&images](const HttpRequest& request) { return images->answer(request); }});
        if (::access(thumbnailProgram().c_str(), X_OK) != 0)
            std::fprintf(stderr, "quarrynet-services: there are no thumbnails without %s\n",
                         thumbnailProgram().c_str());
    } else {
        std::fprintf(stderr, "quarrynet-services: this build has no image search\n");
    }
    for (Service& service : services) {
        if (service.host.empty())
            service.host = service.usualHost;
        router.add(service.usualHost, service.handler);
        router.add(service.host, service.handler);
    }
    listenAt(server, router, options.port, services);
    web.emplace(index, baseOf(services.front()));
    if (kHasImageSearch)
        images.emplace(index, baseOf(services.back()).substr(std::string_view("http://").size()), &thumbnailer);
    const auto proxy = server.listen(options.proxyAddress, options.proxyPort,
                                     [&router](const HttpRequest& request) { return router.answerAsProxy(request); });
    if (const auto* refusal = std::get_if<HttpServer::Refusal>(&proxy)) {
        std::fprintf(stderr, "quarrynet-services: the proxy cannot listen: %s\n", refusal->message.c_str());
        return 1;
    }
    server.stopOnSignals();
    std::signal(SIGPIPE, SIG_IGN);
    std::printf("quarrynet-services: ready");
    for (const Service& service : services)
        std::printf(" %s=%s", service.name, service.address.empty() ? "-" : service.address.c_str());
    std::printf(" proxy=http://%s:%u/\n", options.proxyAddress.c_str(),
                static_cast<unsigned>(std::get<std::uint16_t>(proxy)));
    std::fflush(stdout);
    return server.run() ? 0 : 1;
}

} // namespace quarrynet::services

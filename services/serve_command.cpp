#include <csignal>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "services/commands.h"
#include "services/data_folder.h"
#include "services/download_service.h"
#include "services/file_service.h"
#include "services/http_server.h"
#include "services/index_database.h"
#include "services/router.h"
#include "services/web_service.h"

namespace quarrynet::services {

namespace {

HttpServer* runningServer = nullptr;

void endServer(int)
{
    runningServer->stop();
}

void installSignals(HttpServer& server)
{
    runningServer = &server;
    struct sigaction action
    {};
    action.sa_handler = endServer;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    action.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &action, nullptr);
}

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

struct Place
{
    const char* name;
    std::string host;
    std::string address = {}; ///< where it listens; empty when it does not
};

/// Makes the services listen, each at its own address. Those that cannot are told of, and served by the proxy alone.
void listenAt(HttpServer& server, const Router& router, std::uint16_t port, std::vector<Place>& places)
{
    bool explained = false;
    for (Place& place : places) {
        const std::string host = place.host;
        const auto result = server.listen(
            host, port, [&router, host](const HttpRequest& request) { return router.answerAt(host, request); });
        if (const auto* refusal = std::get_if<HttpServer::Refusal>(&result)) {
            std::fprintf(stderr, "quarrynet-services: the %s search answers through the proxy only: %s\n", place.name,
                         refusal->message.c_str());
            if (refusal->fault == HttpServer::ListenFault::NotPermitted && !explained)
                explainPermission(port);
            explained = explained || refusal->fault == HttpServer::ListenFault::NotPermitted;
            continue;
        }
        place.address = "http://" + host + ":" + std::to_string(std::get<std::uint16_t>(result)) + "/";
    }
}

std::string withDefault(const std::string& chosen, const char* usual)
{
    return chosen.empty() ? usual : chosen;
}

/// What goes before a path of this service in the addresses that it gives out: port 80 goes without saying.
std::string baseOf(const Place& place)
{
    std::string base =
        place.address.empty() ? "http://" + place.host : place.address.substr(0, place.address.size() - 1);
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
    std::vector<Place> places{{"web", withDefault(options.webAddress, QUARRYNET_WEB_SEARCH_HOST)},
                              {"download", withDefault(options.downloadAddress, QUARRYNET_DOWNLOAD_SITE_HOST)},
                              {"file", withDefault(options.fileAddress, QUARRYNET_FILE_SEARCH_HOST)}};
    listenAt(server, router, options.port, places);
    WebService web(index, baseOf(places[0]));
    DownloadService downloads(index);
    FileService files(index);
    router.add(places[0].host, [&web](const HttpRequest& request) { return web.answer(request); });
    router.add(places[1].host, [&downloads](const HttpRequest& request) { return downloads.answer(request); });
    router.add(places[2].host, [&files](const HttpRequest& request) { return files.answer(request); });

    const auto proxy = server.listen(options.proxyAddress, options.proxyPort,
                                     [&router](const HttpRequest& request) { return router.answerAsProxy(request); });
    if (const auto* refusal = std::get_if<HttpServer::Refusal>(&proxy)) {
        std::fprintf(stderr, "quarrynet-services: the proxy cannot listen: %s\n", refusal->message.c_str());
        return 1;
    }
    installSignals(server);
    std::printf("quarrynet-services: ready");
    for (const Place& place : places)
        std::printf(" %s=%s", place.name, place.address.empty() ? "-" : place.address.c_str());
    std::printf(" proxy=http://%s:%u/\n", options.proxyAddress.c_str(),
                static_cast<unsigned>(std::get<std::uint16_t>(proxy)));
    std::fflush(stdout);
    return server.run() ? 0 : 1;
}

} // namespace quarrynet::services

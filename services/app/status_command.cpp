#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include "app/commands.h"
#include "app/data_folder.h"
#include "app/service_table.h"
#include "app/status_page.h"
#include "config/services_file.h"
#include "index/database.h"
#include "index/summary.h"
#include "live/fetch.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

/// For the answers of all services together.
constexpr std::chrono::seconds kMostTime{4};
/// An unfinished index that was written to more recently is being made. A clock that was set back may put its time a
/// little into the future.
constexpr std::int64_t kStillMade = 300;
constexpr std::uint16_t kSystemPort = 80;
constexpr const char* kManagerRuns = "/run/systemd/system"; ///< is there while systemd runs the machine
constexpr const char* kSystemConfig = "/etc/quarrynet/services.toml";

/// A service, and how it answered.
struct Asked
{
    std::string name;
    std::string address;
    std::uint16_t port = 0;
    std::string result = {};
    std::optional<ServiceStatus> status = std::nullopt; ///< nothing if no service of this program answered
    bool isFree = false;                                ///< nothing listens there
};

struct Report
{
    /// The services are a person's own, because the system's have another port.
    bool isOwn = false;
    /// What is wrong, and what to do about it; the second is empty if the first says it.
    std::vector<std::pair<std::string, std::string>> problems;
    std::vector<std::string> notes;
};

std::string timeText(std::int64_t seconds)
{
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    std::array<char, 40> text{};
    if (::localtime_r(&time, &parts) == nullptr ||
        std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &parts) == 0)
        return "(time unknown)";
    return text.data();
}

void printList(const char* label, const std::vector<std::string>& entries)
{
    for (const std::string& entry : entries)
        std::printf("  %-13s %s\n", label, plainLine(entry).c_str());
    if (static_cast<std::int64_t>(entries.size()) == kMostSummarized)
        std::printf("  %-13s and more\n", label);
}

void printCount(std::int64_t count, const char* what)
{
    std::printf("  %13s %s\n", withSeparators(count).c_str(), what);
}

/// Says that an index is being made, or that making one was interrupted.
void reportUnfinished(std::int64_t written, Report& report)
{
    const std::int64_t now = std::time(nullptr);
    if (written > now - kStillMade && written < now + kStillMade)
        report.notes.push_back(
            "An index is being made; searches use it as soon as it is complete, in several minutes at most.");
    else
        report.notes.push_back("Making an index was interrupted at " + timeText(written) +
                               ". Its unfinished file is removed by the next run.");
}

/// Asks all services at the same time.
void askAll(std::vector<Asked>& services)
{
    FetchPool pool;
    Fetches fetches(pool);
    const auto begin = std::chrono::steady_clock::now();
    for (Asked& asked : services) {
        FetchOrder order;
        order.address = "http://" + asked.address + ":" + std::to_string(asked.port) + std::string(kStatusPath);
        order.maxBytes = kMaxStatusPage;
        order.end = begin + kMostTime;
        order.mostRedirects = 0;
        fetches.start(std::move(order), [&asked](const Fetched& fetched) {
            if (fetched.fault == Fetched::Fault::None && fetched.status == 200)
                asked.status = readStatus(fetched.body);
            if (asked.status)
                asked.result = "answers in " + std::to_string(fetched.time.count()) + " ms";
            else if (fetched.fault == Fetched::Fault::TimeOut)
                asked.result = "does not answer within " + std::to_string(kMostTime.count()) + " seconds";
            else if (fetched.fault == Fetched::Fault::NoConnection)
                asked.result = "nothing listens there";
            else
                asked.result = "another program answers there";
            if (asked.status && asked.status->service != asked.name) {
                asked.result = "another service answers there";
                asked.status.reset();
            }
            asked.isFree = fetched.fault == Fetched::Fault::NoConnection;
        });
    }
    fetches.run();
}

/// Returns the command of the service manager that runs the services which the report is about.
std::string managerOf(const Report& report)
{
    return report.isOwn ? "systemctl --user" : "sudo systemctl";
}

/// Returns whether a service manager runs this machine. None does in a container, for example.
bool hasManager()
{
    std::error_code ignored;
    return std::filesystem::exists(kManagerRuns, ignored);
}

/// Returns what to do to restart the services: the end of a sentence that names the purpose.
std::string restart(const Report& report)
{
    if (!hasManager())
        return "restart the services in their terminal";
    return "restart the services: " + managerOf(report) + " restart quarrynet-services.service" +
           (report.isOwn ? "\n    or in their terminal" : "");
}

std::string correctFile(const Report& report)
{
    return "Correct the file, and " + restart(report);
}

/// `serve`: the command that starts services in a terminal.
void reportAnswers(const std::vector<Asked>& services, const std::string& serve, Report& report)
{
    const std::string manager = managerOf(report);
    const std::string journal = report.isOwn ? "journalctl --user" : "sudo journalctl";
    const std::string messages = (hasManager() ? journal + " -b -u 'quarrynet-services*', or " : std::string()) +
                                 "the terminal in which they run";
    const bool anyAnswers =
        std::any_of(services.begin(), services.end(), [](const Asked& asked) { return asked.status.has_value(); });
    if (!anyAnswers) {
        const std::string begin = report.isOwn ? "Start your own: " : "Start the system's: ";
        std::string remedy = begin + manager + " start quarrynet-services.socket\n    or " +
                             (report.isOwn ? "with the same options: " : "your own: ") + serve;
        if (!hasManager())
            remedy = std::string("Start your own") + (report.isOwn ? " with the same options: " : ": ") + serve;
        report.problems.emplace_back("No service answers.", remedy);
    }
    for (const Asked& asked : services) {
        const std::string what = asked.name == kProxyName ? "The proxy" : "The " + asked.name + " search";
        std::string where = asked.address;
        where.append(":").append(std::to_string(asked.port)).append(": ").append(asked.result).append(".");
        if (!asked.status && !asked.isFree)
            report.problems.emplace_back(std::string(what).append(" does not have its address ").append(where),
                                         "As the administrator: " + remedyForPortInUse(asked.port) + ".");
        else if (!asked.status && anyAnswers)
            report.problems.emplace_back(std::string(what).append(" does not answer at ").append(where),
                                         "The messages of the services say why: " + messages +
                                             ". The other searches answer.");
        if (!asked.status)
            continue;
        if (!asked.status->fault.empty())
            report.problems.emplace_back(what + " does not search: " + asked.status->fault, correctFile(report));
        if (asked.status->version != QUARRYNET_VERSION)
            report.problems.emplace_back(what + " is of version " + asked.status->version + ", not " +
                                             QUARRYNET_VERSION + ".",
                                         "To use this version, " + restart(report));
    }
}

/// Reports each reason for which services cannot use their index once, without the one that was reported already.
void reportIndexFaults(const std::vector<Asked>& services, const std::string& reported, Report& report)
{
    std::set<std::string> known{"", plainLine(reported)};
    for (const Asked& asked : services) {
        if (asked.status && known.insert(asked.status->indexFault).second)
            report.problems.emplace_back("The services cannot use their index: " + asked.status->indexFault + ".", "");
    }
}

/// Says which servers of the configuration the index has nothing of.
void noteUncrawled(const std::vector<CrawlSetting>& settings, const IndexSummary& summary, const std::string& command,
                   Report& report)
{
    std::string uncrawled;
    for (const CrawlSetting& setting : settings) {
        const std::string base = crawlBase(setting.address);
        const auto isOfBase = [&base](const auto& crawl) { return crawl.first == base; };
        if (std::none_of(summary.crawls.begin(), summary.crawls.end(), isOfBase))
            uncrawled.append(uncrawled.empty() ? "" : ", ").append(base);
    }
    if (!uncrawled.empty())
        report.notes.push_back("These servers of the configuration have not been crawled: " + plainLine(uncrawled) +
                               ". To crawl them, run \"" + command + "\".");
}

/// Prints what the index has, or reports why it cannot be used.
void printIndex(IndexPool& index, const std::vector<CrawlSetting>& settings, const IndexCommands& commands,
                Report& report)
{
    Outcome<IndexPool::Lease> lease = index.borrow();
    const Outcome<IndexSummary> summary = lease ? summarize(**lease) : Outcome<IndexSummary>(lease.error());
    if (!summary) {
        report.problems.emplace_back("The index cannot be used: " + summary.error().message + ".", "");
        return;
    }
    printCount(summary->webPages, "web pages");
    printCount(summary->pictures, "pictures");
    printCount(summary->programs, "programs");
    printCount(summary->files, "files and directories of mirrors and crawled servers");
    printCount(summary->listedFiles, "files in packages (rounded up)");
    printList("packages of", summary->mirrors);
    printList("pages of", summary->folders);
    printList("pictures of", summary->pictureFolders);
    std::vector<std::string> crawls;
    for (const auto& [address, time] : summary->crawls)
        crawls.push_back(address + " on " + timeText(time));
    printList("crawled", crawls);
    noteUncrawled(settings, *summary, commands.crawl, report);
    if (summary->programs == 0)
        report.notes.push_back("The index has no programs, because this machine has no package lists. Connect it to "
                               "a network, run \"sudo apt update\", then \"" +
                               index.makingCommand() + "\".");
}

/// Prints what a service says about an index that this user may not read. Returns whether one says something.
bool printIndexBySaying(const std::vector<Asked>& services, Report& report)
{
    for (const Asked& asked : services) {
        if (!asked.status || asked.name == kProxyName)
            continue;
        const ServiceStatus& status = *asked.status;
        if (status.indexTime)
            std::printf("  written %s; the services say:\n", timeText(*status.indexTime).c_str());
        for (const auto& [what, count] : status.counts)
            printCount(count, what.c_str());
        if (status.unfinishedIndexTime)
            reportUnfinished(*status.unfinishedIndexTime, report);
        return true;
    }
    return false;
}

void printConfiguration(const UsableServices& usable)
{
    const ServicesFile& file = usable.file;
    if (file.path.empty() && usable.faults.empty()) {
        std::puts("\nConfiguration: none, so every search asks the index");
        return;
    }
    std::printf("\nConfiguration: %s\n", file.path.empty() ? "cannot be used" : plainLine(file.path).c_str());
    for (const auto& [name, settings] : {std::pair("web", &file.web), std::pair("image", &file.image)}) {
        for (const SourceSetting& source : settings->sources) {
            std::string instances = source.isIndex() ? "the index" : "";
            for (const std::string& instance : source.instances)
                instances += (instances.empty() ? "" : " or ") + instance;
            std::printf("  %-13s asks %s\n", name, plainLine(instances).c_str());
        }
    }
    for (const CrawlSetting& crawl : file.crawls)
        std::printf("  %-13s %s\n", "crawls", plainLine(crawlBase(crawl.address)).c_str());
}

void print(const Report& report)
{
    for (const std::string& note : report.notes)
        std::printf("\nNote: %s\n", note.c_str());
    for (const auto& [problem, remedy] : report.problems) {
        std::printf("\nProblem: %s\n", plainLine(problem).c_str());
        if (!remedy.empty())
            std::printf("    %s\n", remedy.c_str());
    }
    if (report.problems.empty())
        std::puts("\nEverything is in order.");
}

} // namespace

int runStatus(const Options& options)
{
    Outcome<std::string> data = dataFolderPath(options.dataFolder);
    std::error_code ignored;
    // A person without an index of their own asks about the system's.
    if (options.dataFolder.empty() && (!data || !std::filesystem::exists(indexPath(*data), ignored)) &&
        std::filesystem::exists(std::filesystem::symlink_status(kSystemDataFolder, ignored)))
        data = std::string(kSystemDataFolder);
    if (!data) {
        std::fprintf(stderr, "quarrynet-services: %s\n", data.error().message.c_str());
        return 1;
    }
    const bool isSystems = isSystemsFolder(*data);
    const IndexCommands commands = indexCommands(*data, Reader::Owner);
    UsableServices usable;
    if (!options.configFile.empty() || !isSystems)
        usable = loadUsableServices(options.configFile);
    else if (std::filesystem::exists(kSystemConfig, ignored))
        usable = loadUsableServices(kSystemConfig); // a person's file is not that of the system's services
    const auto addressOr = [](const std::string& chosen, const char* usual) {
        return chosen.empty() ? std::string(usual) : chosen;
    };
    std::vector<Asked> services{
        {"web", addressOr(options.webAddress, QUARRYNET_WEB_SEARCH_HOST), options.port},
        {"download", addressOr(options.downloadAddress, QUARRYNET_DOWNLOAD_SITE_HOST), options.port},
        {"file", addressOr(options.fileAddress, QUARRYNET_FILE_SEARCH_HOST), options.port},
        {kProxyName, options.proxyAddress, options.proxyPort},
    };
    if (kHasImageSearch)
        services.insert(services.begin() + 1,
                        {"image", addressOr(options.imageAddress, QUARRYNET_IMAGE_SEARCH_HOST), options.port});
    askAll(services);

    Report report;
    report.isOwn = options.port != kSystemPort;
    std::printf("quarrynet-services " QUARRYNET_VERSION "\n\n");
    const std::string path = indexPath(*data);
    std::string indexFault;
    std::printf("Index: %s%s\n", plainLine(path).c_str(), isSystems ? ", the system's" : "");
    if (::access(path.c_str(), R_OK) != 0 && errno == EACCES) {
        const bool said = printIndexBySaying(services, report);
        if (!said)
            report.problems.emplace_back("Only the owner of " + *data + " can see its index.",
                                         "Ask as that user: " + commands.look);
    } else {
        if (const std::optional<std::int64_t> time = indexTime(path))
            std::printf("  written %s\n", timeText(*time).c_str());
        IndexPool index(*data, kMaxQueryTime, Reader::Owner);
        printIndex(index, usable.file.crawls, commands, report);
        // Pages name no folder, so the services word the same fault otherwise.
        IndexPool served(*data);
        if (const Outcome<IndexPool::Lease> lease = served.borrow(); !lease)
            indexFault = lease.error().message;
        if (const std::optional<std::int64_t> time = unfinishedIndexTime(path))
            reportUnfinished(*time, report);
    }
    reportIndexFaults(services, indexFault, report);
    printConfiguration(usable);
    for (const std::string& fault : usable.faults)
        report.problems.emplace_back(fault, correctFile(report));
    std::puts("\nServices:");
    for (const Asked& asked : services)
        std::printf("  %-13s %s\n", asked.name.c_str(),
                    (asked.address + ":" + std::to_string(asked.port) + "  " + asked.result).c_str());
    reportAnswers(services, commands.serve, report);
    print(report);
    return report.problems.empty() ? 0 : 1;
}

} // namespace quarrynet::services

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "app/commands.h"
#include "app/data_folder.h"
#include "config/services_file.h"
#include "ground/utf8.h"
#include "index/database.h"
#include "live/searx_instances.h"
#include "searches/ImageService.h"
#include "searches/WebService.h"

namespace quarrynet::services {

namespace {

using Clock = std::chrono::steady_clock;

/// A source that is slow may take as long here as the configuration ever allows a search to wait.
constexpr std::chrono::seconds kMostTime{20};

/// One row of the table.
struct Checked
{
    std::string service;
    std::string source;
    std::size_t line = 0; ///< in the configuration file; 0: not from there
    std::string result;
    std::string time;
    std::string advice; ///< empty if the source answers
};

std::string milliseconds(Clock::duration time)
{
    return std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(time).count()) + " ms";
}

template <class Answer>
void takeIndexResult(Checked& row, const Outcome<Answer>& answer, Clock::time_point begin)
{
    row.time = milliseconds(Clock::now() - begin);
    if (answer) {
        row.result = std::to_string(answer->total) + " results";
        return;
    }
    row.result = "does not answer";
    row.advice = answer.error().message;
}

/// Asks one service's sources, instance by instance, and appends a row for each.
void checkService(const std::string& name, const ServiceSettings& settings, SearxCategory category,
                  const std::string& words, FetchPool& pool, const std::function<void(Checked&)>& askIndex,
                  std::vector<Checked>& rows)
{
    for (const SourceSetting& source : settings.sources) {
        if (source.isIndex()) {
            Checked row{name, "index", source.line, "", "", ""};
            askIndex(row);
            rows.push_back(std::move(row));
        }
        for (const std::string& instance : source.instances) {
            Checked row{name, instance, source.line, "", "", ""};
            InstanceTable table;
            Fetches fetches(pool);
            const auto begin = Clock::now();
            askInstances(fetches, table, {instance}, {words, 1, category, settings.language, settings.safeSearch},
                         begin + kMostTime, [&](Expected<SearxPage, SourceFault> page) {
                             row.time = milliseconds(Clock::now() - begin);
                             if (page) {
                                 row.result = std::to_string(page->answer.rows.size()) + " results on the first page";
                                 if (Clock::now() - begin > settings.wait)
                                     row.advice = "Searches wait " + std::to_string(settings.wait.count()) +
                                                  " seconds only: raise wait-seconds, or choose another instance.";
                                 return;
                             }
                             const std::string title = faultTitle(page.error());
                             row.result = title.substr(title.find(": ") + 2);
                             row.advice = faultAdvice(page.error());
                         });
            fetches.run();
            rows.push_back(std::move(row));
        }
    }
}

void print(const std::vector<Checked>& rows)
{
    std::size_t source = 6;
    std::size_t result = 6;
    for (const Checked& row : rows) {
        source = std::max(source, row.source.size());
        result = row.advice.empty() ? std::max(result, row.result.size()) : result;
    }
    const auto line = [&](const std::string& a, const std::string& b, const std::string& c, const std::string& d) {
        std::printf("%-8s %-*s %10s  %s\n", a.c_str(), static_cast<int>(source), b.c_str(), c.c_str(), d.c_str());
    };
    line("SERVICE", "SOURCE", "TIME", "RESULT");
    for (const Checked& row : rows)
        line(row.service, row.source, row.time, row.advice.empty() ? row.result : "FAILED: " + row.result);
}

} // namespace

int runCheck(const Options& options)
{
    const Expected<ServicesFile, FileFaults> config = loadServicesFile(options.configFile);
    if (!config) {
        for (const std::string& fault : config.error())
            std::fprintf(stderr, "quarrynet-services: %s\n", fault.c_str());
        return 1;
    }
    const Outcome<std::string> certificates = readCertificates(config->caFile);
    const Outcome<std::string> data = openDataFolder(options.dataFolder);
    for (const Outcome<std::string>* outcome : {&certificates, &data}) {
        if (!*outcome) {
            std::fprintf(stderr, "quarrynet-services: %s\n", outcome->error().message.c_str());
            return 1;
        }
    }
    FetchPool pool(*certificates);
    IndexPool index(*data, kMaxQueryTime, Reader::Owner);
    std::vector<Checked> rows;
    checkService(
        "web", config->web, SearxCategory::General, toUtf8(options.checkWords), pool,
        [&](Checked& row) {
            const auto begin = Clock::now();
            takeIndexResult(row, WebService(index, "").search(options.checkWords, 0), begin);
        },
        rows);
    checkService(
        "image", config->image, SearxCategory::Images, toUtf8(options.checkWords), pool,
        [&](Checked& row) {
            const auto begin = Clock::now();
            takeIndexResult(row, ImageService(index, "", nullptr).search(options.checkWords, 0), begin);
        },
        rows);
    print(rows);
    bool failed = false;
    for (const Checked& row : rows) {
        if (row.advice.empty())
            continue;
        failed = true;
        const std::string place = row.line > 0 ? config->path + ":" + std::to_string(row.line) + ": " : "";
        std::printf("\n%s%s search: %s: %s\n  %s\n", place.c_str(), row.service.c_str(), row.source.c_str(),
                    row.result.c_str(), row.advice.c_str());
    }
    return failed ? 1 : 0;
}

} // namespace quarrynet::services

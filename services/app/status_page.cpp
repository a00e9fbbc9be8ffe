#include "app/status_page.h"

#include <algorithm>
#include <array>
#include <utility>

#include "app/service_table.h"
#include "ground/decimal.h"
#include "ground/utf8.h"
#include "index/summary.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

constexpr std::string_view kProgram = "quarrynet-services ";
constexpr std::size_t kMaxText = 400;
constexpr std::size_t kMaxVersion = 40;

// Keys of the page's lines.
constexpr std::string_view kService = "service";
constexpr std::string_view kFault = "fault";
constexpr std::string_view kIndexFault = "index fault";
constexpr std::string_view kIndexTime = "index written";
constexpr std::string_view kUnfinished = "index being made";
constexpr std::array<std::string_view, 5> kCounts{"web pages", "pictures", "programs", "files", "files in packages"};

std::string oneLine(std::string_view text)
{
    const std::string line = plainLine(text);
    return std::string(clipUtf8(line, kMaxText));
}

bool isVersion(std::string_view text)
{
    constexpr std::string_view kCharacters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz.+~-";
    return !text.empty() && text.size() <= kMaxVersion && text.find_first_not_of(kCharacters) == std::string_view::npos;
}

HttpResponse pageOf(const ServiceStatus& status)
{
    HttpResponse response;
    response.contentType = "text/plain; charset=utf-8";
    response.body = statusText(status);
    response.fields.emplace_back("Cache-Control", "no-store");
    return response;
}

} // namespace

std::string statusText(const ServiceStatus& status)
{
    std::string text;
    const auto line = [&text](std::string_view key, const std::string& value) {
        if (!value.empty())
            text.append(key).append(": ").append(oneLine(value)).append("\n");
    };
    text.append(kProgram).append(status.version).append("\n");
    line(kService, status.service);
    line(kFault, status.fault);
    line(kIndexFault, status.indexFault);
    if (status.indexTime)
        line(kIndexTime, std::to_string(*status.indexTime));
    if (status.unfinishedIndexTime)
        line(kUnfinished, std::to_string(*status.unfinishedIndexTime));
    for (const auto& [what, count] : status.counts)
        line(what, std::to_string(count));
    return text;
}

std::optional<ServiceStatus> readStatus(std::string_view text)
{
    if (!text.starts_with(kProgram) || text.size() > kMaxStatusPage)
        return std::nullopt;
    ServiceStatus status;
    const std::size_t end = std::min(text.find('\n'), text.size());
    status.version = std::string(text.substr(kProgram.size(), end - kProgram.size()));
    if (!isVersion(status.version))
        return std::nullopt;
    text.remove_prefix(std::min(end + 1, text.size()));
    while (!text.empty()) {
        const std::size_t lineEnd = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, lineEnd);
        text.remove_prefix(std::min(lineEnd + 1, text.size()));
        const std::size_t colon = line.find(": ");
        if (colon == std::string_view::npos)
            continue;
        const std::string_view key = line.substr(0, colon);
        const std::string_view value = line.substr(colon + 2);
        const std::optional<std::int64_t> number = wholeNumberAs<std::int64_t>(value);
        if (key == kService)
            status.service = oneLine(value);
        else if (key == kFault)
            status.fault = oneLine(value);
        else if (key == kIndexFault)
            status.indexFault = oneLine(value);
        else if (key == kIndexTime)
            status.indexTime = number;
        else if (key == kUnfinished)
            status.unfinishedIndexTime = number;
        else if (number && std::find(kCounts.begin(), kCounts.end(), key) != kCounts.end())
            status.counts[std::string(key)] = *number;
    }
    return status;
}

Router::Handler withStatusPage(const std::string& service, const std::string& fault, IndexPool& index,
                               Router::Handler handler)
{
    return [service, fault, &index, handler = std::move(handler)](const HttpRequest& request) {
        if (request.path != kStatusPath)
            return handler(request);
        ServiceStatus status{
            QUARRYNET_VERSION, service, fault, "", indexTime(index.path()), unfinishedIndexTime(index.path()), {}};
        Outcome<IndexPool::Lease> lease = index.borrow();
        const Outcome<IndexSummary> summary = lease ? summarize(**lease) : Outcome<IndexSummary>(lease.error());
        if (summary)
            status.counts = {{std::string(kCounts[0]), summary->webPages},
                             {std::string(kCounts[1]), summary->pictures},
                             {std::string(kCounts[2]), summary->programs},
                             {std::string(kCounts[3]), summary->files},
                             {std::string(kCounts[4]), summary->listedFiles}};
        else
            status.indexFault = summary.error().message;
        return pageOf(status);
    };
}

HttpResponse proxyStatusPage()
{
    return pageOf({QUARRYNET_VERSION, kProxyName, "", "", std::nullopt, std::nullopt, {}});
}

} // namespace quarrynet::services

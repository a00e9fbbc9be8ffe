#include "live/source_fault.h"

#include <algorithm>
#include <array>

#include "ground/percent_coding.h"
#include "ground/utf8.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

using Kind = SourceFault::Kind;

constexpr std::size_t kMaxDetail = 400;

struct FaultTexts
{
    Kind kind;
    std::string_view page;   ///< name of the help page
    std::string_view says;   ///< follows the source's name and a colon
    std::string_view advice; ///< what to do
};

constexpr std::array kTexts{
    FaultTexts{
        Kind::NoJson, "source-no-json", ownText("JSON is not enabled (403)"),
        ownText("SearXNG answers programs only if its owner has enabled JSON. If the instance is yours, add json to "
                "the list search.formats in its settings.yml and restart it. Otherwise choose another instance in "
                "services.toml.")},
    FaultTexts{
        Kind::RateLimit, "source-rate-limit", ownText("too many searches"),
        ownText("The instance limits how often it answers. It is not asked again before the wait is over. Add further "
                "instances in services.toml, or run one of your own.")},
    FaultTexts{
        Kind::TimeOut, "source-timeout", ownText("no answer in time"),
        ownText("Search again in a moment. If the source is always slow, raise wait-seconds in services.toml, or "
                "choose another instance.")},
    FaultTexts{
        Kind::Tls, "source-tls", ownText("faulty certificate or TLS"),
        ownText("Nothing was sent to it. Check the address in services.toml and this machine's date. If the instance "
                "is yours and has a certificate of your own authority, name its file as ca-file in services.toml.")},
    FaultTexts{Kind::NotFound, "source-not-found", ownText("no such host"),
               ownText("Check the address in services.toml, and whether this machine is connected to the internet.")},
    FaultTexts{
        Kind::NoConnection, "source-no-connection", ownText("no connection"),
        ownText("Check the address and the port in services.toml, whether the instance is running, and whether this "
                "machine is connected.")},
    FaultTexts{Kind::Nonsense, "source-nonsense", ownText("no answer to a search"),
               ownText("Check that the address in services.toml is that of a SearXNG or searx instance.")},
    FaultTexts{
        Kind::Moved, "source-moved", ownText("moved to another address"),
        ownText("What you type is not sent on to addresses that you did not name. If you trust the new one, write it "
                "into services.toml.")},
    FaultTexts{
        Kind::Loop, "source-loop", ownText("this is quarrynet-services itself"),
        ownText("Name the address of a SearXNG or searx instance in services.toml, not one of quarrynet-services.")},
    FaultTexts{Kind::Status, "source-status", ownText("error"),
               ownText("The instance has a fault of its own. Search again later, or choose another instance in "
                       "services.toml.")},
    FaultTexts{
        Kind::Engines, "source-engines", ownText("its engines did not answer"),
        ownText("The instance asks engines in turn, and these refused or were too slow. Search again later, or choose "
                "another instance in services.toml.")},
    FaultTexts{Kind::Index, "source-index", ownText("cannot answer"),
               ownText("The message says what to do. If it does not, search again in a moment.")},
};

const FaultTexts& textsOf(Kind kind)
{
    return *std::find_if(kTexts.begin(), kTexts.end(), [kind](const FaultTexts& texts) { return texts.kind == kind; });
}

std::string seconds(std::chrono::seconds time)
{
    const auto count = time.count();
    if (count < 120)
        return std::to_string(count) + (count == 1 ? " second" : " seconds");
    return std::to_string((count + 59) / 60) + " minutes";
}

/// Returns the value of a query's parameter, decoded, in UTF-8 and cut to a length for people.
std::string parameter(std::string_view query, std::string_view name)
{
    while (!query.empty()) {
        const std::size_t end = std::min(query.find('&'), query.size());
        const std::string_view part = query.substr(0, end);
        if (part.size() > name.size() && part.starts_with(name) && part[name.size()] == '=') {
            const std::string text = plainLine(decodeQueryValue(part.substr(name.size() + 1)));
            return std::string(clipUtf8(text, kMaxDetail));
        }
        query.remove_prefix(std::min(end + 1, query.size()));
    }
    return {};
}

/// Returns the name of the fault's source as the beginning of a narrow column shows it: without the scheme.
std::string shownName(const SourceFault& fault)
{
    if (fault.source.empty())
        return std::string(fault.kind == Kind::Index ? ownText("The index") : ownText("The source"));
    const std::size_t scheme = fault.source.find("://");
    return fault.source.substr(scheme == std::string::npos ? 0 : scheme + 3);
}

} // namespace

std::string faultTitle(const SourceFault& fault)
{
    std::string title = shownName(fault);
    title.append(": ").append(textsOf(fault.kind).says);
    if (fault.kind == Kind::RateLimit)
        title.append("; asked again in ").append(seconds(fault.retry));
    if (!fault.detail.empty())
        title.append(": ").append(clipUtf8(plainLine(fault.detail), kMaxDetail));
    return title;
}

std::string faultAdvice(const SourceFault& fault)
{
    return std::string(textsOf(fault.kind).advice);
}

std::string faultPath(const SourceFault& fault)
{
    std::string path(kHelpPath);
    path.append(textsOf(fault.kind).page).append("?source=").append(encodeComponent(fault.source));
    if (!fault.detail.empty())
        path.append("&detail=").append(encodeComponent(clipUtf8(toUtf8(fault.detail), kMaxDetail)));
    return path;
}

HttpResponse helpPage(const HttpRequest& request)
{
    const Language language = request.language;
    const std::string_view name =
        std::string_view(request.path).substr(std::min(kHelpPath.size(), request.path.size()));
    const auto* const texts =
        std::find_if(kTexts.begin(), kTexts.end(), [name](const FaultTexts& entry) { return entry.page == name; });
    if (texts == kTexts.end())
        return errorResponse(404, "There is no such help page.", language);
    const SourceFault fault{texts->kind, parameter(request.query, "source"), parameter(request.query, "detail")};
    HttpResponse response = pageResponse({}, language);
    std::string& page = response.body;
    const std::string_view title = translated("A source did not answer", language);
    page = "<!DOCTYPE html>\n<html lang=\"";
    page.append(codeOf(language)).append("\">\n<head><meta charset=\"utf-8\"><title>").append(title);
    page += "</title>\n<style>:root { color-scheme: light dark } body { font-family: sans-serif; margin: 2em; "
            "max-width: 40em }</style>"
            "</head>\n<body>\n<h1>";
    page.append(title).append("</h1>\n<p>");
    page.append(escapeText(fault.source.empty() ? translated(shownName(fault), language) : fault.source)).append(": ");
    page.append(escapeText(translated(texts->says, language)));
    if (!fault.detail.empty())
        page.append(": ").append(escapeText(fault.detail));
    page.append(".</p>\n<h2>").append(translated("What to do", language)).append("</h2>\n<p>");
    page.append(escapeText(translated(texts->advice, language))).append("</p>\n<p>");
    page.append(
        translated("The configuration file is <code>services.toml</code> in the folder <code>quarrynet</code> of "
                   "your configuration folder (<code>~/.config</code>). <code>quarrynet-services check</code> "
                   "asks each source one search and says what answers.",
                   language));
    page += "</p>\n</body></html>\n";
    response.fields.emplace_back("Content-Security-Policy", "default-src 'none'; style-src 'unsafe-inline'; sandbox");
    return response;
}

} // namespace quarrynet::services

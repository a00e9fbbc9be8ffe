#include "searches/DownloadService.h"

#include <algorithm>
#include <optional>

#include "ground/ascii.h"
#include "ground/decimal.h"
#include "ground/percent_coding.h"
#include "ground/utf8.h"
#include "searches/missing_content.h"
#include "searches/page_head.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

std::string downloadPageHead(Language language)
{
    return pageHead("Download search", language,
                    "body { font-family: sans-serif; margin: 2em; max-width: 60em } .program { margin: 1em 0 }");
}

std::string searchForm(std::string_view typed, Language language)
{
    return "<form action=\"/3120-20-0-1-5.html\"><div><input name=\"qt\" size=\"50\" value=\"" +
           escapeAttribute(toUtf8(typed)) + "\"> <input type=\"hidden\" name=\"ca\" value=\"20\">" +
           submitButton(language) + "</div></form>\n";
}

/// Returns the page number in "/3120-20-0-PAGE-5.html", or nothing for another path.
std::optional<int> pageNumber(std::string_view path)
{
    constexpr std::string_view kBegin = "/3120-20-0-";
    constexpr std::string_view kEnd = "-5.html";
    if (path.size() < kBegin.size() + kEnd.size() || path.substr(0, kBegin.size()) != kBegin ||
        path.substr(path.size() - kEnd.size()) != kEnd)
        return std::nullopt;
    return wholeNumber(path.substr(kBegin.size(), path.size() - kBegin.size() - kEnd.size()));
}

/// Returns the text between "qt=" and the last "&ca=": "&" and "#" may be part of what people typed.
std::string_view typedPart(std::string_view query)
{
    const std::size_t mark = query.find("qt=");
    if (mark == std::string_view::npos)
        return {};
    query.remove_prefix(mark + 3);
    return query.substr(0, query.rfind("&ca="));
}

/// Returns the address without its scheme: "/host/path" for "http://host/path".
std::string_view placeOf(std::string_view address)
{
    const std::size_t scheme = address.find("://");
    return scheme == std::string_view::npos ? address : address.substr(scheme + 2);
}

/// Returns the name as people know it, with the package's, by which several packages of a program differ.
std::string shownName(std::string_view package, std::string_view title)
{
    if (title.empty() || equalsIgnoringCase(package, title))
        return std::string(title.empty() ? package : title);
    return std::string(title).append(" (").append(package).append(")");
}

void appendRow(std::string& page, const ProgramHit& hit, Language language)
{
    // The program parses a row from marker to marker: bold text for the name, the element after the next "class" (whose
    // following 25 bytes must not contain "pick", hence the long name), "OS:", a blank before "<", and two "</b>".
    page += "<div class=\"program\"><b>" + escapeText(hit.name) + "</b><br>\n";
    page += "<span class=\"program-description\">" + escapeText(hit.description) + "</span><br>\n";
    page += "<b>OS:</b>" + escapeText(hit.system) + " <br>\n";
    page += "<b>File size:</b>" + readableSize(hit.size) + "<br>\n";
    page += "<b>License:</b>" + escapeText(hit.license) + "<br>\n";
    page += "<a href=\"/redir?destUrl=" + encodeComponent(hit.address) + "\">" +
            escapeText(translated("Download now", language)) + "</a></div>\n";
}

} // namespace

std::string downloadResultsPage(const ProgramAnswer& answer, std::string_view typed, Language language)
{
    std::string page = downloadPageHead(language);
    if (answer.hits.empty()) {
        // The typed text is not repeated here: it could contain the marker of a page with results.
        page.append("<div>").append(translated("No program has these words.", language)).append("</div>\n");
        return page + searchForm("", language) + "</body></html>\n";
    }
    const auto last = answer.start + static_cast<std::int64_t>(answer.hits.size());
    // The count has no separators, because the program parses it as a number.
    page += "<div>Found: <b>" + std::to_string(answer.total) + "</b> programs, showing <b>" +
            std::to_string(answer.start + 1) + " - " + std::to_string(last) + "</b></div>\n<!-- main loop -->\n";
    for (const ProgramHit& hit : answer.hits)
        appendRow(page, hit, language);
    const auto link = [&](std::int64_t start, std::string_view label) {
        page += " <a href=\"/3120-20-0-" + std::to_string(start / DownloadService::kPageSize + 1) +
                "-5.html?qt=" + encodeComponent(typed) + "&amp;ca=20\">";
        page += label;
        page += "</a>";
    };
    page += "<div>";
    if (answer.start > 0)
        link(answer.start - DownloadService::kPageSize, translated("Previous", language));
    if (last < answer.total)
        link(last, translated("Next", language));
    page += "</div>\n" + searchForm(typed, language) + "</body></html>\n";
    return page;
}

std::string downloadPage(std::string_view address, Language language)
{
    // The program decodes only "%3A" and "%2F", and stops at the first ";".
    std::string coded;
    for (const char c : address) {
        if (c == ':' || c == '/' || std::string_view(";\"\\<'").find(c) != std::string_view::npos)
            coded += encodeComponent(std::string_view(&c, 1));
        else
            coded.push_back(c);
    }
    // The program drops the last character between the quotes, so an extra one is added: an empty fragment, which
    // changes nothing for a browser that runs the script.
    return downloadPageHead(language) + "<script>newlocation = \"" + coded +
           "#\"; location.replace(newlocation.replace(/%3A/g, \":\").replace(/%2F/g, \"/\"));</script>\n<div><a "
           "href=\"" +
           escapeAttribute(address) + "\">" + escapeText(translated("Download", language)) +
           "</a></div>\n</body></html>\n";
}

HttpResponse DownloadService::answer(const HttpRequest& request)
{
    const Language language = request.language;
    std::string_view path = request.path;
    while (path.substr(0, 2) == "//")
        path.remove_prefix(1);
    if (path == "/") {
        std::string page = downloadPageHead(language);
        page.append("<h1>").append(translated("Local download search", language)).append("</h1>\n");
        page += searchForm("", language);
        page.append("<div>").append(translated("Searches the programs in this machine's package lists.", language));
        return pageResponse(page + "</div>\n</body></html>\n", language);
    }
    if (const std::optional<int> page = pageNumber(path); page && *page >= 1)
        return searchPage(*page, request.query, language);
    if (path == "/redir") {
        const std::size_t mark = request.query.find("destUrl=");
        if (mark != std::string::npos)
            return redirectPage(placeOf(decodePercent(std::string_view(request.query).substr(mark + 8))), language);
    }
    if (path.substr(0, 4) == "/%2F")
        return redirectPage(decodePercent(path.substr(1)), language);
    return errorResponse(404, "There is no such page on the download search.", language);
}

HttpResponse DownloadService::searchPage(int page, std::string_view query, Language language)
{
    const std::string typed = decodeQueryValue(typedPart(query));
    const Outcome<ProgramAnswer> found = search(typed, (static_cast<std::int64_t>(page) - 1) * kPageSize);
    if (!found)
        return errorResponse(503, "The search cannot answer: %1.", language, found.error().message);
    std::string content = downloadResultsPage(*found, typed, language);
    if (found->hits.empty())
        noteMissing(content, index_, Missing::Programs, language);
    return pageResponse(std::move(content), language);
}

Outcome<ProgramAnswer> DownloadService::search(std::string_view typed, std::int64_t start)
{
    // The program with the typed name comes first, then those whose names begin with it, short ones first, then the
    // rest by rank: a word in the name counts for more than one in the description. Within both kinds companions come
    // last. The id breaks ties, so that pages neither repeat nor lose results.
    static constexpr WordTable kTable = {
        "{name title}",
        "SELECT count(*) FROM program_text WHERE program_text MATCH ?1",
        "WITH begun AS MATERIALIZED (SELECT id, name = ?4 OR alias = ?4 AS whole FROM program "
        "WHERE (name >= ?4 AND name < ?5) OR (alias >= ?4 AND alias < ?5)), "
        "found AS (SELECT rowid AS id, rank AS score FROM program_text "
        "WHERE program_text MATCH ?1 AND rank MATCH 'bm25(5.0, 5.0, 1.0, 1.0)'), "
        "shown AS MATERIALIZED (SELECT found.id AS id, coalesce(whole, 0) AS whole, begun.id AS begun, "
        "found.id >= ?6 AS companion, score FROM found LEFT JOIN begun ON begun.id = found.id "
        "ORDER BY coalesce(whole, 0) DESC, begun.id IS NULL, begun.id, found.id >= ?6, score, found.id LIMIT ?2 OFFSET "
        "?3) "
        "SELECT program.name, program.description, program.system, program.size, program.licence, mirror.base, "
        "program.file, program.title FROM shown JOIN program ON program.id = shown.id JOIN mirror ON mirror.id = "
        "program.mirror "
        "ORDER BY whole DESC, begun IS NULL, begun, companion, score, shown.id",
        kPageSize,
    };
    return findPage<ProgramHit>(index_, kTable, typed, start, [&](const Statement& row) {
        return ProgramHit{shownName(row.text(0), row.text(7)),
                          std::string(row.text(1)),
                          std::string(row.text(2)),
                          row.number(3),
                          std::string(row.text(4)),
                          std::string(row.text(5)) + encodePath(row.text(6))};
    });
}

/// Returns the address of the download at `place`, or an empty text when the index has none there: the page redirects
/// to indexed programs only.
Outcome<std::string> DownloadService::findDownload(std::string_view place)
{
    Outcome<IndexPool::Lease> index = index_.borrow();
    if (!index)
        return index.error();
    Outcome<Statement> mirrors = (*index)->prepare("SELECT id, base FROM mirror");
    Outcome<Statement> programs = (*index)->prepare("SELECT 1 FROM program WHERE file = ?1 AND mirror = ?2");
    if (!mirrors || !programs)
        return mirrors ? programs.error() : mirrors.error();
    while (mirrors->step() == Statement::Step::Row) {
        const std::string base(mirrors->text(1));
        const std::string_view prefix = placeOf(base);
        if (place.substr(0, prefix.size()) != prefix)
            continue;
        const std::string file = decodePercent(place.substr(prefix.size()));
        programs->reset();
        programs->bind(1, file);
        programs->bind(2, mirrors->number(0));
        if (programs->step() == Statement::Step::Row)
            return base + encodePath(file);
    }
    return std::string();
}

HttpResponse DownloadService::redirectPage(std::string_view place, Language language)
{
    const Outcome<std::string> address = findDownload(place);
    if (!address)
        return errorResponse(503, "The download cannot be found: %1.", language, address.error().message);
    if (address->empty())
        return errorResponse(404, "There is no such download.", language);
    return pageResponse(downloadPage(*address, language), language);
}

} // namespace quarrynet::services

#include "services/web_service.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <optional>

#include "services/document_folders.h"
#include "services/markup.h"
#include "services/query.h"
#include "services/text_encoding.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kMaxServedFile = 64 * 1024 * 1024;

constexpr std::string_view kPageHead = R"(<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>Web search</title>
<style>body { font-family: sans-serif; margin: 2em; max-width: 60em } p { margin: 1em 0 } .address { color: #060 }</style>
</head>
<body>
)";

std::string searchForm(std::string_view typed)
{
    return "<form action=\"/search\"><div><input name=\"q\" size=\"50\" value=\"" + escapeAttribute(toUtf8(typed)) +
           "\"> <input type=\"submit\" value=\"Search\"></div></form>\n";
}

std::string frontPage()
{
    std::string page(kPageHead);
    page += "<h1>Local web search</h1>\n";
    page += searchForm("");
    page += "<div>Searches the home pages of the programs in this machine's package lists, and the documentation "
            "installed on it.</div>\n</body></html>\n";
    return page;
}

/// What follows "q=" to the very end: people's "&" and "#" are part of what they typed.
std::string_view typedPart(std::string_view query)
{
    if (query.substr(0, 2) == "q=")
        return query.substr(2);
    const std::size_t mark = query.find("&q=");
    return mark == std::string_view::npos ? std::string_view() : query.substr(mark + 3);
}

/// The number behind "start=" among the parameters before q; 0 when there is none.
std::int64_t startPart(std::string_view query)
{
    const std::string_view settings =
        query.substr(0, 2) == "q=" ? std::string_view() : query.substr(0, query.find("&q="));
    std::size_t at = 0;
    while (at < settings.size()) {
        const std::size_t end = std::min(settings.find('&', at), settings.size());
        const std::string_view setting = settings.substr(at, end - at);
        if (setting.substr(0, 6) == "start=")
            return wholeNumber(setting.substr(6)).value_or(0);
        at = end + 1;
    }
    return 0;
}

void appendPageLinks(std::string& page, const WebAnswer& answer, std::string_view typed)
{
    const std::string words = encodeComponent(typed);
    const auto link = [&](std::int64_t start, std::string_view label) {
        page += " <a href=\"/search?start=" + std::to_string(start) + "&amp;q=" + words + "\">";
        page += label;
        page += "</a>";
    };
    page += "<div>";
    if (answer.start > 0)
        link(std::max<std::int64_t>(0, answer.start - WebService::kPageSize), "Previous");
    if (answer.start + WebService::kPageSize < answer.total)
        link(answer.start + WebService::kPageSize, "Next");
    page += "</div>\n";
}

} // namespace

std::string webResultsPage(const WebAnswer& answer, std::string_view typed)
{
    std::string page(kPageHead);
    page += searchForm(typed);
    if (answer.hits.empty()) {
        page += "<div>No page was found for these words.</div>\n</body></html>\n";
        return page;
    }
    std::array<char, 32> seconds{};
    std::snprintf(seconds.data(), seconds.size(), "%.3f", answer.seconds);
    const auto last = answer.start + static_cast<std::int64_t>(answer.hits.size());
    // The program takes the first "</b> of about <b>" of the page for the count, and the bold text behind it for the
    // time. This line therefore stands before all results, whose matches may spell out the same.
    page += "<div>Results <b>" + withSeparators(answer.start + 1) + "</b> - <b>" + withSeparators(last) +
            "</b> of about <b>" + withSeparators(answer.total) + "</b>, found in <b>" + seconds.data() +
            "</b> seconds</div>\n";
    for (const WebHit& hit : answer.hits) {
        page += "<p><a href=" + hit.address + ">" + escapeMatches(hit.title) + "</a><br>\n";
        if (!hit.description.empty())
            page += escapeMatches(hit.description) + "<br>\n";
        page += "<span class=\"address\">" + escapeText(hit.address) + "</span></p>\n";
    }
    appendPageLinks(page, answer, typed);
    page += "</body></html>\n";
    return page;
}

HttpResponse WebService::answer(const HttpRequest& request)
{
    std::string_view path = request.path;
    while (path.substr(0, 2) == "//")
        path.remove_prefix(1);
    if (path == "/") {
        HttpResponse response;
        response.body = frontPage();
        return response;
    }
    if (path == "/search")
        return searchPage(request.query);
    if (path.substr(0, 5) == "/doc/")
        return document(path.substr(5));
    return errorResponse(404, "There is no such page on the web search.");
}

HttpResponse WebService::searchPage(std::string_view query)
{
    const std::string typed = decodeQueryValue(typedPart(query));
    const Outcome<WebAnswer> found = search(typed, startPart(query));
    if (!found)
        return errorResponse(503, "The search cannot answer: " + found.failure().message + ".");
    HttpResponse response;
    response.body = webResultsPage(*found, typed);
    return response;
}

Outcome<WebAnswer> WebService::search(std::string_view typed, std::int64_t start)
{
    const auto begin = std::chrono::steady_clock::now();
    WebAnswer answer;
    answer.start = start;
    Outcome<IndexPool::Lease> index = index_.borrow();
    if (!index)
        return index.failure();
    const std::string expression = wordExpression(typed);
    if (expression.empty())
        return answer;

    Outcome<Statement> count = (*index)->prepare("SELECT count(*) FROM web_page_text WHERE web_page_text MATCH ?1");
    if (!count)
        return count.failure();
    count->bind(1, expression);
    if (count->step() != Statement::Step::Row)
        return count->failure();
    answer.total = count->number(0);

    // A word in the title says more about a page than one in its text.
    Outcome<Statement> rows = (*index)->prepare(
        "SELECT page.address, highlight(web_page_text, 0, char(1), char(2)), "
        "snippet(web_page_text, 1, char(1), char(2), '...', 32) "
        "FROM web_page_text JOIN web_page AS page ON page.id = web_page_text.rowid "
        "WHERE web_page_text MATCH ?1 AND rank MATCH 'bm25(5.0, 1.0)' ORDER BY rank LIMIT ?2 OFFSET ?3");
    if (!rows)
        return rows.failure();
    rows->bind(1, expression);
    rows->bind(2, static_cast<std::int64_t>(kPageSize));
    rows->bind(3, start);
    Statement::Step step = rows->step();
    for (; step == Statement::Step::Row; step = rows->step()) {
        std::string address(rows->text(0));
        if (!address.empty() && address.front() == '/')
            address.insert(0, base_);
        answer.hits.push_back({std::move(address), std::string(rows->text(1)), std::string(rows->text(2))});
    }
    if (step == Statement::Step::Failed)
        return rows->failure();
    answer.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return answer;
}

HttpResponse WebService::document(std::string_view path)
{
    const std::size_t slash = std::min(path.find('/'), path.size());
    const std::optional<int> number = wholeNumber(path.substr(0, slash));
    HttpResponse missing = errorResponse(404, "There is no such document.");
    if (!number || slash == path.size())
        return missing;
    Outcome<IndexPool::Lease> index = index_.borrow();
    if (!index)
        return errorResponse(503, "The documents cannot be served: " + index.failure().message + ".");
    Outcome<Statement> folder = (*index)->prepare("SELECT path FROM folder WHERE id = ?1");
    if (!folder)
        return errorResponse(503, folder.failure().message);
    folder->bind(1, static_cast<std::int64_t>(*number));
    if (folder->step() != Statement::Step::Row)
        return missing;
    const std::optional<std::string> file =
        servedFile(std::string(folder->text(0)), decodePercent(path.substr(slash + 1)));
    std::optional<std::string> content = file ? readFile(*file, kMaxServedFile) : std::nullopt;
    if (!content)
        return missing;
    HttpResponse response;
    response.contentType = std::string(mediaType(*file));
    response.body = std::move(*content);
    return response;
}

} // namespace quarrynet::services

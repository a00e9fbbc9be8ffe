#include "searches/WebService.h"

#include <algorithm>
#include <chrono>
#include <optional>

#include "ground/percent_coding.h"
#include "ground/utf8.h"
#include "searches/missing_content.h"
#include "searches/page_head.h"
#include "searches/search_page.h"
#include "searches/served_files.h"
#include "text/markup.h"
#include "thumbnails/picture_format.h"

namespace quarrynet::services {

namespace {

/// The pages are not ours: they may show the files next to them, and run nothing.
constexpr std::string_view kPagePolicy =
    "default-src 'none'; img-src 'self' data:; style-src 'self' 'unsafe-inline'; sandbox";

std::string webPageHead(Language language)
{
    return pageHead(
        "Web search", language,
        "body { font-family: sans-serif; margin: 2em; max-width: 60em } p { margin: 1em 0 } .address { color: #060 } "
        "@media (prefers-color-scheme: dark) { .address { color: #8c8 } }");
}

std::string searchForm(std::string_view typed, Language language)
{
    return "<form action=\"/search\"><div><input name=\"q\" size=\"50\" value=\"" + escapeAttribute(toUtf8(typed)) +
           "\"> " + submitButton(language) + "</div></form>\n";
}

std::string frontPage(Language language)
{
    std::string page = webPageHead(language);
    page.append("<h1>").append(translated("Local web search", language)).append("</h1>\n");
    page += searchForm("", language);
    page.append("<div>").append(translated("Searches the home pages of the programs in this machine's package lists, "
                                           "and the documentation installed on it.",
                                           language));
    return page + "</div>\n</body></html>\n";
}

} // namespace

std::string webResultsPage(const WebAnswer& answer, std::string_view typed, Language language)
{
    std::string page = webPageHead(language);
    page += searchForm(typed, language);
    if (answer.hits.empty()) {
        page.append("<div>").append(translated("No page was found for these words.", language));
        return page + "</div>\n</body></html>\n";
    }
    // Rows for sources that did not answer are not counted in the total.
    const auto last = std::min(answer.start + static_cast<std::int64_t>(answer.hits.size()), answer.total);
    page += resultsHeading(answer.start + 1, last, answer.total, answer.seconds);
    for (const WebHit& hit : answer.hits) {
        page += "<p><a href=" + hit.address + ">" + escapeMatches(hit.title) + "</a><br>\n";
        if (!hit.description.empty())
            page += escapeMatches(hit.description) + "<br>\n";
        page += "<span class=\"address\">" + escapeText(hit.address) + "</span></p>\n";
    }
    page += pageLinks("/search", typed, answer.start, WebService::kPageSize, answer.total, language);
    page += "</body></html>\n";
    return page;
}

HttpResponse WebService::answer(const HttpRequest& request)
{
    std::string_view path = request.path;
    while (path.substr(0, 2) == "//")
        path.remove_prefix(1);
    if (path == "/") {
        return pageResponse(frontPage(request.language), request.language);
    }
    if (path == "/search")
        return searchPage(request.query, request.language);
    if (path.starts_with(kHelpPath))
        return helpPage(request);
    if (path.substr(0, 5) == "/doc/")
        return document(path.substr(5), request.language);
    return errorResponse(404, "There is no such page on the web search.", request.language);
}

HttpResponse WebService::searchPage(std::string_view query, Language language)
{
    const std::string typed = decodeQueryValue(typedPart(query));
    const Outcome<WebAnswer> found = searchSources(typed, startPart(query));
    if (!found)
        return errorResponse(503, "The search cannot answer: %1.", language, found.error().message);
    std::string content = webResultsPage(*found, typed, language);
    if (found->hits.empty())
        noteMissing(content, index_, Missing::Programs, language);
    return pageResponse(std::move(content), language);
}

Outcome<WebAnswer> WebService::search(std::string_view typed, std::int64_t start)
{
    // Pages known by the typed name come first, then those whose names begin with it, short ones first, then the others
    // by rank: a word in the title counts for more than one in the text. Excerpts are made only for the pages shown.
    // The id breaks ties, so that pages neither repeat nor lose results.
    static constexpr WordTable kTable = {
        "title",
        "SELECT count(*) FROM web_page_text WHERE web_page_text MATCH ?1",
        "WITH named AS MATERIALIZED (SELECT page, min(length(name)) AS length FROM page_name "
        "WHERE name >= ?4 AND name < ?5 GROUP BY page), "
        "found AS (SELECT rowid AS id, rank AS score FROM web_page_text "
        "WHERE web_page_text MATCH ?1 AND rank MATCH 'bm25(5.0, 1.0)'), "
        "shown AS MATERIALIZED (SELECT found.id AS id, length, score FROM found "
        "LEFT JOIN named ON named.page = found.id "
        "ORDER BY length IS NULL, length, score, found.id LIMIT ?2 OFFSET ?3) "
        "SELECT page.address, excerpt(web_page_text, 0, 64), excerpt(web_page_text, 1, 32) "
        "FROM web_page_text CROSS JOIN shown ON shown.id = web_page_text.rowid "
        "CROSS JOIN web_page AS page ON page.id = shown.id WHERE web_page_text MATCH ?1 "
        "ORDER BY length IS NULL, length, score, shown.id",
        kPageSize,
    };
    return findPage<WebHit>(index_, kTable, typed, start, [&](const Statement& row) {
        std::string address(row.text(0));
        if (!address.empty() && address.front() == '/')
            address.insert(0, base_);
        return WebHit{std::move(address), std::string(row.text(1)), std::string(row.text(2))};
    });
}

Outcome<WebAnswer> WebService::searchSources(std::string_view typed, std::int64_t start)
{
    if (live_ == nullptr)
        return search(typed, start);
    const auto begin = std::chrono::steady_clock::now();
    Gathered gathered = live_->gather(typed, start, kPageSize, [&](std::int64_t from) -> Outcome<Gatherer::IndexPage> {
        Outcome<WebAnswer> page = search(typed, from);
        if (!page)
            return page.error();
        Gatherer::IndexPage rows{page->total, {}};
        for (WebHit& hit : page->hits)
            rows.rows.push_back({std::move(hit.address), std::move(hit.title), std::move(hit.description), "", true});
        return rows;
    });
    WebAnswer answer;
    answer.start = start;
    for (const SourceFault& fault : gathered.faults)
        answer.hits.push_back({base_ + faultPath(fault), faultTitle(fault), faultAdvice(fault)});
    for (GatheredRow& row : gathered.rows)
        answer.hits.push_back({std::move(row.address), std::move(row.title), std::move(row.text)});
    for (WebHit& hit : answer.hits) {
        if (hit.title.empty())
            hit.title = hit.address;
    }
    answer.total = totalOf(gathered, start);
    answer.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return answer;
}

/// Returns a document's folder and what the index has the document as, or nothing when the index has no such folder.
Outcome<std::optional<WebService::Place>> WebService::placeOf(std::int64_t folder, std::string_view path)
{
    const std::optional<Place> none;
    Outcome<IndexPool::Lease> index = index_.borrow();
    if (!index)
        return index.error();
    Outcome<Statement> row = (*index)->prepare(
        "SELECT path, EXISTS (SELECT 1 FROM document WHERE folder = ?1 AND path = ?2), "
        "EXISTS (SELECT 1 FROM shown_picture WHERE folder = ?1 AND path = ?2) FROM folder WHERE id = ?1");
    if (!row)
        return row.error();
    row->bind(1, folder);
    row->bind(2, path);
    if (row->step() != Statement::Step::Row)
        return none;
    return std::optional<Place>({std::string(row->text(0)), row->number(1) != 0, row->number(2) != 0});
}

HttpResponse WebService::document(std::string_view path, Language language)
{
    HttpResponse missing = errorResponse(404, "There is no such document.", language);
    std::optional<ServedPlace> asked = servedPlace(path);
    if (!asked)
        return missing;
    std::string& relative = asked->path;
    if (relative.empty() || relative.back() == '/')
        relative += "index.html";
    const Outcome<std::optional<Place>> place = placeOf(asked->folder, relative);
    if (!place)
        return errorResponse(503, "The documents cannot be served: %1.", language, place.error().message);
    HttpResponse response;
    response.file = *place ? openBeneath((*place)->folder, relative) : nullptr;
    if (response.file == nullptr)
        return missing;
    if ((*place)->isPage) {
        response.contentType = pageType(relative);
    } else {
        // Style sheets import others, so a style sheet needs no page that shows it.
        const std::string beginning = response.file->beginning(kPictureBeginning);
        response.contentType = (*place)->isPicture ? pictureType(beginning) : styleType(relative, beginning);
    }
    if (response.contentType.empty())
        return missing;
    response.fields.emplace_back("Content-Security-Policy", kPagePolicy);
    return response;
}

} // namespace quarrynet::services

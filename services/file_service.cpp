#include "services/file_service.h"

#include <algorithm>

#include "services/markup.h"
#include "services/query.h"

namespace quarrynet::services {

namespace {

constexpr std::string_view kPageHead = R"(<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>FTP file search</title>
<style>body { font-family: sans-serif; margin: 2em }</style>
</head>
<body>
<form action="/cgi-bin/s"><div><input type="hidden" name="t" value="f"><input name="q" size="50">
<input type="submit" value="Search"></div></form>
)";

void replaceAll(std::string& text, std::string_view what, std::string_view with)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
}

void appendFile(std::string& page, const FileHit& hit)
{
    // The program reaches back ten bytes from the first ":" behind the size, over "a href=ftp", for the "=".
    page += "<div><b> " + (hit.size ? readableSize(*hit.size) : std::string()) + "</b> <a href=" + hit.address +
            " class=file>" + fileNameText(hit.name) + "</a></div>\n";
}

void appendDirectory(std::string& page, const FileHit& hit)
{
    // The program takes the address from the "q=" of the last link, and wants a link before that one.
    page += "<div>&lt;dir&gt; <a href=" + hit.parent + " class=parent>In</a> <a href=/cgi-bin/s?t=f&q=" + hit.address +
            " class=directory>List</a> <b>" + fileNameText(hit.name) + "</b></div>\n";
}

struct Asked
{
    std::string_view typed;
    std::int64_t start = 0;
};

/// What stands behind "q=", and the "&f=" with a number at its very end: people's "&" and "#" are part of what they
/// typed.
Asked readQuery(std::string_view query)
{
    Asked asked;
    if (query.substr(0, 2) == "q=")
        asked.typed = query.substr(2);
    else if (const std::size_t mark = query.find("&q="); mark != std::string_view::npos)
        asked.typed = query.substr(mark + 3);
    const std::size_t mark = asked.typed.rfind("&f=");
    if (mark != std::string_view::npos) {
        if (const std::optional<int> first = wholeNumber(asked.typed.substr(mark + 3))) {
            asked.typed = asked.typed.substr(0, mark);
            asked.start = std::max(0, *first - 1);
        }
    }
    return asked;
}

} // namespace

std::string ftpAddress(std::string_view base, std::string_view path)
{
    std::string escaped = std::string(base) + encodePath(path);
    replaceAll(escaped, "class", "cl%61ss");
    return escaped;
}

std::string fileNameText(std::string_view name)
{
    std::string text = escapeText(name);
    // These two words would make the program take the page for one without results.
    replaceAll(text, "not found", "not&#32;found");
    // "<b> " begins a file's size.
    if (!text.empty() && text.front() == ' ')
        text.replace(0, 1, "&#32;");
    return text;
}

std::string fileResultsPage(const FileAnswer& answer, std::string_view typed)
{
    std::string page(kPageHead);
    if (answer.hits.empty()) {
        page += "<div>Sorry, not found: no file or directory has this in its name.</div>\n</body></html>\n";
        return page;
    }
    for (const FileHit& hit : answer.hits) {
        if (hit.directory)
            appendDirectory(page, hit);
        else
            appendFile(page, hit);
    }
    const auto link = [&](std::int64_t start, std::string_view label) {
        page +=
            " <a href=\"/cgi-bin/s?t=f&amp;q=" + encodeComponent(typed) + "&amp;f=" + std::to_string(start + 1) + "\">";
        page += label;
        page += "</a>";
    };
    page += "<div>";
    if (answer.start > 0)
        link(std::max<std::int64_t>(0, answer.start - FileService::kPageSize), "Previous");
    if (answer.more)
        link(answer.start + FileService::kPageSize, "Next");
    page += "</div>\n</body></html>\n";
    return page;
}

HttpResponse FileService::answer(const HttpRequest& request)
{
    std::string_view path = request.path;
    while (path.substr(0, 2) == "//")
        path.remove_prefix(1);
    if (path == "/") {
        HttpResponse response;
        response.body = std::string(kPageHead) +
                        "<div>Searches the names of files on FTP servers: the mirrors of this machine's packages, and "
                        "servers that were crawled.</div>\n</body></html>\n";
        return response;
    }
    if (path == "/cgi-bin/s")
        return searchPage(request.query);
    return errorResponse(404, "There is no such page on the file search.");
}

HttpResponse FileService::searchPage(std::string_view query)
{
    const Asked asked = readQuery(query);
    const std::string typed = decodeQueryValue(asked.typed);
    const Outcome<FileAnswer> found = search(typed, asked.start);
    if (!found)
        return errorResponse(503, "The search cannot answer: " + found.failure().message + ".");
    HttpResponse response;
    response.body = fileResultsPage(*found, typed);
    return response;
}

Outcome<FileAnswer> FileService::search(std::string_view typed, std::int64_t start)
{
    FileAnswer answer;
    answer.start = start;
    Outcome<IndexPool::Lease> index = index_.borrow();
    if (!index)
        return index.failure();
    if (typed.substr(0, 6) == "ftp://")
        return listDirectory(**index, typed, start);
    const NameQuery names = nameQuery(typed);
    if (names.empty())
        return answer;
    std::string source = "file_entry AS entry";
    std::string condition;
    std::vector<std::string> values;
    if (!names.expression.empty()) {
        // The full-text table gives its rows in the order of their numbers, so no more are read than are shown.
        source = "file_name CROSS JOIN file_entry AS entry ON entry.id = file_name.rowid";
        condition = "file_name MATCH ?3";
        values.push_back(names.expression);
    }
    for (const std::string& pattern : names.patterns) {
        values.push_back(pattern);
        condition += condition.empty() ? "" : " AND ";
        condition += "entry.name LIKE ?" + std::to_string(values.size() + 2) + " ESCAPE '\\'";
    }
    condition += names.expression.empty() ? " ORDER BY entry.id" : " ORDER BY file_name.rowid";
    return run(**index, source, condition, values, start);
}

/// `source` and `condition` are SQL of this file's making; `values` are bound from the third parameter on.
Outcome<FileAnswer> FileService::run(Database& index, const std::string& source, const std::string& condition,
                                     const std::vector<std::string>& values, std::int64_t start)
{
    FileAnswer answer;
    answer.start = start;
    Outcome<Statement> rows =
        index.prepare("SELECT site.base, folder.path, entry.name, entry.size, entry.directory FROM " + source +
                      " JOIN file_folder AS folder ON folder.id = entry.folder JOIN file_site AS site ON site.id = "
                      "folder.site WHERE " +
                      condition + " LIMIT ?1 OFFSET ?2");
    if (!rows)
        return rows.failure();
    // One more than a page holds tells whether there is another.
    rows->bind(1, std::int64_t{kPageSize} + 1);
    rows->bind(2, start);
    for (std::size_t i = 0; i < values.size(); ++i)
        rows->bind(static_cast<int>(i) + 3, values[i]);
    Statement::Step step = rows->step();
    for (; step == Statement::Step::Row; step = rows->step()) {
        if (answer.hits.size() == kPageSize) {
            answer.more = true;
            continue;
        }
        FileHit hit;
        hit.name = std::string(rows->text(2));
        hit.directory = rows->number(4) != 0;
        hit.parent = ftpAddress(rows->text(0), rows->text(1));
        hit.address = hit.parent + ftpAddress({}, rows->text(2));
        if (hit.directory) {
            hit.address.push_back('/');
            // It stands in a query, too, where a "+" would be a blank.
            replaceAll(hit.address, "+", "%2B");
        }
        if (!rows->isNull(3))
            hit.size = rows->number(3);
        answer.hits.push_back(std::move(hit));
    }
    if (step == Statement::Step::Failed)
        return rows->failure();
    return answer;
}

Outcome<FileAnswer> FileService::listDirectory(Database& index, std::string_view address, std::int64_t start)
{
    FileAnswer answer;
    answer.start = start;
    Outcome<Statement> sites = index.prepare("SELECT id, base FROM file_site");
    if (!sites)
        return sites.failure();
    Statement::Step step = sites->step();
    for (; step == Statement::Step::Row; step = sites->step()) {
        const std::string_view base = sites->text(1);
        if (address.substr(0, base.size()) != base)
            continue;
        const std::string path(address.substr(base.size()));
        return run(index, "file_entry AS entry",
                   "folder.id = (SELECT id FROM file_folder WHERE path = ?3 AND site = CAST(?4 AS INTEGER) LIMIT 1) "
                   "ORDER BY entry.id",
                   {path, std::to_string(sites->number(0))}, start);
    }
    if (step == Statement::Step::Failed)
        return sites->failure();
    return answer;
}

} // namespace quarrynet::services

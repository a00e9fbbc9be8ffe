#include "searches/FileService.h"

#include <algorithm>

#include "ground/decimal.h"
#include "ground/percent_coding.h"
#include "searches/listed_files.h"
#include "searches/missing_content.h"
#include "searches/page_head.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

std::string filePageHead(Language language)
{
    return pageHead("File search", language, "body { font-family: sans-serif; margin: 2em }") +
           "<form action=\"/cgi-bin/s\"><div><input type=\"hidden\" name=\"t\" value=\"f\"><input name=\"q\" "
           "size=\"50\">\n" +
           submitButton(language) + "</div></form>\n";
}

void appendFile(std::string& page, const FileHit& hit)
{
    // From the first ":" after the size, the program goes back ten bytes over "a href=ftp" and takes the next "=".
    page += "<div><b> " + (hit.size ? readableSize(*hit.size) : std::string()) + "</b> <a href=" + hit.address +
            " class=file>" + fileNameText(hit.name) + "</a></div>\n";
}

void appendDirectory(std::string& page, const FileHit& hit)
{
    // The program takes the address from the "q=" of the last link, and expects a link before that one.
    page += "<div>&lt;dir&gt; <a href=" + hit.parent + " class=parent>In</a> <a href=/cgi-bin/s?t=f&q=" + hit.address +
            " class=directory>List</a> <b>" + fileNameText(hit.name) + "</b></div>\n";
}

struct Asked
{
    std::string_view typed;
    std::int64_t start = 0;
};

/// Splits a query into the text after "q=" and the number of an "&f=" at its very end: "&" and "#" may be part of what
/// people typed.
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

bool isAddress(std::string_view typed)
{
    return typed.substr(0, 6) == "ftp://" || typed.substr(0, 7) == "ftps://" || typed.substr(0, 7) == "http://" ||
           typed.substr(0, 8) == "https://";
}

/// Appends `pattern` to `values` and returns the SQL condition that compares a name with it.
std::string likeCondition(const std::string& pattern, std::vector<std::string>& values)
{
    values.push_back(pattern);
    return "entry.name LIKE ?" + std::to_string(values.size() + 2) + " ESCAPE '\\'";
}

FileHit readHit(const Statement& row)
{
    FileHit hit;
    hit.name = std::string(row.text(2));
    hit.directory = row.number(4) != 0;
    hit.parent = addressBelow(row.text(0), row.text(1));
    hit.address = hit.parent + addressBelow({}, row.text(2));
    if (hit.directory) {
        hit.address.push_back('/');
        // The address is also used in a query, where a "+" would mean a blank.
        hit.address = withReplaced(hit.address, "+", "%2B");
    }
    if (!row.isNull(3))
        hit.size = row.number(3);
    return hit;
}

/// Appends rows after the first `skipped` to `hits` until these are `most`. `source` and `condition` are SQL written in
/// this file; `values` are bound from the third parameter on.
Outcome<Done> readRows(Database& index, const std::string& source, const std::string& condition,
                       const std::vector<std::string>& values, std::int64_t skipped, std::size_t most,
                       std::vector<FileHit>& hits)
{
    Outcome<Statement> rows =
        index.prepare("SELECT site.base, folder.path, entry.name, entry.size, entry.directory FROM " + source +
                      " JOIN file_folder AS folder ON folder.id = entry.folder JOIN file_site AS site ON site.id = "
                      "folder.site WHERE " +
                      condition + " LIMIT ?1 OFFSET ?2");
    if (!rows)
        return rows.error();
    rows->bind(1, static_cast<std::int64_t>(most - hits.size()));
    rows->bind(2, skipped);
    for (std::size_t i = 0; i < values.size(); ++i)
        rows->bind(static_cast<int>(i) + 3, values[i]);
    Statement::Step step = rows->step();
    for (; step == Statement::Step::Row; step = rows->step())
        hits.push_back(readHit(*rows));
    if (step == Statement::Step::Failed)
        return rows->failure();
    return Done{};
}

/// Counts the rows that match `condition`; `source` and `values` are as above.
Outcome<std::int64_t> countRows(Database& index, const std::string& source, const std::string& condition,
                                const std::vector<std::string>& values)
{
    Outcome<Statement> count = index.prepare("SELECT count(*) FROM " + source + " WHERE " + condition);
    if (!count)
        return count.error();
    for (std::size_t i = 0; i < values.size(); ++i)
        count->bind(static_cast<int>(i) + 3, values[i]);
    if (count->step() != Statement::Step::Row)
        return count->failure();
    return count->number(0);
}

/// Does for the files of mirrors and crawled servers what findListedFiles() does for those in packages.
Outcome<std::int64_t> findEntries(Database& index, const NameQuery& names, NameGroup group, std::int64_t skip,
                                  std::size_t most, std::vector<FileHit>& hits)
{
    std::vector<std::string> values{names.first, names.firstEnd};
    std::string begins = "entry.name >= ?3 AND entry.name < ?4";
    for (const std::string& pattern : names.otherPatterns)
        begins += " AND " + likeCondition(pattern, values);
    std::string source = "file_entry AS entry";
    std::string condition;
    std::string order = "entry.id";
    if (group == NameGroup::Rest) {
        condition = "NOT (" + begins + ")";
        if (!names.expression.empty()) {
            // The full-text table returns its rows in the order of their numbers, so no more are read than are shown.
            source = "file_name CROSS JOIN file_entry AS entry ON entry.id = file_name.rowid";
            values.push_back(names.expression);
            condition += " AND file_name MATCH ?" + std::to_string(values.size() + 2);
            order = "file_name.rowid";
        }
        for (const std::string& pattern : names.patterns)
            condition += " AND " + likeCondition(pattern, values);
    } else {
        const std::string isExact = "(length(entry.name) <= length(?3) OR substr(entry.name, length(?3) + 1, 1) IN "
                                    "('_', '.'))";
        condition = begins + " AND " + (group == NameGroup::Exact ? isExact : "NOT " + isExact);
    }
    const std::size_t before = hits.size();
    const Outcome<Done> read = readRows(index, source, condition + " ORDER BY " + order, values, skip, most, hits);
    if (!read)
        return read.error();
    if (hits.size() > before || skip == 0)
        return skip + static_cast<std::int64_t>(hits.size() - before);
    return countRows(index, source, condition, values);
}

} // namespace

std::string addressBelow(std::string_view base, std::string_view path)
{
    return withReplaced(std::string(base) + encodePath(path), "class", "cl%61ss");
}

std::string fileNameText(std::string_view name)
{
    // The program takes a page with these two words for one without results.
    std::string text = withReplaced(escapeText(name), "not found", "not&#32;found");
    // "<b> " marks a file's size.
    if (!text.empty() && text.front() == ' ')
        text.replace(0, 1, "&#32;");
    return text;
}

std::string fileResultsPage(const FileAnswer& answer, std::string_view typed, Language language)
{
    std::string page = filePageHead(language);
    if (answer.hits.empty()) {
        // The program looks for the first words, so they stay English.
        page.append("<div>Sorry, not found: ");
        page.append(translated("no file or directory has this in its name.", language));
        return page + "</div>\n</body></html>\n";
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
        link(std::max<std::int64_t>(0, answer.start - FileService::kPageSize), translated("Previous", language));
    if (answer.more)
        link(answer.start + FileService::kPageSize, translated("Next", language));
    page += "</div>\n</body></html>\n";
    return page;
}

HttpResponse FileService::answer(const HttpRequest& request)
{
    const Language language = request.language;
    std::string_view path = request.path;
    while (path.substr(0, 2) == "//")
        path.remove_prefix(1);
    if (path == "/") {
        std::string page = filePageHead(language);
        page.append("<div>").append(translated("Searches the names of files on the mirrors of this machine's packages, "
                                               "in the packages, and on servers that were crawled.",
                                               language));
        return pageResponse(page + "</div>\n</body></html>\n", language);
    }
    if (path == "/cgi-bin/s")
        return searchPage(request.query, language);
    return errorResponse(404, "There is no such page on the file search.", language);
}

HttpResponse FileService::searchPage(std::string_view query, Language language)
{
    const Asked asked = readQuery(query);
    const std::string typed = decodeQueryValue(asked.typed);
    const Outcome<FileAnswer> found = search(typed, asked.start);
    if (!found)
        return errorResponse(503, "The search cannot answer: %1.", language, found.error().message);
    std::string content = fileResultsPage(*found, typed, language);
    if (found->hits.empty())
        noteMissing(content, index_, Missing::Programs, language);
    return pageResponse(std::move(content), language);
}

Outcome<FileAnswer> FileService::search(std::string_view typed, std::int64_t start)
{
    Outcome<IndexPool::Lease> index = index_.borrow();
    if (!index)
        return index.error();
    if (isAddress(typed))
        return listDirectory(**index, typed, start);
    const NameQuery names = nameQuery(typed);
    if (names.empty())
        return FileAnswer{start, {}};
    return findNames(**index, names, start);
}

/// The groups are read one after the other, so that a search with many matches sorts only the few in the first ones; in
/// each, crawled servers and mirrors, which have the files themselves, come before the files in packages.
Outcome<FileAnswer> FileService::findNames(Database& index, const NameQuery& names, std::int64_t start)
{
    // One row more than the page holds shows whether there is another page.
    constexpr std::size_t kMost = kPageSize + 1;
    FileAnswer answer;
    answer.start = start;
    std::int64_t skip = start;
    for (const NameGroup group : {NameGroup::Exact, NameGroup::Beginning, NameGroup::Rest}) {
        for (const auto find : {findEntries, findListedFiles}) {
            const Outcome<std::int64_t> passed = find(index, names, group, skip, kMost, answer.hits);
            if (!passed)
                return passed.error();
            if (answer.hits.size() == kMost) {
                answer.more = true;
                answer.hits.pop_back();
                return answer;
            }
            skip = std::max<std::int64_t>(0, skip - *passed);
        }
    }
    return answer;
}

Outcome<FileAnswer> FileService::listDirectory(Database& index, std::string_view address, std::int64_t start)
{
    FileAnswer answer;
    answer.start = start;
    // One site may lie below another.
    Outcome<Statement> sites = index.prepare("SELECT id, base FROM file_site ORDER BY length(base) DESC, id");
    if (!sites)
        return sites.error();
    Statement::Step step = sites->step();
    for (; step == Statement::Step::Row && answer.hits.empty(); step = sites->step()) {
        const std::string_view base = sites->text(1);
        if (address.substr(0, base.size()) != base)
            continue;
        const std::string path(address.substr(base.size()));
        const Outcome<Done> read =
            readRows(index, "file_entry AS entry",
                     "folder.id = (SELECT id FROM file_folder WHERE path = ?3 AND site = CAST(?4 AS INTEGER) LIMIT 1) "
                     "ORDER BY entry.id",
                     {path, std::to_string(sites->number(0))}, start, kPageSize + 1, answer.hits);
        if (!read)
            return read.error();
        answer.more = answer.hits.size() > kPageSize;
        answer.hits.resize(std::min<std::size_t>(answer.hits.size(), kPageSize));
    }
    if (step == Statement::Step::Failed)
        return sites->failure();
    return answer;
}

} // namespace quarrynet::services

#include <chrono>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "crawl/crawl.h"
#include "crawl/ftp_listing.h"
#include "crawl/http_listing.h"
#include "crawl/plan.h"
#include "crawl/robots.h"
#include "ground/percent_coding.h"
#include "ground/utf8.h"
#include "http/message.h"
#include "index/package_names.h"
#include "index/query.h"
#include "searches/DownloadService.h"
#include "searches/FileService.h"
#include "searches/ImageService.h"
#include "searches/WebService.h"
#include "searches/search_page.h"
#include "sources/SoftwareCatalog.h"
#include "sources/package_lists.h"
#include "tests/cost/step_counter.h"
#include "text/html_document.h"
#include "text/languages.h"
#include "text/markup.h"
#include "thumbnails/picture_format.h"

/// Compares the cost of the services' readers and page makers for inputs of single and double length.
using namespace quarrynet::cost;
using namespace quarrynet;
using namespace quarrynet::services;

namespace {

constexpr std::size_t kShort = kLength / 4; // for tests of many inputs

using Make = std::function<std::string(std::size_t)>;

/// Returns a function that makes a text of `head` and repeated `pattern`.
Make behind(std::string head, std::string pattern)
{
    return [head = std::move(head), pattern = std::move(pattern)](std::size_t length) {
        return head + filled(pattern, length);
    };
}

template <typename Call>
void expectProportionalPatterns(const std::string& what, const std::vector<std::string>& patterns, Call call,
                                std::size_t length = kShort, const std::string& head = {})
{
    for (const std::string& pattern : patterns)
        expectProportionalText(what + ", " + pattern, behind(head, pattern), call, length);
}

const std::string kNul(1, '\0');

} // namespace

TEST(ServicesCost, HtmlPages)
{
    const std::vector<std::string> patterns = {
        "x",          "word ",      "<",          ">",          "<p>text</p>",
        "<!--",       "-->",        "<!--->",     "<script>",   "</script>",
        "<style>",    "</scrip",    "<title>",    "</title",    "<title>a",
        "&",          "&amp;",      "&amp",       "&#",         "&#x41;",
        "&#99999999", "&#;",        "<a b='",     "<a b=\"",    "<a b=c ",
        "<a ",        "</",         "<!",         "<?",         " ",
        "\n",         "\xc3\xa9",   "\xff",       "\xf0\x9f",   kNul,
        "<![CDATA[",  "]]>",        "<pre>",      "<textarea>", "<br/>",
        "<svg>",      "\"",         "'",          "<div><div>", "<p",
        "</p",        "<noscript>", "<template>", "<!DOCTYPE",  "<meta charset=latin1>",
    };
    for (const std::size_t bound : {std::size_t{4096}, std::numeric_limits<std::size_t>::max()}) {
        const auto read = [bound](const std::string& page) { readHtml(page, bound); };
        for (const std::string head : {"", "<script>", "<!--", "<title>", "<style>", "<a b=\"", "<body>", "<textarea>"})
            expectProportionalPatterns("HTML, " + head, patterns, read, kShort, head);
    }
}

TEST(ServicesCost, SoftwareCatalogs)
{
    const std::vector<std::string> patterns = {"---\n",  "---\nPackage: a\nName:\n  C: b\n",
                                               "a: b\n", "- a\n",
                                               "[",      "{",
                                               "- ",     "? ",
                                               "&a ",    "*a\n",
                                               "x",      "\n",
                                               "'",      "[[]],",
                                               "\xff",   kNul};
    for (const std::size_t piece : {1U, 4096U}) {
        const auto read = [piece](const std::string& text) {
            CatalogReader reader([](const CatalogEntry&) {});
            for (std::size_t at = 0; at < text.size(); at += piece)
                reader.feed(std::string_view(text).substr(at, piece));
            reader.finish();
        };
        const std::string what = "catalogs in pieces of " + std::to_string(piece);
        for (const std::string head : {"", "---\nPackage: a\nX: [", "---\nPackage: a\nKeywords:\n  C:\n"})
            expectProportionalPatterns(what, patterns, read, kShort, head);
    }
}

TEST(ServicesCost, PackageStanzas)
{
    const auto read = [](std::size_t piece) {
        return [piece](const std::string& text) {
            std::size_t count = 0;
            StanzaReader reader([&](const Package&) { ++count; });
            for (std::size_t at = 0; at < text.size(); at += piece)
                reader.feed(std::string_view(text).substr(at, piece));
            reader.finish();
        };
    };
    const std::vector<std::string> patterns = {
        "Package: a\nDescription: b\n c\n .\n d\nFilename: pool/a.deb\nSize: 1\n\n",
        "Package: a\n",
        "x",
        "\n",
        "\r\n",
        ":",
        " ",
        " continued\n",
        "Description: a\n",
        "Package: a\n\n",
        "\xff",
        kNul,
        "A:\n",
        "Homepage: http://h/\n",
    };
    for (const std::size_t piece : {1U, 7U, 4096U, 1048576U}) {
        const std::string what = "stanzas in pieces of " + std::to_string(piece);
        expectProportionalPatterns(what, patterns, read(piece));
        expectProportionalPatterns(what + " of one description", {" continued\n", " .\n", "x", " \xff\n"}, read(piece),
                                   kShort, "Package: a\nDescription: ");
    }
    expectProportionalPatterns("repositories", {"http://h/\t/file\n", "\t", "\n", "x", "ftp://u:p@h/\t/f\n", "@"},
                               [](const std::string& text) { repositoriesFrom(text); });
    // Each line has a repository of its own.
    expectProportional("many repositories", [](std::size_t length) {
        std::string text;
        for (std::size_t i = 0; text.size() < length; ++i)
            text += "http://h" + std::to_string(i) + "/\t/file\n";
        return stepsOf([&] { repositoriesFrom(text); });
    });
}

TEST(ServicesCost, DirectoryListings)
{
    expectProportionalPatterns("MLSD",
                               {"type=file;size=12;unique=ab; name\r\n", "type=dir; d\r\n", ";", "=", " ", "x", "\n",
                                "\r", "a=b;", "type=", kNul, "\xff", "type=file; \r\n", "size=9;"},
                               [](const std::string& text) { readMlsd(text); });
    expectProportionalPatterns("LIST",
                               {"-rw-r--r-- 1 u g 12 Jan  1 2020 name\r\n", "drwxr-xr-x 1 u g 12 Jan  1 12:00 d\r\n",
                                "lrwxrwxrwx 1 u g 12 Jan  1 2020 a -> b\r\n", "01-01-20  12:00PM  <DIR> d\r\n",
                                "01-01-20  12:00PM  12 f\r\n", " ", "x", "\n", "-> ", "l", "- ", kNul, "\xff", "1 "},
                               [](const std::string& text) { readList(text); });
    // Each entry has a different name.
    expectProportional("MLSD of different names", [](std::size_t length) {
        std::string text;
        for (std::size_t i = 0; text.size() < length; ++i)
            text += "type=file;size=1; " + std::to_string(i) + "\r\n";
        return stepsOf([&] { readMlsd(text); });
    });
}

TEST(ServicesCost, DirectoryPages)
{
    constexpr std::string_view kAddress = "http://h.example/pub/";
    expectProportionalPatterns(
        "directory page",
        {"<a href=x>x</a> 02-Jan-2026 03:04 5\n", "<tr><td><a href=y>y</a></td><td>5</td></tr>", "<a href=", "<a>",
         "text ", "<td>", "</a>", kNul, "\xff", "03:04 ", "<h1>"},
        [](const std::string& text) { readHttpListing("<title>Index of /</title>" + text, kAddress); });
    expectProportionalPatterns("link", {"x", "/", "./", "%2F", "%61", "//", "?", "#", ":", " ", "\xff"},
                               [](const std::string& text) { nameOfLink(text, kAddress); });
    expectProportional("page of different names", [](std::size_t length) {
        std::string text = "<title>Index of /</title>";
        for (std::size_t i = 0; text.size() < length; ++i)
            text.append("<a href=").append(std::to_string(i)).append(">x</a> 02-Jan-2026 03:04 5\n");
        return stepsOf([&] { readHttpListing(text, kAddress); });
    });
}

TEST(ServicesCost, Robots)
{
    expectProportionalPatterns("robots.txt",
                               {"User-agent: *\nDisallow: /x\n", "Disallow: /x*y$\n", "User-agent: *\n", "#", ":", "\n",
                                "x", "*", " ", kNul, "\xff"},
                               [](const std::string& text) {
                                   const RobotsRules rules("User-agent: *\n" + text, "product");
                                   rules.allows("/x/y/z");
                               });
    for (const std::string pattern : {"x", "x/", "xy", "%2f"}) {
        expectProportionalText(
            "path of " + pattern, [&](std::size_t length) { return "/" + filled(pattern, length); },
            [](const std::string& path) {
                RobotsRules("User-agent: *\nDisallow: *xx*x*x*xz*y$\nDisallow: /*%2F*$\n", "product").allows(path);
            });
    }
}

TEST(ServicesCost, CrawlRecords)
{
    expectProportionalPatterns("records", {"ftp://h/\t1\t1\t1\n", "\t", "\n", "x", "9", kNul},
                               [](const std::string& text) { readCrawlRecords(text); });
}

TEST(ServicesCost, Crawls)
{
    using Kind = ListedEntry::Kind;
    const auto entryOf = [](const std::string& what, std::size_t i) {
        const std::string name = std::to_string(i);
        if (what == "files")
            return ListedEntry{name, Kind::File, 1};
        if (what == "one file")
            return ListedEntry{"name", Kind::File, 1};
        if (what == "links to the next")
            return ListedEntry{name, Kind::Link, std::nullopt, {}, std::to_string(i + 1)};
        if (what == "links to one")
            return ListedEntry{name, Kind::Link, std::nullopt, {}, "../0"};
        if (what == "known directories")
            return ListedEntry{name, Kind::Directory, std::nullopt, "same"};
        return ListedEntry{name, Kind::Directory, std::nullopt, name};
    };
    for (const std::string what :
         {"files", "one file", "links to the next", "links to one", "known directories", "directories"}) {
        expectProportional(
            "crawl of " + what,
            [&](std::size_t count) {
                ListedDirectory first;
                for (std::size_t i = 0; i < count; ++i)
                    first.entries.push_back(entryOf(what, i));
                CrawlTools tools;
                tools.list = [&first](std::string_view path) -> Outcome<ListedDirectory> {
                    if (path.empty())
                        return first;
                    ListedDirectory other;
                    other.entries.push_back({"file"});
                    return other;
                };
                tools.now = [] { return std::chrono::steady_clock::time_point(); };
                tools.wait = [](std::chrono::steady_clock::duration) {};
                tools.progress = [](const std::string&) {};
                return stepsOf([&] { static_cast<void>(crawl("", {}, tools)); });
            },
            kShort / 8);
    }
}

TEST(ServicesCost, QueryExpressions)
{
    const std::vector<std::string> patterns = {
        "x",  " ",  "word ", "\"",      "\" ",  "-",        "-a ", "\"a b\" ", "\"a", "-\"", "\xff", "\xc3\xa9 ",
        kNul, "a ", "ab ",   "doc abc", "AND ", "NEAR(a b", "* ",  "'",        "%",   "_",   "\\",   "abc ",
    };
    expectProportionalPatterns("words", patterns, [](const std::string& typed) { wordExpression(typed); });
    expectProportionalPatterns("ranked words", patterns, [](const std::string& typed) { wordQuery(typed, "name"); });
    expectProportionalPatterns("names", patterns, [](const std::string& typed) { nameQuery(typed); });
}

TEST(ServicesCost, RequestsInPiecesOfEverySize)
{
    const auto read = [](std::size_t piece) {
        return [piece](const std::string& text) {
            RequestReader reader;
            for (std::size_t at = 0; at < text.size(); at += piece) {
                if (!std::holds_alternative<HeadIncomplete>(reader.take(std::string_view(text).substr(at, piece))))
                    break;
            }
        };
    };
    // Both lengths are below the bounds of a line and of a head.
    constexpr std::size_t kLine = 7 * 1024;
    constexpr std::size_t kFields = 30 * 1024;
    for (const std::size_t piece : {1U, 2U, 16U, 1460U, 65536U}) {
        const std::string what = "request in pieces of " + std::to_string(piece);
        expectProportionalPatterns(what + ", target", {"x", "\t", "%20", "?", "#", "/", "&", "+", "\xff"}, read(piece),
                                   kLine, "GET /");
        expectProportionalPatterns(what + ", method", {"G", " ", "\r\n"}, read(piece), kLine);
        expectProportionalPatterns(what + ", fields", {"A: b\r\n", "A:\r\n b\r\n", " ", "\r", "x", "A: ", ":"},
                                   read(piece), kFields, "GET / HTTP/1.1\r\nHost: h\r\nX: ");
        expectProportionalPatterns(what + ", host", {"x", "@", ":", "[", "."}, read(piece), kFields,
                                   "GET http://h/ HTTP/1.1\r\nHost: ");
    }
    // Input beyond the bounds costs nothing more.
    for (const std::size_t piece : {1U, 1460U}) {
        expectProportionalPatterns("endless request", {"x", "GET ", "A: b\r\n", "\r\n"}, read(piece));
        expectProportionalPatterns("endless head", {"x", "A: b\r\n", " "}, read(piece), kShort,
                                   "GET / HTTP/1.1\r\nHost: h\r\nX: ");
    }
    expectProportionalPatterns(
        "wanted languages", {"de,", "x,", ",", ";", "q=", " ", "-", "de;q=0.5,", "\xff"},
        [](const std::string& text) { preferredLanguage(text); }, kMaxAcceptLanguage / 2);
    expectProportionalPatterns("authority", {"x", "@", ":", "[", "]"},
                               [](const std::string& text) { hostOfAuthority(text); });
}

TEST(ServicesCost, TextsIntoAndOutOfPages)
{
    const std::vector<std::string> patterns = {"x",    "<",   "&",    "&amp;", "&#",        "&a",        "\"",
                                               "%",    "%41", "%4",   "+",     "=",         "not found", "class",
                                               "\xff", " ",   "\x01", "\n",    "\x01x\x02", "\xc3\xa9",  kNul};
    using Text = std::string (*)(std::string_view);
    const std::vector<std::pair<std::string, Text>> functions = {
        {"escapeText", escapeText},         {"escapeAttribute", escapeAttribute},
        {"escapeMatches", escapeMatches},   {"tidyAddress", tidyAddress},
        {"encodePath", encodePath},         {"encodeComponent", encodeComponent},
        {"decodePercent", decodePercent},   {"decodeQueryValue", decodeQueryValue},
        {"collapseBlanks", collapseBlanks}, {"toUtf8", toUtf8},
        {"fileNameText", fileNameText},
    };
    for (const auto& [name, function] : functions) {
        expectProportionalPatterns(name, patterns, [function = function](const std::string& text) { function(text); });
    }
    expectProportionalPatterns("addressBelow", {"x", "class", "clas", "/", "%", "\xff"},
                               [](const std::string& text) { addressBelow("http://m.example/", text); });
    expectProportionalPatterns("clipUtf8", {"x", "\xc3\xa9", "\x80"}, [](const std::string& text) {
        clipUtf8(text, text.size() - 1);
        isUtf8(text);
    });
    expectProportionalPatterns("typed part", {"x", "&", "q=", "&start=", "start=1&", "&q"},
                               [](const std::string& text) {
                                   typedPart(text);
                                   startPart(text);
                               });
    expectProportionalPatterns("isNamedIn", {"x", "-", "python", "1", "/", "3."}, [](const std::string& text) {
        isNamedIn(text, "https://python.org/");
        isNamedIn("python3", text);
        isNamedIn(text.substr(text.size() / 2), text);
        companionBase(text);
    });
    expectProportionalPatterns("pictureFormat",
                               {"<svg", "<!--", "<!-- -->", "<?xml ?>", "<", " ", "<!DOCTYPE svg [", "x", kNul, "]>"},
                               [](const std::string& text) { pictureFormat(text); });
    expectProportionalPatterns(
        "pictureFormat of XML", {"<svg", "<!--", "<!-- -->", "<?xml ?>", "<", " ", "<!DOCTYPE svg [", "x", kNul, "]>"},
        [](const std::string& text) { pictureFormat(text); }, kShort, "<?xml version='1.0'?>");
}

namespace {

constexpr std::size_t kRow = 32; // bytes of a row's texts, so that `length` is the same measure everywhere

template <typename Answer, typename Hit, typename PageMaker>
void expectProportionalPages(const std::string& what, const Hit& hit, PageMaker make,
                             const std::function<Hit(const std::string&)>& hitOf)
{
    expectProportional(what + " of many rows", [&](std::size_t length) {
        Answer answer;
        answer.hits.assign(length / kRow, hit);
        return stepsOf([&] { make(answer, "word", Language::English); });
    });
    for (const std::string pattern :
         {"x", "<", "&", "\"", "class", "\x01x\x02", "\xff", "main loop", "<b>", "=", "+", "not found"}) {
        expectProportional(
            what + " of one long row, " + pattern,
            [&](std::size_t length) {
                Answer answer;
                answer.hits.assign(1, hitOf(filled(pattern, length)));
                return stepsOf([&] { make(answer, "word", Language::English); });
            },
            kShort);
        expectProportional(
            what + " of a long text that was typed, " + pattern,
            [&](std::size_t length) {
                Answer answer;
                answer.hits.assign(25, hit);
                const std::string typed = filled(pattern, length);
                return stepsOf([&] { make(answer, typed, Language::English); });
            },
            kShort);
    }
}

} // namespace

TEST(ServicesCost, PagesOfResults)
{
    expectProportionalPages<WebAnswer, WebHit>("web page", {"http://a.example/", "title", "description"},
                                               webResultsPage, [](const std::string& text) {
                                                   return WebHit{text, text, text};
                                               });
    expectProportionalPages<ImageAnswer, ImageHit>("image page",
                                                   {"a.example/p.jpg", "/images?q=tbn:1:a.example/p.jpg", "p.jpg"},
                                                   imageResultsPage, [](const std::string& text) {
                                                       return ImageHit{text, text, text};
                                                   });
    expectProportionalPages<ProgramAnswer, ProgramHit>(
        "download page", {"name", "description", "system", 1, "free", "http://m.example/a.deb"}, downloadResultsPage,
        [](const std::string& text) { return ProgramHit{text, text, text, 1, text, text}; });
    expectProportionalPages<FileAnswer, FileHit>("file page",
                                                 {"name", "ftp://h.example/name", "ftp://h.example/", 1, false},
                                                 fileResultsPage, [](const std::string& text) {
                                                     return FileHit{text, text, text, 1, false};
                                                 });
    expectProportionalPatterns("page of a download", {"x", "\"", "<", "\\", ";", "\xff"},
                               [](const std::string& address) { downloadPage(address); });
    expectProportionalPatterns("page of an error", {"x", "<", "&"},
                               [](const std::string& text) { responseBytes(errorResponse(400, text), false); });
}

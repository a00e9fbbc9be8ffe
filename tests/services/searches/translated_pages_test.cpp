#include <gtest/gtest.h>

#include "http/Router.h"
#include "http/message.h"
#include "live/source_fault.h"
#include "search/web/results.h"
#include "searches/DownloadService.h"
#include "searches/FileService.h"
#include "searches/WebService.h"
#include "tests/services/support/service_support.h"
#include "text/languages.h"

/// The services' own texts in the language that a browser asks for. The window asks for none, and its markers are in
/// pages of every language.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

Language german()
{
    return preferredLanguage("de");
}

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

HttpRequest requestOf(std::string_view fields)
{
    const HeadState state = RequestReader().take("GET / HTTP/1.1\r\nHost: h\r\n" + std::string(fields) + "\r\n");
    EXPECT_TRUE(std::holds_alternative<HttpRequest>(state)) << fields;
    return std::get<HttpRequest>(state);
}

/// Returns the page without everything that a parser of the window does not read: the whole page from `begin` on.
std::string_view from(std::string_view page, std::string_view begin)
{
    const std::size_t at = page.find(begin);
    EXPECT_NE(at, std::string_view::npos) << begin;
    return page.substr(at);
}

} // namespace

TEST(TranslatedPages, ARequestSaysItsLanguage)
{
    EXPECT_EQ(requestOf("").language, Language::English);
    EXPECT_EQ(requestOf("Accept-Language: de-DE,de;q=0.9,en;q=0.8\r\n").language, german());
    EXPECT_EQ(requestOf("ACCEPT-LANGUAGE: en\r\n").language, Language::English);
    // Several fields are one list.
    EXPECT_EQ(requestOf("Accept-Language: en;q=0.1\r\nAccept-Language: de\r\n").language, german());
    EXPECT_EQ(requestOf("Accept-Language: " + std::string(20000, 'x') + "\r\n").language, Language::English);
}

TEST(TranslatedPages, ErrorsAreInTheLanguageOfTheRequest)
{
    const Router router;
    HttpRequest request = requestOf("Accept-Language: de\r\n");
    request.absoluteForm = true;
    const HttpResponse response = router.answerAsProxy(request);
    EXPECT_EQ(response.status, 403);
    EXPECT_TRUE(contains(response.body, "<html lang=\"de\">"));
    EXPECT_TRUE(contains(response.body, "Dieser Proxy f\xc3\xbchrt nur zu den lokalen Suchdiensten, nicht zu h."));
    request.language = Language::English;
    EXPECT_TRUE(
        contains(router.answerAsProxy(request).body, "This proxy serves the local search services only, not h."));
}

TEST(TranslatedPages, TheHeadNamesTheLanguageAndWhatItDependsOn)
{
    const std::string english = responseHead(pageResponse("a", Language::English));
    EXPECT_TRUE(contains(english, "\r\nContent-Language: en\r\n"));
    EXPECT_TRUE(contains(english, "\r\nVary: Accept-Language\r\n"));
    const std::string translatedHead = responseHead(errorResponse(404, "There is no such document.", german()));
    EXPECT_TRUE(contains(translatedHead, "\r\nContent-Language: de\r\n"));
    EXPECT_TRUE(contains(translatedHead, "\r\nVary: Accept-Language\r\n"));
    HttpResponse picture;
    picture.contentType = "image/png";
    EXPECT_FALSE(contains(responseHead(picture), "Vary"));
    EXPECT_FALSE(contains(responseHead(picture), "Content-Language"));
}

TEST(TranslatedPages, TextFromOutsideIsEscapedInEveryLanguage)
{
    for (const Language language : {Language::English, german()}) {
        const std::string body = errorResponse(421, "The local search services do not serve %1.", language, "<b>").body;
        EXPECT_TRUE(contains(body, "&lt;b>")) << body;
        EXPECT_FALSE(contains(body, "<b>")) << body;
    }
}

TEST(TranslatedPages, HelpPagesAreTranslated)
{
    HttpRequest request = requestOf("Accept-Language: de\r\n");
    request.path = "/help/source-timeout";
    request.query = "source=https%3A%2F%2Fs.example%2F%3Cb%3E";
    const HttpResponse response = helpPage(request);
    EXPECT_EQ(response.status, 200);
    EXPECT_TRUE(contains(response.body, "<html lang=\"de\">"));
    EXPECT_TRUE(contains(response.body, "Eine Quelle hat nicht geantwortet"));
    EXPECT_TRUE(contains(response.body, "https://s.example/&lt;b>: keine rechtzeitige Antwort."));
    EXPECT_EQ(response.language, german());
}

TEST(TranslatedPages, WebResultsAreReadBackFromEveryLanguage)
{
    WebAnswer answer;
    answer.total = 95;
    answer.start = 30;
    answer.hits.push_back({"http://a.example/", "A title", "A description"});
    const std::string english = webResultsPage(answer, "words");
    const std::string page = webResultsPage(answer, "words", german());
    EXPECT_TRUE(contains(page, "value=\"Suchen\""));
    EXPECT_TRUE(contains(page, ">Weiter</a>"));
    EXPECT_TRUE(contains(page, ">Zur\xc3\xbc"
                               "ck</a>"));
    const WebResults read = parseWebResults(page);
    const WebResults wanted = parseWebResults(english);
    EXPECT_EQ(read.lists.addresses, wanted.lists.addresses);
    EXPECT_EQ(read.countCaption, wanted.countCaption);
    // Between the heading and the links, the pages are the same byte for byte.
    const std::string_view rows = from(english, "<div>Results");
    EXPECT_TRUE(contains(page, rows.substr(0, rows.rfind("<div>"))));
    EXPECT_TRUE(
        contains(webResultsPage({}, "words", german()), "Zu diesen W\xc3\xb6rtern wurde keine Seite gefunden."));
}

TEST(TranslatedPages, FilesThatAreNotThereAreKnownInEveryLanguage)
{
    const std::string page = fileResultsPage({}, "words", german());
    EXPECT_TRUE(contains(page, "not found"));
    EXPECT_TRUE(contains(page, "keine Datei und kein Ordner hat dies im Namen."));
}

TEST(TranslatedPages, EnglishPagesHaveTheirOldBytes)
{
    EXPECT_EQ(webResultsPage({}, "a"),
              "<!DOCTYPE html>\n<html lang=\"en\">\n<head><meta charset=\"utf-8\"><title>Web search</title>\n"
              "<style>:root { color-scheme: light dark } body { font-family: sans-serif; margin: 2em; max-width: 60em "
              "} p { margin: 1em 0 } "
              ".address { color: #060 } "
              "@media (prefers-color-scheme: dark) { .address { color: #8c8 } }</style>\n</head>\n<body>\n<form "
              "action=\"/search\"><div>"
              "<input name=\"q\" size=\"50\" value=\"a\"> <input type=\"submit\" value=\"Search\"></div></form>\n"
              "<div>No page was found for these words.</div>\n</body></html>\n");
    EXPECT_EQ(fileResultsPage({}, "a"),
              "<!DOCTYPE html>\n<html lang=\"en\">\n<head><meta charset=\"utf-8\"><title>File search</title>\n"
              "<style>:root { color-scheme: light dark } body { font-family: sans-serif; margin: 2em "
              "}</style>\n</head>\n<body>\n"
              "<form action=\"/cgi-bin/s\"><div><input type=\"hidden\" name=\"t\" value=\"f\">"
              "<input name=\"q\" size=\"50\">\n<input type=\"submit\" value=\"Search\"></div></form>\n"
              "<div>Sorry, not found: no file or directory has this in its name.</div>\n</body></html>\n");
    EXPECT_EQ(downloadPage("http://a.example/b"),
              "<!DOCTYPE html>\n<html lang=\"en\">\n<head><meta charset=\"utf-8\"><title>Download search</title>\n"
              "<style>:root { color-scheme: light dark } body { font-family: sans-serif; margin: 2em; max-width: 60em "
              "} .program { margin: 1em 0 }"
              "</style>\n</head>\n<body>\n<script>newlocation = \"http%3A%2F%2Fa.example%2Fb#\"; "
              "location.replace(newlocation.replace(/%3A/g, \":\").replace(/%2F/g, \"/\"));</script>\n"
              "<div><a href=\"http://a.example/b\">Download</a></div>\n</body></html>\n");
}

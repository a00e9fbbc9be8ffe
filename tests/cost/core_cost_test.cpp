#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "common/FetchSession.h"
#include "common/SearchHistory.h"
#include "common/address_check.h"
#include "common/letter_case.h"
#include "common/numbers.h"
#include "common/profile_text.h"
#include "common/raster_head.h"
#include "common/request_text.h"
#include "common/response_end.h"
#include "common/text_utilities.h"
#include "ground/utf8.h"
#include "search/download/redirect.h"
#include "search/image/gallery.h"
#include "search/page/keywords.h"
#include "search/page/presence.h"
#include "search/page/reduction/reduction.h"
#include "tests/core/page_samples.h"
#include "tests/cost/step_counter.h"

/// Compares the cost of the core, parsers excluded, for inputs of single and double length.
using namespace quarrynet;
using namespace quarrynet::cost;
using quarrynet::samples::repeated;

namespace {

using Texts = std::vector<std::pair<std::string, std::function<std::string(std::size_t)>>>;

/// Returns for each pattern a function that makes a text of it, named by the pattern.
Texts patterns(const std::vector<std::string>& all)
{
    Texts texts;
    for (const std::string& pattern : all)
        texts.emplace_back(pattern, [pattern](std::size_t length) { return filled(pattern, length); });
    return texts;
}

template <typename Call>
void expectProportionalTexts(const std::string& what, const Texts& texts, Call call, std::size_t length = kLength)
{
    for (const auto& [name, make] : texts)
        expectProportionalText(what + ", " + name, make, call, length);
}

Texts pages()
{
    Texts texts = patterns({"x", "<", ">", "<>", "><", "<b>", "\"", "<a href=\"x\">y</a> ", "<<b>", "<b>>", "<a<b>>",
                            "<<>>", "<<<>>>", "caf\xc3\xa9 ", "\xff", std::string(1, '\0'), "1 << 2 >> 3 "});
    texts.emplace_back("one nest", [](std::size_t length) {
        return "x<>" + std::string(length / 2, '<') + std::string(length / 2, '>') + "y";
    });
    texts.emplace_back("a nest of two tags", [](std::size_t length) {
        return "x<b>" + repeated("<a<b>", length / 6) + std::string(length / 6, '>');
    });
    texts.emplace_back("openings without an end",
                       [](std::size_t length) { return "x" + std::string(length, '<') + "a"; });
    texts.emplace_back("a tag of half the page", [](std::size_t length) {
        return "<" + std::string(length / 2, 'x') + ">" + filled("<b>", length / 2);
    });
    texts.emplace_back("all tags different", [](std::size_t length) {
        std::string text;
        for (std::size_t i = 0; text.size() < length; ++i)
            text += "<" + std::to_string(i) + ">x";
        return text;
    });
    texts.emplace_back("nests of every depth, and one that arrived later", [](std::size_t length) {
        std::string text = "x";
        std::size_t depth = 1;
        for (; text.size() < length / 2; ++depth)
            text += std::string(depth, '<') + ">";
        return text + "<z><<z>" + std::string(length / 4, '<') + "<z>" + std::string(length / 4, '>') + "y";
    });
    return texts;
}

/// Returns for each format a function that makes a picture of a given length, in bytes.
Texts pictures()
{
    const auto after = [](std::string head, std::string pattern) {
        return [head = std::move(head), pattern = std::move(pattern)](std::size_t length) {
            return head + filled(pattern, length);
        };
    };
    using namespace std::string_literals;
    return {
        {"PNG", after("\x89PNG\r\n\x1a\n"s, "\0\0\0\0tEXt\0\0\0\0"s)},
        {"JPEG of empty segments", after("\xff\xd8"s, "\xff\xe0\0\x02"s)},
        {"JPEG of fill bytes", after("\xff\xd8"s, "\xff"s)},
        {"JPEG of zeros",
         after("\xff\xd8\xff\xc0\0\x11\x08\0\x10\0\x10\x03\x01\x22\0\x02\x11\x01\x03\x11\x01\xff\xda\0\x02"s, "\0"s)},
        {"JPEG of restarts",
         after("\xff\xd8\xff\xc0\0\x11\x08\0\x10\0\x10\x03\x01\x22\0\x02\x11\x01\x03\x11\x01\xff\xda\0\x02"s,
               "\xff\xd0"s)},
        {"GIF", after("GIF89a\x10\0\x10\0\0\0\0"s, "!\xfe\0"s)},
        {"WebP", after("RIFF\xff\xff\xff\x7fWEBP"s, "VP8X\0\0\0\0"s)},
    };
}

} // namespace

TEST(CoreCost, PageReduction)
{
    expectProportionalTexts("reduction", pages(), [](const std::string& page) { reducedPage(page); });
}

TEST(CoreCost, PresenceInAPage)
{
    for (int mode = 0; mode <= 2; ++mode) {
        for (const std::string_view typed : {"apple pear", "x", "<b>", "ab", "\xc3\xa9", "a a a a"}) {
            const std::vector<std::string> entries = keywordEntries(typed);
            expectProportionalTexts(
                "presence in mode " + std::to_string(mode) + " of " + std::string(typed), pages(),
                [&](const std::string& page) { presenceRows(page, entries, typed, mode); }, kLength / 4);
        }
    }
}

TEST(CoreCost, PresenceOfManyAndOfLongKeywords)
{
    const auto makeSearch = [](int mode) {
        return [mode](const std::string& typed) {
            const std::string page = filled("a", typed.size()) + "b";
            presenceRows(page, keywordEntries(typed), typed, mode);
        };
    };
    Texts typed = patterns({"a ", "ab ", "aaaaaaaab ", " ", "\xc3\xa9 ", "a"});
    typed.emplace_back("a long one", [](std::size_t length) { return std::string(length / 2, 'a') + "b"; });
    typed.emplace_back("all different", [](std::size_t length) {
        std::string text;
        for (std::size_t i = 0; text.size() < length; ++i)
            text += std::to_string(i) + " ";
        return text;
    });
    typed.emplace_back("each longer than the one before", [](std::size_t length) {
        std::string text;
        for (std::size_t i = 1; text.size() < length; ++i)
            text += std::string(i, 'a') + "b ";
        return text;
    });
    typed.emplace_back("ends of one another", [](std::size_t length) {
        std::string text;
        for (std::size_t i = 1; text.size() < length; ++i)
            text += std::string(i, 'a') + " ";
        return text;
    });
    for (int mode = 0; mode <= 2; ++mode)
        expectProportionalTexts("keywords in mode " + std::to_string(mode), typed, makeSearch(mode), kLength / 4);
    expectProportionalTexts("cutting of keywords", typed, [](const std::string& text) { keywordEntries(text); });
}

TEST(CoreCost, ReplacementsThatTheProgramMakes)
{
    using namespace std::string_literals;
    for (const auto& [sought, replacement] :
         {std::pair("<b>"s, ""s), std::pair("</b>"s, ""s), std::pair("%3A"s, ":"s), std::pair("%2F"s, "/"s),
          std::pair("  "s, " "s), std::pair("\"\""s, "\""s)}) {
        Texts texts = patterns({"x", sought, sought.substr(0, 1), sought + "x", "x" + sought + sought});
        texts.emplace_back("one in another", [&](std::size_t length) {
            return repeated(sought.substr(0, 1), length / 2) + repeated(sought.substr(1), length / 2);
        });
        texts.emplace_back("halves around it", [&](std::size_t length) {
            const std::size_t half = (sought.size() + 1) / 2;
            return filled(sought.substr(0, half), length / 2) + sought + filled(sought.substr(half), length / 2);
        });
        expectProportionalTexts("\"" + sought + "\" by \"" + replacement + "\"", texts,
                                [&](const std::string& text) { FindReplace(text, sought, replacement); });
        expectProportionalTexts("first \"" + sought + "\" by \"" + replacement + "\"", texts,
                                [&](const std::string& text) { ReplaceFirstInstance(text, sought, replacement); });
    }
}

TEST(CoreCost, SearchingLongTextsInTexts)
{
    expectProportionalText(
        "a long text in a text", [](std::size_t length) { return std::string(length, 'a'); },
        [](const std::string& text) { containsText(text, text.substr(text.size() / 2) + "b"); });
}

TEST(CoreCost, RedirectPathsAndLinkRequests)
{
    expectProportionalTexts("link request", patterns({"x", "\r", "\n", "\r\nx", "%2F"}),
                            [](const std::string& path) { linkRequest(path, "d.example", Route::Direct); });
    Texts links = patterns({"x", "%2F", "%2", "r", "redi", "redir", "redi%2F", "redi%2Fr"});
    links.emplace_back("one word", [](std::size_t length) { return "/redir?x=%2F" + std::string(length, 'x'); });
    links.emplace_back("many words and a short tail",
                       [](std::size_t length) { return filled("redir", length) + "%2Fx"; });
    links.emplace_back("many words and a long tail", [](std::size_t length) {
        return filled("redir", length / 2) + "%2F" + std::string(length / 2, 'x');
    });
    // The tail replaces every word in a path, so the path may be many times as long as the link, up to its bound.
    for (const auto& [name, make] : links) {
        expectProportional(
            "redirect path, " + name,
            [&make = make](std::size_t length) {
                const std::string link = make(length);
                std::size_t made = 0;
                const std::uint64_t steps = stepsOf([&] {
                    if (const Result<std::string> path = redirectPath(link))
                        made = path->size();
                });
                return Cost(steps, link.size() + made);
            },
            16 * 1024);
    }
}

TEST(CoreCost, GalleryPages)
{
    expectProportional("gallery of many pictures", [](std::size_t length) {
        const std::vector<std::string> addresses(length / 32, "host.example/a.jpg");
        const std::vector<std::string> thumbnails(length / 32, "http://engine.example/a");
        return stepsOf([&] { galleryPage(addresses, thumbnails); });
    });
    expectProportional("gallery of a long address", [](std::size_t length) {
        return stepsOf([&] { galleryPage({std::string(length, '"')}, {std::string(length, '<')}); });
    });
}

TEST(CoreCost, SettingsFiles)
{
    Texts files = patterns({"x", "[", "[s]\n", "key=value\n", "=", "\n", "\r\n", " ", ";", ";comment\n", "\"", "[s\n",
                            std::string(1, '\0'), "[other]\nkey=\"value\"\n"});
    files.emplace_back("one section", [](std::size_t length) { return "[s]\n" + filled("k=v\n", length); });
    files.emplace_back("one section of blank lines",
                       [](std::size_t length) { return "[s]\n" + filled(" \t\n", length); });
    files.emplace_back("one long value", [](std::size_t length) { return "[s]\nkey=" + std::string(length, 'x'); });
    files.emplace_back("one long quoted value",
                       [](std::size_t length) { return "[s]\nkey=" + std::string(length, '"'); });
    files.emplace_back("one long key", [](std::size_t length) { return "[s]\n" + std::string(length, 'k') + "=v"; });
    files.emplace_back("many sections, then the one",
                       [](std::size_t length) { return filled("[t]\nkey=v\n", length) + "[s]\nkey=v\n"; });
    expectProportionalTexts("value", files, [](const std::string& text) { profileValue(text, "s", "key"); });
    expectProportionalTexts("entries", files, [](const std::string& text) { profileEntries(text, "s"); });
    expectProportionalTexts("sections", files, [](const std::string& text) { profileSectionNames(text); });
    expectProportionalTexts("written value", files,
                            [](const std::string& text) { withProfileValue(text, "s", "key", "other"); });
    expectProportionalTexts("written section", files, [](const std::string& text) {
        withProfileEntries(text, "s", {{"key", "value"}, {"other", "value"}});
    });
    expectProportional("many written entries", [](std::size_t length) {
        const std::vector<std::pair<std::string, std::string>> entries(length / 16, {"key", "value"});
        const std::string text = "[s]\n" + filled("k=v\n", length);
        return stepsOf([&] { withProfileEntries(text, "s", entries); });
    });
    expectProportional("packed list", [](std::size_t length) {
        const std::vector<std::string> items(length / 16, "key=value");
        return stepsOf([&] { packProfileList(items, 2 * length); });
    });
}

TEST(CoreCost, SearchHistories)
{
    Texts files = patterns({"keywords\tapple\n", "keywords\t\n", "\n", "\t\n", "file\t://:\n", "address\thttp://a:@\n",
                            "keywords\t\xff\n", "keywords\t" + std::string(SearchHistory::kMaxEntryBytes, 'x') + "\n",
                            "keywords\t" + filled("://:", SearchHistory::kMaxEntryBytes) + "\n"});
    files.emplace_back("no lines", [](std::size_t length) { return std::string(length, 'x'); });
    files.emplace_back("different entries", [](std::size_t length) {
        std::string text;
        for (int i = 0; text.size() < length; ++i)
            text += "keywords\tword " + std::to_string(i % 99) + "\n";
        return text;
    });
    expectProportionalTexts("reading a history", files,
                            [](const std::string& text) { return SearchHistory::fromText(text).text().size(); });
}

TEST(CoreCost, Addresses)
{
    // Addresses longer than 64 KB are rejected.
    for (const std::string scheme : {"http://h/", "http://", "mailto:", "mailto:a@b?", "ftp://u@", ""}) {
        expectProportionalTexts(
            "address " + scheme,
            patterns({"x", "%", "%4", " ", "\"", "@", ":", "&attach=x", "&", "[", "/", "\xff", "a.", "=", "?", "#"}),
            [&](const std::string& text) { openableAddress(scheme + text); }, 8 * 1024);
        expectProportionalTexts("refused address " + scheme, patterns({"x", "%", " ", "@", "&attach=x", "\xff"}),
                                [&](const std::string& text) { openableAddress(scheme + text); });
    }
}

TEST(CoreCost, LettersNumbersAndRequests)
{
    const Texts texts = patterns({"A", " ", "\xc3\x84", "\xc3", "\xff", "\xf0\x9f\x98\x80", "\xf0\x9f", "1", "1,", "+",
                                  "0", ".", "-", std::string(1, '\0')});
    expectProportionalTexts("lower case", texts, [](const std::string& text) { lowerCase(text); });
    expectProportionalTexts("letter boundaries", texts, [](const std::string& text) {
        for (std::size_t at = 0; at < text.size(); at += 16)
            letterBoundary(text, at);
    });
    expectProportionalTexts("leading number", texts, [](const std::string& text) { leadingNumber(text); });
    expectProportionalTexts("strict number", texts,
                            [](const std::string& text) { static_cast<void>(strictNumber(text)); });
    expectProportionalTexts("query", texts, [](const std::string& text) { encodeQuery(text); });
    expectProportionalTexts("UTF-8", texts, [](const std::string& text) {
        std::string out;
        for (std::size_t at = 0; at < text.size();) {
            const auto character = utf8Character(std::string_view(text).substr(at));
            appendUtf8(out, character ? character->number : U'?');
            at += character ? character->length : 1;
        }
    });
}

TEST(CoreCost, HeadsOfPictures)
{
    expectProportionalTexts("picture", pictures(), [](const std::string& bytes) { readRasterHead(bytes); });
}

TEST(CoreCost, EndsOfResponses)
{
    Texts responses;
    for (const std::string& pattern :
         {std::string("HTTP/1.1 100 \r\n\r\n"), std::string("\r\n"), std::string("\r\n\r")})
        responses.emplace_back(pattern, [pattern](std::size_t length) { return filled(pattern, length); });
    const std::string head = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n";
    for (const std::string& pattern : {std::string("Content-Length: 1\r\n"), std::string(":\r\n"),
                                       std::string("\r\n1\r\nx"), std::string("\r\n1"), std::string("\r\n0\r\nA: b")})
        responses.emplace_back("head and " + pattern,
                               [=](std::size_t length) { return head + filled(pattern, length) + "\r\n\r\n"; });
    expectProportionalTexts("end of a response", responses,
                            [](const std::string& response) { isCompleteResponse(response); });
}

namespace {

class PieceSocket final : public ClientSocket
{
public:
    void Close() override {}
    void Connect(std::string_view, int) override {}
    void ConnectTls(std::string_view, int) override {}
    void SendData(std::string_view) override {}
    void GetData(std::string& text) override { text += piece; }
    SocketState State() const override { return SocketState::Connected; }

    std::string_view piece;
};

class SilentTab final : public FetchTab
{
public:
    std::optional<std::string> requestText() override { return std::nullopt; }
    void showConnection(std::string_view) override {}
    void showActivity(std::string_view) override {}
    void enableStartButton() override {}
    void setTimerEnabled(bool) override {}
    void handOver(const std::string& body) override { received = body.size(); }
    void reportError(int, std::string_view) override {}

    std::size_t received = 0;
};

} // namespace

TEST(CoreCost, ExchangesInPiecesOfEverySize)
{
    const std::string head = "HTTP/1.1 200 OK\r\n";
    for (const std::size_t piece : {1U, 2U, 3U, 7U, 64U, 1460U, 16384U}) {
        for (const auto& [name, make] : Texts{
                 {"an honest response", [&](std::size_t length) { return head + "\r\n" + std::string(length, 'x'); }},
                 {"a head without an end", [&](std::size_t length) { return head + filled("A: b\r\n", length); }},
                 {"line ends that are none", [&](std::size_t length) { return head + filled("\r\n\r", length); }},
                 {"a long head", [&](std::size_t length) { return head + filled("A: b\r\n", length) + "\r\nx"; }},
                 {"many empty lines", [&](std::size_t length) { return head + filled("\r\n", length); }},
             }) {
            expectProportionalText(name + " in pieces of " + std::to_string(piece), make,
                                   [&](const std::string& response) {
                                       ReceiveState shared;
                                       PieceSocket socket;
                                       SilentTab tab;
                                       FetchSession session({}, socket, tab, shared);
                                       session.start({"h", 80});
                                       for (std::size_t at = 0; at < response.size(); at += piece) {
                                           socket.piece = std::string_view(response).substr(at, piece);
                                           session.dataArrived();
                                       }
                                       session.closed();
                                       ASSERT_GT(tab.received, 0U);
                                   });
        }
    }
}

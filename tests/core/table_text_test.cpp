#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/table_text.h"

using namespace quarrynet;

namespace {

Table table(std::vector<std::vector<std::string>> rows)
{
    return {"Files", {"Name", "Size"}, std::move(rows), std::nullopt};
}

std::string inQuotes(const std::string& text)
{
    return std::string(1, '"').append(text).append(1, '"');
}

std::string csvOf(const std::string& cell)
{
    const std::string text = csvText({"", {"A"}, {{cell}}, std::nullopt});
    const std::string header = "\"A\"\r\n";
    EXPECT_TRUE(text.starts_with(header) && text.ends_with("\r\n"));
    return text.substr(header.size(), text.size() - header.size() - 2);
}

/// Reads comma-separated values strictly as RFC 4180 defines them. Returns nothing if they are anything else.
std::optional<std::vector<std::vector<std::string>>> readCsv(const std::string& text)
{
    std::vector<std::vector<std::string>> lines(1);
    for (std::size_t i = 0; i < text.size();) {
        if (text[i++] != '"')
            return std::nullopt;
        std::string field;
        while (true) {
            if (i >= text.size())
                return std::nullopt;
            if (text[i] == '"') {
                ++i;
                if (i >= text.size() || text[i] != '"')
                    break;
            }
            field += text[i++];
        }
        lines.back().push_back(field);
        if (i < text.size() && text[i] == ',') {
            ++i;
        } else if (text.compare(i, 2, "\r\n") == 0) {
            i += 2;
            lines.emplace_back();
        } else {
            return std::nullopt;
        }
    }
    lines.pop_back();
    return lines;
}

} // namespace

TEST(CsvText, HeaderAndRows)
{
    EXPECT_EQ(csvText(table({})), "\"Name\",\"Size\"\r\n");
    EXPECT_EQ(csvText(table({{"a", "1"}, {"b"}, {}})),
              "\"Name\",\"Size\"\r\n\"a\",\"1\"\r\n\"b\",\"\"\r\n\"\",\"\"\r\n");
}

TEST(CsvText, EveryTextReadsBackAsItWas)
{
    const std::vector<std::vector<std::string>> rows = {{"a,b", "say \"hi\""},
                                                        {"\"", ",\r\n,"},
                                                        {" blanks ", ""},
                                                        {"caf\xc3\xa9", std::string("n\0l", 3)},
                                                        {"a;b", "1-2"}};
    const auto read = readCsv(csvText(table(rows)));
    ASSERT_TRUE(read);
    EXPECT_EQ(std::vector(read->begin() + 1, read->end()), rows);
}

TEST(CsvText, SurplusCellsOfARowAreLeftOut)
{
    EXPECT_EQ(csvText({"", {"A"}, {{"1", "2"}}, std::nullopt}), "\"A\"\r\n\"1\"\r\n");
}

TEST(CsvText, NoCellBeginsAFormula)
{
    for (const char* formula : {"=1+1", "+1", "-1", "@SUM(A1)", "\t=1", "\r=1",
                                "\xEF\xBC\x9D"
                                "1",
                                "\xEF\xBC\x8B"
                                "1",
                                "\xEF\xBC\x8D"
                                "1",
                                "\xEF\xBC\xA0"
                                "1"})
        EXPECT_EQ(csvOf(formula), inQuotes(std::string(1, '\'').append(formula)));
    EXPECT_EQ(csvOf("  =1"), "\"'  =1\"");
    EXPECT_EQ(csvOf("\"=1"), "\"'\"\"=1\"");
    EXPECT_EQ(csvOf("-"), "\"'-\"");
}

TEST(CsvText, NoPartBehindASemicolonBeginsAFormula)
{
    EXPECT_EQ(csvOf("a;=1"), "\"a;'=1\"");
    EXPECT_EQ(csvOf("a; \"=1;b;-"), "\"a;' \"\"=1;b;'-\"");
    EXPECT_EQ(csvOf(";;+"), "\";;'+\"");
    EXPECT_EQ(csvOf("a;"), "\"a;\"");
}

TEST(CsvText, OtherTextsStayAsTheyAre)
{
    for (const char* text : {"", "a=b", "1-2", "mail@host", "'quoted'", "a; b", "x\ty",
                             "\xe2\x88\x92"
                             "1"})
        EXPECT_EQ(csvOf(text), inQuotes(text));
}

TEST(CsvText, BrokenBytesBecomeReplacementCharacters)
{
    EXPECT_EQ(csvOf("a\xff\xc3"), "\"a\xef\xbf\xbd\xef\xbf\xbd\"");
    // A broken byte in front does not hide a formula, nor does an overlong form make one.
    EXPECT_EQ(csvOf("\xc0\xbd"), "\"\xef\xbf\xbd\xef\xbf\xbd\"");
}

TEST(JsonText, TitleAndRows)
{
    EXPECT_EQ(jsonText(table({})), "{\n\"title\": \"Files\",\n\"rows\": [\n]\n}\n");
    EXPECT_EQ(jsonText(table({{"a", "1"}, {"b"}})), "{\n\"title\": \"Files\",\n\"rows\": [\n"
                                                    "{\"Name\": \"a\", \"Size\": \"1\"},\n"
                                                    "{\"Name\": \"b\", \"Size\": \"\"}\n]\n}\n");
}

TEST(JsonText, EscapesWhatATextMayNotHold)
{
    const std::string json = jsonText({"t\"\\", {"A"}, {{std::string("\0\x1f\n\x7f", 4)}, {"\xff"}}, std::nullopt});
    EXPECT_EQ(json, "{\n\"title\": \"t\\\"\\\\\",\n\"rows\": [\n{\"A\": \"\\u0000\\u001f\\u000a\x7f\"},\n"
                    "{\"A\": \"\xef\xbf\xbd\"}\n]\n}\n");
}

TEST(HtmlTable, EscapesEveryText)
{
    const std::string html = htmlTable(table({{"<script>alert('&amp;\")</script>", std::string("a\0\x1b", 3)}}));
    EXPECT_NE(html.find("&lt;script&gt;alert(&#39;&amp;amp;&quot;)&lt;/script&gt;"), std::string::npos);
    EXPECT_EQ(html.find("<script"), std::string::npos);
    EXPECT_NE(html.find("<td dir=\"auto\">a  </td>"), std::string::npos);
}

TEST(HtmlTable, LinksOnlyAddressesThatMayBeOpened)
{
    const auto cellOf = [](const std::string& address, const std::vector<bool>& openable = {true}) {
        const std::string html = htmlTable({"", {"A"}, {{address}}, 0, openable});
        const std::size_t start = html.find("<td");
        return html.substr(start, html.find("</td>") - start);
    };
    EXPECT_EQ(cellOf("http://host/a\"b&c"),
              "<td dir=\"auto\"><a rel=\"noreferrer\" href=\"http://host/a%22b&amp;c\">http://host/a&quot;b&amp;c</a>");
    for (const char* address : {"javascript:alert(1)", "file:///etc/passwd", "data:text/html,x", "//host/", "x", ""})
        EXPECT_EQ(cellOf(address).find("<a"), std::string::npos) << address;
    for (const std::vector<bool>& openable : {std::vector<bool>(), std::vector<bool>{false}})
        EXPECT_EQ(cellOf("http://host/", openable), "<td dir=\"auto\">http://host/");
}

TEST(HtmlTable, FormulasAreTexts)
{
    const std::string html = htmlTable({"", {"A", "B", "C"}, {{"=1+1", " @x", "a=b"}}, std::nullopt});
    EXPECT_NE(html.find(">&#39;=1+1<"), std::string::npos) << html;
    EXPECT_NE(html.find(">&#39; @x<"), std::string::npos) << html;
    EXPECT_NE(html.find(">a=b<"), std::string::npos) << html;
    EXPECT_EQ(harmlessCell("=1+1"), "'=1+1");
    EXPECT_EQ(harmlessCell("a=b"), "a=b");
    EXPECT_EQ(harmlessCell(""), "");
}

TEST(HtmlPage, IsCompleteAndLoadsNothing)
{
    const std::string html = htmlPage({"</title><b>", {"A"}, {{"x"}}, std::nullopt});
    EXPECT_TRUE(html.starts_with("<!DOCTYPE html>\n"));
    EXPECT_NE(html.find("default-src 'none'"), std::string::npos);
    EXPECT_NE(html.find("<title>&lt;/title&gt;&lt;b&gt;</title>"), std::string::npos);
    EXPECT_TRUE(html.ends_with("</body>\n</html>\n"));
}

TEST(SuggestedFileName, JoinsWordsTabAndDate)
{
    EXPECT_EQ(suggestedFileName("apple pie", "Search", "2026-01-31"), "apple pie - Search - 2026-01-31");
    EXPECT_EQ(suggestedFileName("", "Search", "2026-01-31"), "Search - 2026-01-31");
    EXPECT_EQ(suggestedFileName("  a  b ", "S", "d"), "a b - S - d");
}

TEST(SuggestedFileName, HasNoCharacterThatASystemReserves)
{
    EXPECT_EQ(suggestedFileName("a/b\\c:d*e?f\"g<h>i|j\n\x01k", "S", "d"), "a b c d e f g h i j k - S - d");
    EXPECT_EQ(suggestedFileName("../..", "S", "d"), "S - d");
    EXPECT_EQ(suggestedFileName(".hidden.", "S", "d"), "hidden - S - d");
    EXPECT_EQ(suggestedFileName("*?", "S", "d"), "S - d");
    EXPECT_EQ(suggestedFileName("\xff", "", "d"), "\xef\xbf\xbd - d");
}

TEST(SuggestedFileName, IsNoDeviceOfWindows)
{
    for (const char* name : {"con", "NUL", "Com1", "lpt9", "aux.txt", "con .txt", "COM\xc2\xb2", "CONIN$"})
        EXPECT_EQ(suggestedFileName(name, "", ""), std::string(1, '_').append(name));
    EXPECT_EQ(suggestedFileName("con", "S", "d"), "con - S - d");
    EXPECT_EQ(suggestedFileName("com", "", ""), "com");
    EXPECT_EQ(suggestedFileName("com10", "", ""), "com10");
}

TEST(SuggestedFileName, IsShortAndCutBetweenCharacters)
{
    std::string words;
    for (int i = 0; i < 1000; ++i)
        words += "\xc3\xa9";
    const std::string name = suggestedFileName(words, words, "2026-01-31");
    EXPECT_LE(name.size(), 200U);
    EXPECT_EQ(name, words.substr(0, 90) + " - " + words.substr(0, 90) + " - 2026-01-31");
    EXPECT_LE(suggestedFileName(std::string(1'000'000, '.'), words, words).size(), 200U);
}

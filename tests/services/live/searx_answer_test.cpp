#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ground/utf8.h"
#include "live/searx_answer.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;
using ::testing::HasSubstr;

namespace {

Outcome<SearxAnswer> read(std::string_view json, SearxCategory category = SearxCategory::General)
{
    return readSearxAnswer(ExactCopy(json).view(), category);
}

std::string withRows(const std::string& rows)
{
    std::string json = R"({"query": "q", "results": [)";
    return json.append(rows).append("]}");
}

std::string rowTo(const std::string& address)
{
    std::string json = R"({"title": "t", "url": ")";
    return json.append(address).append("\"}");
}

/// Returns the address of the only row, or an empty text when it was dropped.
std::string addressOf(const std::string& address)
{
    const Outcome<SearxAnswer> answer = read(withRows(rowTo(address)));
    EXPECT_TRUE(answer) << address;
    return answer && answer->rows.size() == 1 ? answer->rows[0].address : "";
}

} // namespace

TEST(SearxAnswer, ReadsRowsOfBothShapes)
{
    // An older instance counts the results, wrongly; a newer one does not.
    for (const char* count : {R"("number_of_results": 0, )", ""}) {
        std::string json = "{\"query\": \"q\", ";
        json.append(count).append(R"("results": [
            {"url": "https://a.example/x y", "title": "A <b>title</b> & more", "content": "A\n text", "engine": "e",
             "parsed_url": ["https", "a.example", "/", "", "", ""], "positions": [1], "score": 1.0,
             "metadata": {"url": "https://wrong.example", "title": "wrong"}, "publishedDate": null},
            {"url": "http://b.example", "title": "B"}],
            "answers": [], "infoboxes": [{"url": "https://box.example", "results": [{"url": "https://box.example"}]}],
            "unresponsive_engines": [["one", "timeout"], ["two", "access denied"]]})");
        const Outcome<SearxAnswer> answer = read(json);
        ASSERT_TRUE(answer);
        ASSERT_EQ(answer->rows.size(), 2U);
        EXPECT_EQ(answer->listed, 2U);
        EXPECT_EQ(answer->rows[0].address, "https://a.example/x%20y");
        EXPECT_EQ(answer->rows[0].title, "A <b>title</b> & more");
        EXPECT_EQ(answer->rows[0].text, "A text");
        EXPECT_EQ(answer->rows[1].address, "http://b.example");
        ASSERT_EQ(answer->silent.size(), 2U);
        EXPECT_EQ(answer->silent[1], std::make_pair(std::string("two"), std::string("access denied")));
    }
}

TEST(SearxAnswer, ReadsPictures)
{
    const Outcome<SearxAnswer> answer =
        read(withRows(R"({"url": "https://p.example", "img_src": "https://p.example/1.jpg", "title": "1",
                          "thumbnail_src": "//t.example/1.png", "resolution": "1 x 1", "template": "images.html"},
                         {"url": "https://p.example", "img_src": "data:image/png;base64,AAAA"},
                         {"url": "https://p.example", "thumbnail_src": "https://t.example/3.png"})"),
             SearxCategory::Images);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->listed, 3U);
    ASSERT_EQ(answer->rows.size(), 1U);
    EXPECT_EQ(answer->rows[0].address, "https://p.example/1.jpg");
    EXPECT_EQ(answer->rows[0].thumbnail, "https://t.example/1.png");
    EXPECT_EQ(answer->rows[0].text, "1 x 1");
}

TEST(SearxAnswer, OnlyASizeIsTheTextOfAPicture)
{
    const auto textOf = [](const std::string& fields) {
        const Outcome<SearxAnswer> answer =
            read(withRows(R"({"img_src": "https://p.example/1.jpg", )" + fields + "}"), SearxCategory::Images);
        return answer && answer->rows.size() == 1 ? answer->rows[0].text : "no row";
    };
    for (const char* size : {"640 x 480", "640x480", "640 \xC3\x97 480", " 640  x480 ", R"(640\u00d7480)"})
        EXPECT_EQ(textOf(std::string(R"("resolution": ")").append(size).append("\"")), "640 x 480") << size;
    for (const char* other : {"", "640", "x 480", "640 x", "640 x 480 <b>", "0 x 480", "640 x 0", "123456 x 1",
                              "-1 x 1", "<script>", R"(640\u0000x 480)", "640 x 480 x 3"})
        EXPECT_EQ(textOf(std::string(R"("resolution": ")").append(other).append("\"")), "") << other;
    EXPECT_EQ(textOf(R"("resolution": 640)"), "");
    EXPECT_EQ(textOf(R"("resolution": null, "content": "640 x 480")"), "");
}

TEST(SearxAnswer, RowsOfWrongTypesAndWithoutAddressesAreDropped)
{
    const Outcome<SearxAnswer> answer = read(withRows(
        R"(1, "https://text.example", null, [{"url": "https://nested.example"}], {}, {"url": 3}, {"url": null},
           {"url": ["https://list.example"]}, {"url": {"url": "https://object.example"}}, {"title": "no address"},
           {"url": "https://good.example", "title": 5, "content": [1, 2]})"));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->listed, 11U);
    ASSERT_EQ(answer->rows.size(), 1U);
    EXPECT_EQ(answer->rows[0].address, "https://good.example");
    EXPECT_EQ(answer->rows[0].title, "");
}

TEST(SearxAnswer, OnlyOpenableAddressesAreKept)
{
    EXPECT_EQ(addressOf("HTTPS://A.example/Path?q=1#f"), "https://A.example/Path?q=1#f");
    EXPECT_EQ(addressOf("http://a.example/\\\"<>'"), "http://a.example/%22%3C%3E%27");
    EXPECT_EQ(addressOf("http://\xC3\xA4.example/"), "http://%C3%A4.example/");
    for (const char* address :
         {"", "a.example", "ftp://a.example/", "javascript:alert(1)", "javascript://a.example/%0Aalert(1)", "http://",
          "http:///path", "http://?q", "http://#f", "http://a.example/\\r\\nX: y", "http://a.example/\\u0000",
          "http://a.example/\\t", "http://a.example/\\u007f", "file:///etc/passwd", "data:text/html,x", "/path",
          "ht\\ntp://a.example"})
        EXPECT_EQ(addressOf(address), "") << address;
    const std::string host = "http://a.example/";
    EXPECT_EQ(addressOf(host + std::string(kMaxRowAddress - host.size(), 'x')).size(), kMaxRowAddress);
    EXPECT_EQ(addressOf(host + std::string(kMaxRowAddress - host.size() + 1, 'x')), "");
    EXPECT_EQ(addressOf(host + std::string(kMaxRowAddress - host.size(), ' ')), "") << "too long once it is escaped";
    EXPECT_EQ(addressOf(host + std::string(1'000'000, 'x')), "");
}

TEST(SearxAnswer, LongTextsAreCutAtCharacters)
{
    std::string umlauts = "x";
    for (int i = 0; i < 100'000; ++i)
        umlauts += "\xC3\xA4";
    std::string row = R"({"url": "http://a.example", "title": ")";
    row.append(umlauts).append(R"(", "content": ")").append(umlauts).append("\"}");
    const Outcome<SearxAnswer> answer = read(withRows(row));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->rows[0].title.size(), kMaxRowTitle - 1);
    EXPECT_EQ(answer->rows[0].text.size(), kMaxRowText - 1);
    EXPECT_TRUE(isUtf8(answer->rows[0].title));
}

TEST(SearxAnswer, LoneSurrogatesAndBrokenBytesLoseNoRow)
{
    const std::string mark = "\xEF\xBF\xBD";
    const Outcome<SearxAnswer> answer =
        read(withRows("{\"url\": \"http://a.example\", \"title\": \"\\ud83d\\ude00 \\ud800 \\udc00x \\ud800\\ud800 "
                      "\xFF \\\\ud800 \\u0000\\u0001 \\uD83D\"}, {\"url\": \"http://b.example/\\udfff\"}"));
    ASSERT_TRUE(answer) << answer.error().message;
    ASSERT_EQ(answer->rows.size(), 2U);
    EXPECT_EQ(answer->rows[0].title,
              "\xF0\x9F\x98\x80 " + mark + " " + mark + "x " + mark + mark + " " + mark + " \\ud800 " + mark);
    EXPECT_EQ(answer->rows[1].address, "http://b.example/%EF%BF%BD");
}

TEST(SearxAnswer, WhatIsNoAnswerFails)
{
    for (const char* text :
         {"", " ", "null", "[]", "1", "\"results\"", "{}", R"({"results": {}})", R"({"results": 1})",
          "<!DOCTYPE html><html></html>", "{\"results\": []", "{\"results\": [}", "{\"results\": []} x",
          R"([{"results": []}])", R"({"results": [1e]})", R"({"results": [01]})", R"({"results": [1e9.9]})",
          "{\"results\": [\"\\x\"]}", "{\"results\": [\"\\"})
        EXPECT_FALSE(read(text)) << text;
    EXPECT_FALSE(read(std::string("{\"results\": [], \"a\": \"\0\"}", 25)));
    EXPECT_TRUE(read("\xEF\xBB\xBF{\"results\": []}"));
}

TEST(SearxAnswer, NumbersOutOfRangeLoseNoRow)
{
    for (const std::string& number :
         {std::string("1e999"), std::string("-1E+99999"), std::string("1.5e-999999999999"), std::string(1000, '1'),
          std::string(400, '9').append(".5"), std::string("0.").append(5000, '7').append("e400")}) {
        std::string json = R"({"number_of_results": )";
        json.append(number).append(R"(, "results": [{"url": "http://a.example/1e999", "score": )").append(number);
        json.append(R"(, "title": "\\\"1e999 12345678901234567890"}]})");
        const Outcome<SearxAnswer> answer = read(json);
        ASSERT_TRUE(answer) << number << answer.error().message;
        ASSERT_EQ(answer->rows.size(), 1U) << number;
        EXPECT_EQ(answer->rows[0].address, "http://a.example/1e999");
        EXPECT_EQ(answer->rows[0].title, "\\\"1e999 12345678901234567890");
    }
}

TEST(SearxAnswer, AnAnswerCutAnywhereFails)
{
    const std::string whole =
        R"({"results": [{"url": "http://a.example", "title": "\ud83d\ude00"}], "unresponsive_engines": [["a", "b"]]})";
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(read(whole.substr(0, length))) << length;
    EXPECT_TRUE(read(whole));
}

TEST(SearxAnswer, DepthIsBounded)
{
    const auto nested = [](int depth) {
        const auto count = static_cast<std::size_t>(depth - 1);
        std::string json = R"({"results": [], "deep": )";
        return json.append(count, '[').append(count, ']').append("}");
    };
    EXPECT_TRUE(read(nested(kMaxSearxDepth)));
    const Outcome<SearxAnswer> deep = read(nested(kMaxSearxDepth + 1));
    ASSERT_FALSE(deep);
    EXPECT_THAT(deep.error().message, HasSubstr("nested deeper than 64"));
    EXPECT_FALSE(read(nested(1'000'000)));
    EXPECT_FALSE(read(std::string(1'000'000, '[')));
    std::string objects;
    for (int i = 0; i < 400'000; ++i)
        objects += "{\"a\":";
    EXPECT_FALSE(read(objects));
}

TEST(SearxAnswer, SizeAndRowsAreBounded)
{
    std::string json = R"({"results": []})";
    json.append(kMaxSearxAnswer - json.size(), ' ');
    EXPECT_TRUE(read(json));
    EXPECT_THAT(read(json + " ").error().message, HasSubstr("larger than 4 MB"));
    std::string rows = rowTo("http://a.example");
    for (std::size_t i = 0; i < kMostSearxRows; ++i)
        rows.append(",").append(rowTo("http://a.example"));
    const Outcome<SearxAnswer> answer = read(withRows(rows));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->listed, kMostSearxRows + 1);
    EXPECT_EQ(answer->rows.size(), kMostSearxRows);
}

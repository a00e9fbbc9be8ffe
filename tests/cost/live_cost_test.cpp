#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "config/services_file.h"
#include "live/searx_answer.h"
#include "tests/cost/step_counter.h"

/// Compares the cost of reading what live sources answer, for inputs of single and double length.
using namespace quarrynet::cost;
using namespace quarrynet;
using namespace quarrynet::services;

TEST(LiveCost, SearxAnswers)
{
    const auto read = [](const std::string& json) {
        readSearxAnswer(json, SearxCategory::General);
        readSearxAnswer(json, SearxCategory::Images);
    };
    const std::vector<std::string> patterns = {"x",
                                               " ",
                                               "1",
                                               "\"",
                                               "\\",
                                               "[",
                                               "{",
                                               "]",
                                               "}",
                                               ",",
                                               ":",
                                               "\\u0000",
                                               "\\ud800",
                                               "\\ud83d\\ude00",
                                               "\\\\ud800",
                                               "\xff",
                                               "\xc3\xa9",
                                               "[],",
                                               "{},",
                                               "\"a\":",
                                               "{\"a\":",
                                               "\"a\",",
                                               "1,",
                                               "null,",
                                               "1e5,",
                                               "[\"a\",\"b\"],",
                                               "{\"url\":\"http://a.example/\",\"title\":\"t\",\"img_src\":\"//b\"},",
                                               "{\"url\":",
                                               "\n",
                                               std::string(1, '\0'),
                                               "\"title\":\"x\","};
    for (const std::string head :
         {"", "{\"results\":[", "{\"results\":[{\"url\":\"http://a", "{\"results\":[{\"title\":\"", "{\"a\":\"",
          "{\"results\":[{", "{\"unresponsive_engines\":[", "{\"unresponsive_engines\":[[", "{"}) {
        for (const std::string& pattern : patterns)
            expectProportionalText(
                "JSON, " + head + pattern, [&](std::size_t length) { return head + filled(pattern, length); }, read,
                kLength / 4);
    }
}

TEST(LiveCost, ConfigurationFiles)
{
    const auto read = [](const std::string& text) { (void)readServicesFile(text, "s.toml"); };
    for (const std::string head : {"", "[web]\nsources = [", "[web]\nlanguage = \"", "x = [", "x = {", "x = \"\"\""}) {
        for (const std::string pattern :
             {"x", " ", "\n", "#", "\"", "[", "{", "'", "\\", ".", "a.", "\"https://a.example\",", "\"index\",", "[],",
              "1,", "a = 1\n", "[[x]]\n", "\xff", "\xc3\xa9"})
            expectProportionalText(
                "TOML, " + head + pattern, [&](std::size_t length) { return head + filled(pattern, length); }, read,
                kLength / 8);
    }
}

#include <initializer_list>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "crawl/robots.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet::services;

namespace {

bool allows(std::string_view robots, std::string_view path)
{
    return RobotsRules(ExactCopy(robots).view(), "quarrynet-services").allows(path);
}

} // namespace

TEST(Robots, EverythingIsAllowedWithoutRules)
{
    EXPECT_TRUE(RobotsRules().allows("/a"));
    EXPECT_TRUE(allows("", "/a"));
    EXPECT_TRUE(allows("User-agent: *\nDisallow:\n", "/a"));
    EXPECT_TRUE(allows("Disallow: /\n", "/a")) << "a rule outside a group";
    EXPECT_TRUE(allows("User-agent: other\nDisallow: /\n", "/a"));
    EXPECT_TRUE(allows("<html><body>Not found: /</body></html>", "/a"));
}

TEST(Robots, LongestRuleDecides)
{
    const std::string robots = "User-agent: *\nDisallow: /pub\nAllow: /pub/open/\nDisallow: /pub/open/x\nAllow: /eq\n"
                               "Disallow: /eq\n";
    EXPECT_TRUE(allows(robots, "/"));
    EXPECT_FALSE(allows(robots, "/pub"));
    EXPECT_FALSE(allows(robots, "/public/"));
    EXPECT_TRUE(allows(robots, "/pub/open/a"));
    EXPECT_FALSE(allows(robots, "/pub/open/xyz"));
    EXPECT_TRUE(allows(robots, "/eq")) << "of equal rules the one that allows";
}

TEST(Robots, OwnGroupReplacesTheGeneralOne)
{
    const std::string robots = "user-AGENT: a\nUser-agent: Quarrynet-Services # me\nDISALLOW: /mine # a\r\n\r\n"
                               "User-agent: *\rDisallow: /\n\nUser-agent: quarrynet-services\nDisallow: /more\n";
    EXPECT_TRUE(allows(robots, "/a"));
    EXPECT_FALSE(allows(robots, "/mine"));
    EXPECT_FALSE(allows(robots, "/more"));
    EXPECT_TRUE(allows("User-agent: quarrynet-services\n\nUser-agent: *\nAllow: /\n\nUser-agent: *\nDisallow: /\n\n"
                       "User-agent: quarrynet-services\nAllow: /\n",
                       "/a"));
    EXPECT_TRUE(allows("User-agent: *\nDisallow: /\n\nUser-agent: quarrynet-services\nDisallow:\n", "/a"));
    EXPECT_FALSE(allows("\xEF\xBB\xBFUser-agent: *\nSitemap: x\nDisallow: /\n", "/a"));
}

TEST(Robots, StarsAndEndsMatch)
{
    const std::string robots = "User-agent: *\nDisallow: /*.zip$\nDisallow: /a*b*c\nDisallow: /end$\nDisallow: *tmp\n";
    EXPECT_FALSE(allows(robots, "/x/y.zip"));
    EXPECT_FALSE(allows(robots, "/y.zip.zip"));
    EXPECT_TRUE(allows(robots, "/y.zip/"));
    EXPECT_FALSE(allows(robots, "/a-b-c-d"));
    EXPECT_TRUE(allows(robots, "/a-c-b"));
    EXPECT_FALSE(allows(robots, "/end"));
    EXPECT_TRUE(allows(robots, "/end/"));
    EXPECT_FALSE(allows(robots, "/x/tmp/"));
    EXPECT_FALSE(allows("User-agent: *\nDisallow: /*ab$", "/ab"));
    EXPECT_TRUE(allows("User-agent: *\nDisallow: /ab*ab$", "/ab"));
    EXPECT_TRUE(allows("User-agent: *\nDisallow: $", "/"));
}

TEST(Robots, EscapesCompareWithPlainText)
{
    EXPECT_FALSE(allows("User-agent: *\nDisallow: /a b\xC3\xA9/", "/a%20b%C3%A9/"));
    EXPECT_FALSE(allows("User-agent: *\nDisallow: /a%20b/", "/a%20b/"));
    for (const auto& [rule, path] :
         std::initializer_list<std::pair<std::string, std::string>>{{"/%7Ejoe/", "/~joe/"},
                                                                    {"/~joe/", "/%7ejoe/"},
                                                                    {"/caf%c3%a9/", "/caf%C3%A9/"},
                                                                    {"/%70rivate/", "/private/"},
                                                                    {"/a(b)/", "/a%28b%29/"},
                                                                    {"/it's!&;/", "/it%27s%21%26%3b/"},
                                                                    {"/a%2fb", "/a%2Fb"},
                                                                    {"/a%", "/a%25"},
                                                                    {"/a%zz", "/a%25zz"},
                                                                    {"/a%2Ab", "/a*b"},
                                                                    {"/a%2ab$", "/a%2Ab"},
                                                                    {"/a%24", "/a$b"},
                                                                    {"/a$b", "/a%24b"},
                                                                    {"/a$$", "/a%24"}})
        EXPECT_FALSE(allows("User-agent: *\nDisallow: " + rule + "\n", path)) << rule;
}

TEST(Robots, EscapesThatMeanSomethingElseAreKept)
{
    for (const auto& [rule, path] :
         std::initializer_list<std::pair<std::string, std::string>>{{"/a%2Ab", "/axb"},
                                                                    {"/a%24", "/a"},
                                                                    {"/a%2Fb", "/a/b"},
                                                                    {"/a/b", "/a%2Fb"},
                                                                    {"/a?b", "/a%3Fb"},
                                                                    {"/%2570rivate/", "/private/"},
                                                                    {"/a$", "/a%24"},
                                                                    {"/a%00", "/a"}})
        EXPECT_TRUE(allows("User-agent: *\nDisallow: " + rule + "\n", path)) << rule;
}

TEST(Robots, LineThatTheBoundCutsIsIgnored)
{
    const std::string head = "User-agent: *\nDisallow: /\n#";
    const auto cutAfter = [&head](std::string_view rule, std::string_view rest) {
        return std::string(head).append(kMaxRobots - head.size() - rule.size(), 'x').append(rule).append(rest);
    };
    EXPECT_FALSE(allows(cutAfter("\nAllow: /", "open/\n"), "/a"));
    EXPECT_TRUE(allows(cutAfter("\nAllow: /a", "\n"), "/a")) << "a whole line";
    EXPECT_TRUE(allows(cutAfter("\nAllow: /a", ""), "/a")) << "a whole file";
    EXPECT_TRUE(allows("User-agent: *" + std::string(kMaxRobots, ' ') + "\nDisallow: /\n", "/a"));
}

TEST(Robots, HostileFileIsBounded)
{
    std::string many = "User-agent: *\n";
    for (std::size_t i = 0; i < kMaxRobotsRules; ++i)
        many += "Disallow: /x\n";
    EXPECT_TRUE(allows(many + "Disallow: /y\n", "/y"));
    EXPECT_FALSE(allows(many + "Disallow: /y\n", "/x"));
    const std::string head = "User-agent: *\nDisallow: ";
    EXPECT_FALSE(allows(head + "/" + std::string(kMaxRobotsRule - 2, 'a') + "*\n", "/" + std::string(2000, 'a')));
    EXPECT_TRUE(allows(head + "/" + std::string(kMaxRobotsRule - 1, 'a') + "*\n", "/" + std::string(2000, 'a')));
    EXPECT_FALSE(allows(head + "/" + std::string(kMaxRobotsStars, '*'), "/a"));
    EXPECT_TRUE(allows(head + "/" + std::string(kMaxRobotsStars + 1, '*'), "/a"));
    EXPECT_TRUE(allows("User-agent: *\n" + std::string(kMaxRobots, '#') + "\nDisallow: /\n", "/a"));
    EXPECT_TRUE(allows(std::string("User-agent: *\nDis\0allow: /\n", 27), "/a"));
}

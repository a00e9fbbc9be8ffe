#include <gumbo.h>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/services/support/service_support.h"
#include "text/HtmlTree.h"
#include "text/html_document.h"

using namespace quarrynet::services;

namespace {

std::string repeated(std::string_view text, std::size_t times)
{
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

/// Returns the depth of the deepest node.
std::size_t depthOf(const HtmlTree& tree)
{
    std::size_t deepest = 0;
    std::vector<std::pair<const GumboNode*, std::size_t>> open;
    if (tree.root() != nullptr)
        open.emplace_back(tree.root(), 1);
    while (!open.empty()) {
        const auto [node, depth] = open.back();
        open.pop_back();
        deepest = std::max(deepest, depth);
        if (node->type != GUMBO_NODE_ELEMENT && node->type != GUMBO_NODE_TEMPLATE)
            continue;
        const GumboVector& children = node->v.element.children;
        for (unsigned i = 0; i < children.length; ++i)
            open.emplace_back(static_cast<const GumboNode*>(children.data[i]), depth + 1);
    }
    return deepest;
}

HtmlLimits small()
{
    HtmlLimits limits;
    limits.depth = 10;
    limits.attributes = 3;
    return limits;
}

} // namespace

TEST(LengthWithinLimits, EndsWhereTagsGoTooDeep)
{
    EXPECT_EQ(lengthWithinLimits(repeated("<div>", 10), small()), 50U);
    EXPECT_EQ(lengthWithinLimits(repeated("<div>", 11), small()), 50U);
    EXPECT_EQ(lengthWithinLimits("", small()), 0U);
    EXPECT_EQ(lengthWithinLimits(repeated("<b>x", 100000), {}), 512U * 4);
}

TEST(LengthWithinLimits, EndsAtATagWithTooManyAttributes)
{
    EXPECT_EQ(lengthWithinLimits("<p a b=1 c='x y z'>", small()), 19U);
    EXPECT_EQ(lengthWithinLimits("one<p a b c d>", small()), 3U);
    EXPECT_EQ(lengthWithinLimits("<p a='1 2 3 4' b=\"<i a b c d>\">", small()), 31U);
    // The parser compares attributes of end tags too, although they are useless.
    EXPECT_EQ(lengthWithinLimits("one</p a b c>", small()), 13U);
    EXPECT_EQ(lengthWithinLimits("one</p a b c d>", small()), 3U);
}

TEST(LengthWithinLimits, EndsWithTheBytes)
{
    HtmlLimits limits;
    limits.bytes = 7;
    EXPECT_EQ(lengthWithinLimits("one two three", limits), 7U);
    EXPECT_EQ(lengthWithinLimits("<p><!--", limits), 7U);
}

TEST(LengthWithinLimits, LongPagesOfOrdinaryMarkupAreWhole)
{
    for (const char* part : {"<p>one",
                             "<div><span>one</span></div>",
                             "<ul><li>one<li>two</ul>",
                             "<br><img src=x><hr/>",
                             "<table><tr><td>one<td>two</table>",
                             "<dl><dt>a<dd>b</dl>",
                             "<a name=x>one",
                             "<div><span>one</div>",
                             "<!-- <div> -->",
                             "<script>if (a<b) x('<div>');</script>",
                             "<style>a>b{}</style>",
                             "<div title='</div>'></div>",
                             "<svg><path/><g><circle/></g></svg>",
                             "<DIV></div>",
                             "<b><i>x</b>",
                             "<textarea><div></textarea>",
                             "< div>",
                             "</div>",
                             "<!doctype html>",
                             "<select><option>a<option>b</select>",
                             "<!-->",
                             "<!---><!-- -- --!>"}) {
        const std::string page = repeated(part, 1000);
        EXPECT_EQ(lengthWithinLimits(ExactCopy(page).view(), small()), page.size()) << part;
    }
}

TEST(LengthWithinLimits, EndTagsThatEndNothingDoNotHelp)
{
    for (const char* part :
         {"<div></x>", "<div><object></div>", "<span><div></span>", "<div><!--</div>-->", "<div><x title='</div>'>",
          "<svg><td>", "<select></div><div>", "<optgroup>", "<rt>", "<x>", "<div><table></div>", "<svg><p/><g>"}) {
        const std::string page = repeated(part, 20000);
        const std::size_t length = lengthWithinLimits(page, {});
        EXPECT_LT(length, page.size()) << part;
        const HtmlTree tree(page);
        ASSERT_NE(tree.root(), nullptr) << part;
        EXPECT_LT(depthOf(tree), 2000U) << part;
    }
}

TEST(LengthWithinLimits, RandomTagsNeverMakeADeepTree)
{
    std::mt19937 random(3);
    const std::vector<std::string> names{"div", "p", "b", "span",   "table", "td",     "tr", "svg", "g",     "ul",
                                         "li",  "a", "i", "object", "form",  "select", "h1", "dl",  "title", "script"};
    for (int round = 0; round < 300; ++round) {
        std::string page;
        for (int i = 0; i < 600; ++i) {
            const std::string& name = names[random() % names.size()];
            page += random() % 3 == 0 ? "</" : "<";
            page += name;
            page += random() % 20 == 0 ? "/>" : ">";
        }
        const HtmlTree tree(page, small());
        ASSERT_NE(tree.root(), nullptr);
        // Implied elements add to the depth.
        EXPECT_LT(depthOf(tree), 80U) << page;
    }
}

TEST(HtmlTree, EndsAtItsMemory)
{
    HtmlLimits limits;
    limits.memory = 1024 * 1024;
    EXPECT_NE(HtmlTree("<p>one", limits).root(), nullptr);
    EXPECT_EQ(HtmlTree(repeated("<p>one", 20000), limits).root(), nullptr);
    limits.memory = 0;
    EXPECT_EQ(HtmlTree("<p>one", limits).root(), nullptr);
    // Each paragraph reopens all formatting elements.
    std::string page = "<p>";
    for (int i = 0; i < 400; ++i)
        page += "<b a" + std::to_string(i) + ">";
    page += "</p>" + repeated("<p>x</p>", 20000);
    limits.memory = 8 * 1024 * 1024;
    EXPECT_EQ(HtmlTree(page, limits).root(), nullptr);
}

TEST(HtmlTree, EndsAtItsTime)
{
    HtmlLimits limits;
    limits.milliseconds = 0;
    EXPECT_EQ(HtmlTree(repeated("<p>one", 1000), limits).root(), nullptr);
}

TEST(HtmlTree, HostilePagesAreRead)
{
    // Pages that take quadratic memory or time in a parser without limits.
    std::string attributes = "<p ";
    for (int i = 0; i < 40000; ++i)
        attributes.append("a").append(std::to_string(i)).append("=1 ");
    for (const std::string& page :
         {repeated("<div>", 100000), repeated("<b>", 100000), repeated("<table>", 100000), repeated("<b></p>", 100000),
          repeated("<svg>", 100000), repeated("<!--", 100000), repeated("&", 100000), repeated("<", 100000),
          repeated("<a href='", 100000), std::string(100000, '\0'), attributes + ">"}) {
        const HtmlDocument document = readHtml("<title>t</title>one " + page, 1000);
        EXPECT_EQ(document.title, "t") << page.substr(0, 10);
        EXPECT_EQ(document.text.substr(0, 3), "one") << page.substr(0, 10);
    }
}

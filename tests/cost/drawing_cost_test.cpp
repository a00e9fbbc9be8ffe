#include <string>

#include <gtest/gtest.h>

#include "tests/cost/step_counter.h"
#include "thumbnails/thumbnail.h"

/// Compares the cost of preparing SVG drawings of single and double length. The loops of the XML reader do not count,
/// but the memory that it copies and allocates does.
using namespace quarrynet::cost;
using namespace quarrynet::services;

namespace {

void expectProportionalDrawing(const std::string& head, const std::string& pattern, const std::string& tail,
                               std::size_t length = kLength)
{
    expectProportionalText(
        "drawing, " + head + pattern + tail,
        [&](std::size_t size) {
            return "<svg xmlns='http://www.w3.org/2000/svg'>" + head + filled(pattern, size) + tail;
        },
        [](const std::string& text) { selfContainedSvg(QByteArray::fromStdString(text)); }, length);
}

} // namespace

TEST(DrawingCost, ElementsAndTexts)
{
    // The number of elements stays below the bound, beyond which nothing is drawn.
    for (const std::string pattern : {"<g/>", "<g a='b'/>", "<image href='x'/>", "<image><g/></image>", "x", "&amp;",
                                      " ", "<!-- -->", "<?a?>", "<a></a>", "\xc3\xa9", "<b xmlns:c='d'/>"}) {
        expectProportionalDrawing("", pattern, "</svg>");
        expectProportionalDrawing("", pattern, "");
    }
}

TEST(DrawingCost, NestsAndTextsWithoutAnEnd)
{
    for (const std::string pattern :
         {"<g>", "<image>", "<a><b>", "<", "<!--", "<![CDATA[", "<image href='", "&", "&#x41"})
        expectProportionalDrawing("", pattern, "");
    for (const std::string head : {"<!--", "<![CDATA[", "<?a ", "<g a='", "<image href='data:image/png;base64,"}) {
        for (const std::string pattern : {"x", "-", "]", "]]", "base64,", "iVBORw0KGgo", "&lt;", "?"})
            expectProportionalDrawing(head, pattern, "");
    }
}

TEST(DrawingCost, LongAddresses)
{
    for (const std::string pattern : {"A", "base64,", "data:", "iVBORw0KGgo", "%41", " "}) {
        expectProportionalDrawing("<image href='data:image/png;base64,", pattern, "'/></svg>");
        expectProportionalDrawing("<image href='", pattern, "'/></svg>");
    }
}

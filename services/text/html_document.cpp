#include "text/html_document.h"

#include <algorithm>
#include <gumbo.h>
#include <optional>
#include <utility>
#include <vector>

#include "ground/ascii.h"
#include "ground/utf8.h"
#include "text/HtmlTree.h"
#include "text/PageEncoding.h"
#include "text/html_walk.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kMaxTitle = 1000;

/// The encoding is searched for in this many bytes of a page.
constexpr std::size_t kHead = 4096;

/// Collects text on one line, up to a limit: whitespace and control bytes become one blank, and none at the ends.
class Line
{
public:
    explicit Line(std::size_t maxBytes) : maxBytes_(maxBytes) {}

    void add(std::string_view text)
    {
        constexpr std::string_view kNoBreakSpace = "\xC2\xA0";
        for (std::size_t i = 0; i < text.size() && !full(); ++i) {
            if (isBlankOrControl(text[i])) {
                addBlank();
            } else if (text.substr(i, kNoBreakSpace.size()) == kNoBreakSpace) {
                addBlank();
                ++i;
            } else {
                if (blankDue_)
                    text_.push_back(' ');
                blankDue_ = false;
                text_.push_back(text[i]);
            }
        }
    }

    void addBlank() { blankDue_ = !text_.empty(); }

    bool full() const { return text_.size() > maxBytes_; }

    std::string take() const
    {
        // Gumbo decodes a reference to a number beyond U+10FFFF to bytes that are not UTF-8.
        const std::string whole = withoutBrokenCharacters(clipUtf8(text_, maxBytes_));
        std::string_view text = clipUtf8(whole, maxBytes_);
        while (!text.empty() && text.back() == ' ')
            text.remove_suffix(1);
        return std::string(text);
    }

private:
    std::size_t maxBytes_;
    std::string text_;
    bool blankDue_ = false;
};

bool isHtml(const GumboElement& element, GumboTag tag)
{
    return element.tag == tag && element.tag_namespace == GUMBO_NAMESPACE_HTML;
}

/// Returns whether readers do not see the element's text. Scripts do not run here, so "noscript" text is visible.
bool isHidden(const GumboElement& element)
{
    switch (element.tag) {
    case GUMBO_TAG_TITLE: // the page's title is taken separately; a drawing's title is a tooltip
    case GUMBO_TAG_SCRIPT:
    case GUMBO_TAG_STYLE:
    case GUMBO_TAG_TEMPLATE:
    case GUMBO_TAG_NOEMBED:
    case GUMBO_TAG_NOFRAMES:
    case GUMBO_TAG_IFRAME:
        return true;
    case GUMBO_TAG_DESC:
        return element.tag_namespace == GUMBO_NAMESPACE_SVG;
    default:
        return false;
    }
}

/// Returns whether the element is part of a line, so that its tags do not separate words.
bool isInline(const GumboElement& element)
{
    switch (element.tag) {
    case GUMBO_TAG_A:
    case GUMBO_TAG_ABBR:
    case GUMBO_TAG_ACRONYM:
    case GUMBO_TAG_B:
    case GUMBO_TAG_BDI:
    case GUMBO_TAG_BDO:
    case GUMBO_TAG_BIG:
    case GUMBO_TAG_CITE:
    case GUMBO_TAG_CODE:
    case GUMBO_TAG_DATA:
    case GUMBO_TAG_DEL:
    case GUMBO_TAG_DFN:
    case GUMBO_TAG_EM:
    case GUMBO_TAG_FONT:
    case GUMBO_TAG_I:
    case GUMBO_TAG_INS:
    case GUMBO_TAG_KBD:
    case GUMBO_TAG_MARK:
    case GUMBO_TAG_NOBR:
    case GUMBO_TAG_Q:
    case GUMBO_TAG_S:
    case GUMBO_TAG_SAMP:
    case GUMBO_TAG_SMALL:
    case GUMBO_TAG_SPAN:
    case GUMBO_TAG_STRIKE:
    case GUMBO_TAG_STRONG:
    case GUMBO_TAG_SUB:
    case GUMBO_TAG_SUP:
    case GUMBO_TAG_TIME:
    case GUMBO_TAG_TT:
    case GUMBO_TAG_U:
    case GUMBO_TAG_VAR:
    case GUMBO_TAG_WBR:
        return true;
    default:
        return false;
    }
}

bool isText(const GumboNode& node)
{
    return node.type == GUMBO_NODE_TEXT || node.type == GUMBO_NODE_CDATA || node.type == GUMBO_NODE_WHITESPACE;
}

void addTexts(const GumboNode& title, Line& line)
{
    const GumboVector& children = title.v.element.children;
    for (unsigned i = 0; i < children.length; ++i) {
        const auto* child = static_cast<const GumboNode*>(children.data[i]);
        if (isText(*child))
            line.add(child->v.text.text);
    }
}

std::string_view attributeOf(const GumboElement& element, const char* name)
{
    const GumboAttribute* attribute = gumbo_get_attribute(&element.attributes, name);
    return attribute == nullptr ? std::string_view() : std::string_view(attribute->value);
}

/// Adds the addresses of the pictures that the element shows.
void addPictures(const GumboElement& element, std::vector<std::string>& pictures)
{
    const auto add = [&](const char* attribute) {
        const std::string_view address = attributeOf(element, attribute);
        if (!address.empty() && pictures.size() < kMaxPagePictures)
            pictures.emplace_back(address);
    };
    add("background");
    switch (element.tag) {
    case GUMBO_TAG_IMG:
    case GUMBO_TAG_EMBED:
    case GUMBO_TAG_INPUT:
        add("src");
        break;
    case GUMBO_TAG_IMAGE:
    case GUMBO_TAG_LINK:
        add("href");
        break;
    case GUMBO_TAG_OBJECT:
        add("data");
        break;
    default:
        break;
    }
}

/// Returns the label in "text/html; charset=LABEL", or an empty text when there is none.
std::string_view charsetIn(std::string_view content)
{
    constexpr std::string_view kName = "charset";
    for (std::size_t at = 0; at + kName.size() <= content.size(); ++at) {
        if (!equalsIgnoringCase(content.substr(at, kName.size()), kName))
            continue;
        std::string_view rest = content.substr(at + kName.size());
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n\f"), rest.size()));
        if (rest.substr(0, 1) != "=")
            continue;
        rest.remove_prefix(1);
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n\f"), rest.size()));
        if (rest.empty())
            return {};
        if (rest.front() == '"' || rest.front() == '\'') {
            const std::size_t end = rest.find(rest.front(), 1);
            return end == std::string_view::npos ? std::string_view() : rest.substr(1, end - 1);
        }
        return rest.substr(0, rest.find_first_of(" \t\r\n\f;"));
    }
    return {};
}

/// Returns the encoding of '<?xml version="1.0" encoding="LABEL"?>' at the beginning of an XHTML page.
std::optional<PageEncoding> declaredInXml(std::string_view head)
{
    if (head.substr(0, 5) != "<?xml")
        return std::nullopt;
    head = head.substr(0, head.find("?>"));
    const std::size_t name = head.find("encoding");
    const std::size_t open = name == std::string_view::npos ? name : head.find_first_of("\"'", name);
    if (open == std::string_view::npos)
        return std::nullopt;
    const std::size_t close = head.find(head[open], open + 1);
    return close == std::string_view::npos ? std::nullopt
                                           : PageEncoding::named(head.substr(open + 1, close - open - 1));
}

std::optional<PageEncoding> declaredEncoding(std::string_view page)
{
    const std::string_view head = page.substr(0, kHead);
    const HtmlTree tree(head);
    std::optional<PageEncoding> declared;
    walk(
        tree.root(),
        [&declared](const GumboNode& node) {
            if (declared || !isElement(node))
                return false;
            const GumboElement& element = node.v.element;
            if (isHtml(element, GUMBO_TAG_META)) {
                std::string_view label = attributeOf(element, "charset");
                if (label.empty() && equalsIgnoringCase(attributeOf(element, "http-equiv"), "content-type"))
                    label = charsetIn(attributeOf(element, "content"));
                declared = PageEncoding::named(label);
            }
            return true;
        },
        [](const GumboNode&) {});
    return declared ? declared : declaredInXml(head);
}

/// Returns `page` as UTF-8, decoded by its byte order mark, else by its declaration, else as UTF-8 if it is valid, else
/// as Windows-1252.
std::string pageText(std::string_view page)
{
    std::optional<PageEncoding> encoding = PageEncoding::byMark(page);
    if (!encoding)
        encoding = declaredEncoding(page);
    if (!encoding && isUtf8(page))
        return std::string(page);
    if (!encoding)
        encoding = PageEncoding::named("windows-1252");
    std::optional<std::string> text = encoding ? encoding->toUtf8(page) : std::nullopt;
    return text ? *std::move(text) : toUtf8(page);
}

} // namespace

HtmlDocument readHtml(std::string_view page, std::size_t maxText)
{
    const std::string text = pageText(page.substr(0, HtmlLimits().bytes));
    const HtmlTree tree(text);
    std::optional<Line> title;
    Line body(maxText);
    std::vector<std::string> pictures;
    walk(
        tree.root(),
        [&](const GumboNode& node) {
            if (isText(node))
                body.add(node.v.text.text);
            if (!isElement(node))
                return false;
            const GumboElement& element = node.v.element;
            if (!title && isHtml(element, GUMBO_TAG_TITLE))
                addTexts(node, title.emplace(kMaxTitle));
            if (!isInline(element))
                body.addBlank();
            addPictures(element, pictures);
            return !isHidden(element);
        },
        [&body](const GumboNode& node) {
            if (!isInline(node.v.element))
                body.addBlank();
        });
    return {title ? title->take() : std::string(), body.take(), std::move(pictures)};
}

} // namespace quarrynet::services

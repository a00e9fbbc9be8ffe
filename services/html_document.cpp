#include "services/html_document.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "services/markup.h"
#include "services/text_encoding.h"

namespace quarrynet::services {

namespace {

char lowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isNameCharacter(char c)
{
    const char l = lowerAscii(c);
    return (l >= 'a' && l <= 'z') || (c >= '0' && c <= '9');
}

/// The position behind the end tag of `element`, from `from` on; the page's end when it is never closed.
std::pair<std::size_t, std::size_t> findEndTag(std::string_view page, std::string_view element, std::size_t from)
{
    for (std::size_t at = page.find("</", from); at != std::string_view::npos; at = page.find("</", at + 2)) {
        const std::string_view name = page.substr(at + 2, element.size());
        if (name.size() == element.size() &&
            std::equal(name.begin(), name.end(), element.begin(), [](char a, char b) { return lowerAscii(a) == b; }) &&
            (at + 2 + name.size() >= page.size() || !isNameCharacter(page[at + 2 + name.size()]))) {
            const std::size_t close = page.find('>', at);
            return {at, close == std::string_view::npos ? page.size() : close + 1};
        }
    }
    return {page.size(), page.size()};
}

struct Named
{
    std::string_view name;
    char32_t character;
};
constexpr std::array<Named, 16> kReferences{{{"amp", '&'},
                                             {"lt", '<'},
                                             {"gt", '>'},
                                             {"quot", '"'},
                                             {"apos", '\''},
                                             {"nbsp", ' '},
                                             {"copy", 0xA9},
                                             {"reg", 0xAE},
                                             {"laquo", 0xAB},
                                             {"raquo", 0xBB},
                                             {"ndash", 0x2013},
                                             {"mdash", 0x2014},
                                             {"lsquo", 0x2018},
                                             {"rsquo", 0x2019},
                                             {"ldquo", 0x201C},
                                             {"rdquo", 0x201D}}};

std::optional<char32_t> referenceValue(std::string_view name)
{
    if (name.size() > 1 && name.front() == '#') {
        const bool hexadecimal = lowerAscii(name[1]) == 'x';
        const std::string_view digits = name.substr(hexadecimal ? 2 : 1);
        if (digits.empty())
            return std::nullopt;
        char32_t value = 0;
        for (const char c : digits) {
            const char l = lowerAscii(c);
            char32_t digit = 0;
            if (c >= '0' && c <= '9')
                digit = static_cast<char32_t>(c - '0');
            else if (hexadecimal && l >= 'a' && l <= 'f')
                digit = static_cast<char32_t>(l - 'a' + 10);
            else
                return std::nullopt;
            value = value * (hexadecimal ? 16 : 10) + digit;
        }
        return value == 0xA0 ? U' ' : value;
    }
    for (const Named& reference : kReferences) {
        if (reference.name == name)
            return reference.character;
    }
    return std::nullopt;
}

std::string decodeReferences(std::string_view text)
{
    constexpr std::size_t kLongest = 8;
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&') {
            const std::size_t end = text.substr(i, kLongest + 2).find(';');
            if (end != std::string_view::npos) {
                if (const auto character = referenceValue(text.substr(i + 1, end - 1))) {
                    appendUtf8(out, *character);
                    i += end;
                    continue;
                }
            }
        }
        out.push_back(text[i]);
    }
    return out;
}

std::string tidy(std::string_view text)
{
    return collapseBlanks(decodeReferences(toUtf8(text)));
}

} // namespace

HtmlDocument readHtml(std::string_view page, std::size_t maxText)
{
    HtmlDocument document;
    std::string text;
    std::size_t at = 0;
    while (at < page.size() && text.size() < maxText) {
        const std::size_t open = std::min(page.find('<', at), page.size());
        text.append(page.substr(at, std::min(open - at, maxText)));
        if (open == page.size())
            break;
        if (page.substr(open, 4) == "<!--") {
            const std::size_t end = page.find("-->", open + 4);
            at = end == std::string_view::npos ? page.size() : end + 3;
            continue;
        }
        std::string name;
        for (std::size_t i = open + 1; i < page.size() && isNameCharacter(page[i]) && name.size() < 16; ++i)
            name.push_back(lowerAscii(page[i]));
        const std::size_t close = page.find('>', open);
        at = close == std::string_view::npos ? page.size() : close + 1;
        if (name == "script" || name == "style") {
            at = findEndTag(page, name, at).second;
        } else if (name == "title") {
            const auto [end, behind] = findEndTag(page, name, at);
            if (document.title.empty())
                document.title = tidy(clipUtf8(page.substr(at, end - at), 1000));
            at = behind;
        }
        text.push_back(' ');
    }
    document.text = tidy(text);
    document.text = std::string(clipUtf8(document.text, maxText));
    return document;
}

} // namespace quarrynet::services

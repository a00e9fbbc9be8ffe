#include "text/markup.h"

#include <array>
#include <cstdio>

#include "ground/ascii.h"
#include "ground/percent_coding.h"
#include "ground/utf8.h"

namespace quarrynet::services {

namespace {

/// Returns whether an "&" before `rest` could begin a character reference, also after the program has removed bold
/// tags.
bool beginsReference(std::string_view rest)
{
    while (!rest.empty() && (rest.front() == kMatchBegin || rest.front() == kMatchEnd))
        rest.remove_prefix(1);
    return !rest.empty() && (isAsciiAlphanumeric(rest.front()) || rest.front() == '#');
}

void appendEscaped(std::string& out, std::string_view text, std::size_t i)
{
    if (text[i] == '<')
        out += "&lt;";
    else if (text[i] == '&' && beginsReference(text.substr(i + 1)))
        out += "&amp;";
    else
        out.push_back(text[i]);
}

/// Returns whether a terminal could take the character for an order, or turn what follows around.
bool isHiddenControl(char32_t number)
{
    return (number >= 0x80 && number <= 0x9F) || turnsDirection(number);
}

} // namespace

std::string escapeText(std::string_view text)
{
    std::string out;
    out.reserve(text.size() + 16);
    for (std::size_t i = 0; i < text.size(); ++i)
        appendEscaped(out, text, i);
    return out;
}

std::string escapeAttribute(std::string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"')
            out += "&quot;";
        else
            appendEscaped(out, text, i);
    }
    return out;
}

std::string escapeMatches(std::string_view text)
{
    std::string out;
    out.reserve(text.size() + 32);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == kMatchBegin)
            out += "<b>";
        else if (text[i] == kMatchEnd)
            out += "</b>";
        else
            appendEscaped(out, text, i);
    }
    return out;
}

std::string tidyAddress(std::string_view address)
{
    std::string out;
    out.reserve(address.size());
    for (const char c : address) {
        if (!isAscii(c) || isBlankOrControl(c) || std::string_view("\"'<>`").find(c) != std::string_view::npos)
            appendPercentEscape(out, c);
        else
            out.push_back(c);
    }
    return out;
}

std::string withSeparators(std::int64_t number)
{
    std::string digits = std::to_string(number);
    const std::size_t first = number < 0 ? 1 : 0;
    for (std::size_t i = digits.size(); i > first + 3; i -= 3)
        digits.insert(i - 3, 1, ',');
    return digits;
}

std::string readableSize(std::int64_t bytes)
{
    if (bytes < 1024)
        return std::to_string(bytes) + " bytes";
    constexpr std::array<const char*, 4> kUnits{"KB", "MB", "GB", "TB"};
    double size = static_cast<double>(bytes) / 1024;
    std::size_t unit = 0;
    // From 1023.95 on, one decimal would print 1024.0 of the smaller unit.
    while (size >= 1023.95 && unit + 1 < kUnits.size()) {
        size /= 1024;
        ++unit;
    }
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.1f %s", size, kUnits[unit]);
    return text.data();
}

std::string withReplaced(std::string_view text, std::string_view what, std::string_view with)
{
    std::string out;
    std::size_t done = 0;
    for (std::size_t at = text.find(what); at != std::string_view::npos; at = text.find(what, done)) {
        out.append(text, done, at - done).append(with);
        done = at + what.size();
    }
    return out.append(text, done);
}

std::string collapseBlanks(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    bool blankDue = false;
    for (const char c : text) {
        if (isBlankOrControl(c)) {
            blankDue = !out.empty();
            continue;
        }
        if (blankDue)
            out.push_back(' ');
        blankDue = false;
        out.push_back(c);
    }
    return out;
}

std::string plainLine(std::string_view bytes)
{
    const std::string text = toUtf8(bytes);
    std::string out;
    out.reserve(text.size());
    for (std::string_view rest = text; !rest.empty();) {
        const Utf8Character next = utf8Character(rest).value_or(Utf8Character{U'\uFFFD', 1});
        if (!isHiddenControl(next.number))
            out.append(rest.substr(0, next.length));
        rest.remove_prefix(next.length);
    }
    return collapseBlanks(out);
}

} // namespace quarrynet::services

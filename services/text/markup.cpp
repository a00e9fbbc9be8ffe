#include "text/markup.h"

#include <array>
#include <cstdio>

namespace quarrynet::services {

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

bool isAlphanumeric(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isUnreserved(char c)
{
    return isAlphanumeric(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

void appendPercent(std::string& out, char c)
{
    const auto byte = static_cast<unsigned char>(c);
    out.push_back('%');
    out.push_back(kHexDigits[byte >> 4U]);
    out.push_back(kHexDigits[byte & 15U]);
}

/// Whether an "&" before `rest` could be read as the beginning of a character reference, also once the program has
/// taken the bold tags out.
bool beginsReference(std::string_view rest)
{
    while (!rest.empty() && (rest.front() == kMatchBegin || rest.front() == kMatchEnd))
        rest.remove_prefix(1);
    return !rest.empty() && (isAlphanumeric(rest.front()) || rest.front() == '#');
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

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
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
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= 0x20 || byte >= 0x7F || std::string_view("\"'<>`").find(c) != std::string_view::npos)
            appendPercent(out, c);
        else
            out.push_back(c);
    }
    return out;
}

std::string encodePath(std::string_view path)
{
    std::string out;
    out.reserve(path.size());
    for (const char c : path) {
        if (isUnreserved(c) || std::string_view("/+:@=,").find(c) != std::string_view::npos)
            out.push_back(c);
        else
            appendPercent(out, c);
    }
    return out;
}

std::string encodeComponent(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        if (isUnreserved(c))
            out.push_back(c);
        else
            appendPercent(out, c);
    }
    return out;
}

std::string decodePercent(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 && hexValue(text[i + 2]) >= 0) {
            out.push_back(
                static_cast<char>(static_cast<unsigned char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]))));
            i += 2;
        } else {
            out.push_back(text[i]);
        }
    }
    return out;
}

std::string decodeQueryValue(std::string_view value)
{
    std::string blanks(value);
    for (char& c : blanks) {
        if (c == '+')
            c = ' ';
    }
    return decodePercent(blanks);
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
    // From 1023.95 on, one decimal would show 1024.0 of the smaller unit.
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
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= 0x20 || byte == 0x7F) {
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

} // namespace quarrynet::services

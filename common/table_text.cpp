#include "common/table_text.h"

#include <algorithm>
#include <array>

#include "common/address_check.h"
#include "ground/ascii.h"
#include "ground/utf8.h"

namespace quarrynet {

namespace {

// Returns whether a spreadsheet would run `text` as a formula. The full-width forms of the characters count, too.
bool beginsFormula(std::string_view text)
{
    static constexpr std::array<std::string_view, 4> kWide = {"\xEF\xBC\x9D", "\xEF\xBC\x8B", "\xEF\xBC\x8D",
                                                              "\xEF\xBC\xA0"};
    if (text.empty())
        return false;
    if (std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos)
        return true;
    return std::any_of(kWide.begin(), kWide.end(), [text](std::string_view wide) { return text.starts_with(wide); });
}

bool isSkippedBeforeFormula(char c)
{
    return c == ' ' || c == '"';
}

// Returns whether a spreadsheet would run a cell that begins with `text` as a formula. See csvText.
bool isFormula(std::string_view text)
{
    const auto* const first = std::find_if_not(text.begin(), text.end(), isSkippedBeforeFormula);
    return beginsFormula(text.substr(static_cast<std::size_t>(first - text.begin())));
}

// Appends `cell` in quotes. See csvText for the apostrophes.
void appendField(std::string& text, std::string_view cell)
{
    text += '"';
    std::size_t pieceStart = 0; // where a spreadsheet may see the beginning of a cell
    while (true) {
        const std::string_view rest = cell.substr(pieceStart);
        if (isFormula(rest))
            text += '\'';
        const std::size_t end = rest.find(';');
        for (const char c : rest.substr(0, end)) {
            if (c == '"')
                text += '"';
            text += c;
        }
        if (end == std::string_view::npos)
            break;
        text += ';';
        pieceStart += end + 1;
    }
    text += '"';
}

std::string_view cellOf(const std::vector<std::string>& row, std::size_t column)
{
    return column < row.size() ? std::string_view(row[column]) : std::string_view();
}

void appendJsonText(std::string& json, std::string_view bytes)
{
    static constexpr std::string_view kDigits = "0123456789abcdef";
    json += '"';
    for (const char c : withoutBrokenCharacters(bytes)) {
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            json += "\\u00";
            json += kDigits[static_cast<unsigned char>(c) >> 4U];
            json += kDigits[static_cast<unsigned char>(c) & 0xFU];
        } else {
            json += c;
        }
    }
    json += '"';
}

void appendHtmlText(std::string& html, std::string_view bytes)
{
    for (const char c : withoutBrokenCharacters(bytes)) {
        switch (c) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            // HTML allows no other control characters; NUL would be replaced by the reader.
            html += isAsciiControl(c) ? ' ' : c;
        }
    }
}

void appendHtmlCell(std::string& html, std::string_view cell, bool isOpenable)
{
    html += "<td dir=\"auto\">";
    const std::optional<std::string> address = isOpenable ? openableAddress(cell) : std::nullopt;
    if (address) {
        html += "<a rel=\"noreferrer\" href=\"";
        appendHtmlText(html, *address);
        html += "\">";
    }
    if (isFormula(cell))
        html += "&#39;";
    appendHtmlText(html, cell);
    if (address)
        html += "</a>";
    html += "</td>";
}

// Returns whether Windows reserves `name` for a device, with any extension.
bool isDeviceName(std::string_view name)
{
    static constexpr std::array<std::string_view, 6> kNames = {"con", "prn", "aux", "nul", "conin$", "conout$"};
    std::string_view stem = name.substr(0, name.find('.'));
    while (!stem.empty() && stem.back() == ' ')
        stem.remove_suffix(1);
    const std::string lower = toLowerAscii(stem);
    if (std::find(kNames.begin(), kNames.end(), lower) != kNames.end())
        return true;
    if (!lower.starts_with("com") && !lower.starts_with("lpt"))
        return false;
    const std::string_view number = std::string_view(lower).substr(3);
    return (number.size() == 1 && isAsciiDigit(number.front())) || number == "\xc2\xb9" || number == "\xc2\xb2" ||
           number == "\xc2\xb3";
}

// Returns `text` with blanks in place of characters that no file name may have, and with single blanks only.
std::string forFileName(std::string_view text)
{
    constexpr std::string_view kReserved = "<>:\"/\\|?*";
    std::string name;
    for (const char c : withoutBrokenCharacters(text)) {
        const bool blank = isBlankOrControl(c) || kReserved.find(c) != std::string_view::npos;
        if (!blank)
            name += c;
        else if (!name.empty() && name.back() != ' ')
            name += ' ';
    }
    return name;
}

} // namespace

std::string harmlessCell(std::string_view cell)
{
    std::string text(isFormula(cell) ? "'" : "");
    return text.append(cell);
}

std::string csvText(const Table& table)
{
    std::string text;
    const auto appendLine = [&](const std::vector<std::string>& cells) {
        for (std::size_t column = 0; column < table.headers.size(); ++column) {
            if (column > 0)
                text += ',';
            appendField(text, withoutBrokenCharacters(cellOf(cells, column)));
        }
        text += "\r\n";
    };
    appendLine(table.headers);
    for (const std::vector<std::string>& row : table.rows)
        appendLine(row);
    return text;
}

std::string jsonText(const Table& table)
{
    std::string json = "{\n\"title\": ";
    appendJsonText(json, table.title);
    json += ",\n\"rows\": [";
    const char* separator = "\n";
    for (const std::vector<std::string>& row : table.rows) {
        json += separator;
        json += '{';
        for (std::size_t column = 0; column < table.headers.size(); ++column) {
            if (column > 0)
                json += ", ";
            appendJsonText(json, table.headers[column]);
            json += ": ";
            appendJsonText(json, cellOf(row, column));
        }
        json += '}';
        separator = ",\n";
    }
    return json += "\n]\n}\n";
}

std::string htmlTable(const Table& table)
{
    std::string html = "<table>\n<thead>\n<tr>";
    for (const std::string& header : table.headers) {
        html += "<th>";
        appendHtmlText(html, header);
        html += "</th>";
    }
    html += "</tr>\n</thead>\n<tbody>\n";
    for (std::size_t row = 0; row < table.rows.size(); ++row) {
        const bool isOpenable = row < table.openable.size() && table.openable[row];
        html += "<tr>";
        for (std::size_t column = 0; column < table.headers.size(); ++column)
            appendHtmlCell(html, cellOf(table.rows[row], column), isOpenable && column == table.addressColumn);
        html += "</tr>\n";
    }
    return html += "</tbody>\n</table>\n";
}

std::string htmlPage(const Table& table)
{
    std::string html = "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                       "style-src 'unsafe-inline'\">\n<title>";
    appendHtmlText(html, table.title);
    html += "</title>\n<style>\n"
            "body { font-family: sans-serif }\n"
            "table { border-collapse: collapse }\n"
            "th, td { border: 1px solid #999; padding: 0.2em 0.5em; text-align: start; overflow-wrap: anywhere }\n"
            "</style>\n</head>\n<body>\n<h1 dir=\"auto\">";
    appendHtmlText(html, table.title);
    html += "</h1>\n";
    html += htmlTable(table);
    return html += "</body>\n</html>\n";
}

std::string suggestedFileName(std::string_view words, std::string_view tab, std::string_view date)
{
    constexpr std::size_t kLongestPart = 90; // bytes
    std::string name;
    for (const std::string_view part : {words, tab, date}) {
        std::string text = forFileName(part);
        text.resize(clipUtf8(text, kLongestPart).size());
        while (!text.empty() && (text.back() == ' ' || text.back() == '.'))
            text.pop_back();
        text.erase(0, text.find_first_not_of(" ."));
        if (text.empty())
            continue;
        if (!name.empty())
            name += " - ";
        name += text;
    }
    constexpr std::size_t kLongestName = 200; // bytes; room for an extension in the 255 of all file systems
    name.resize(clipUtf8(name, kLongestName).size());
    while (!name.empty() && (name.back() == ' ' || name.back() == '.'))
        name.pop_back();
    if (isDeviceName(name))
        name.insert(0, 1, '_');
    return name;
}

} // namespace quarrynet

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Writes a table of rows in the formats that other programs read.
namespace quarrynet {

/// A list as it is saved. All texts are UTF-8 and of one line; bytes that are not well-formed become U+FFFD.
struct Table
{
    std::string title;
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows; ///< missing cells at a row's end are empty
    std::optional<std::size_t> addressColumn;   ///< holds addresses, which may become links on a page
    std::vector<bool> openable = {};            ///< of each row, whether its address does; missing ones do not
};

/// Returns the table as comma-separated values (RFC 4180) with a header line, every field in quotes, lines ending in
/// CR LF, in UTF-8 without a byte order mark.
///
/// Spreadsheets run a cell as a formula if it begins with "=", "+", "-", "@", a tab or a CR, or their full-width forms,
/// even if it is in quotes. Such a cell gets an apostrophe at its front, which spreadsheets take for "this is a text".
/// A spreadsheet of a country where ";" separates cells splits a cell there, so the same holds behind a ";". Blanks and
/// quotes before the character make no difference.
std::string csvText(const Table& table);

/// Returns `cell` with an apostrophe in front if a spreadsheet would run it as a formula, for a text with one cell a
/// line or tabs between the cells.
std::string harmlessCell(std::string_view cell);

/// Returns the table as JSON (RFC 8259): an object with the "title" and the "rows", an array of objects with the
/// headers as keys.
std::string jsonText(const Table& table);

/// Returns the table as a complete HTML page, which loads nothing and runs no script. The addresses of the rows that
/// are `openable` are links, if openableAddress allows them, too.
std::string htmlPage(const Table& table);

/// Returns only the table element of that page, as other programs take it from the clipboard.
std::string htmlTable(const Table& table);

/// Returns a file name, without an extension, from the words that were searched for, the tab's name and a date; all
/// UTF-8. It is valid on all systems: it has no control or reserved character, is no reserved name of Windows, begins
/// and ends with neither a blank nor a dot, and is no longer than 200 bytes.
std::string suggestedFileName(std::string_view words, std::string_view tab, std::string_view date);

} // namespace quarrynet

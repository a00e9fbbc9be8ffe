#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The INI file format that the Windows private-profile calls read and write, for other systems. These functions work
/// on text alone: bytes in the system's code page, in lines that end in CR LF, LF or CR. See profile_encoding.h for
/// files with a mark at their start.
///
/// A line whose first character other than a blank is "[" begins a section, named by the text before the first "]" (or
/// the line's end). A line that begins with ";" is a comment. Every other line that is not blank is an entry: the key
/// is the text before its first "=", the value the text after it, each without the blanks (spaces and tabs) around it.
/// Of several sections or keys with one name, the first counts. Comparison of names ignores the case of ASCII letters
/// and blanks around the names.
namespace quarrynet {

/// One entry of a section: its key and its value, or only a key if the line has no "=".
struct ProfileEntry
{
    std::string_view key;
    std::optional<std::string_view> value;
};

/// Returns the value of `key` in `section` as a view of `text`, without the blanks and then without one pair of quotes
/// (" or ') around it. Returns nothing if there is no such section or key; a key without "=" has an empty value.
std::optional<std::string_view> profileValue(std::string_view text, std::string_view section, std::string_view key);

/// Returns the entries of `section` in the order of their lines, values with their quotes; empty if there is no such
/// section.
std::vector<ProfileEntry> profileEntries(std::string_view text, std::string_view section);

/// Returns the names of all sections in the order of their lines.
std::vector<std::string_view> profileSectionNames(std::string_view text);

/// Returns `text` with `key` set to `value` in `section`. A missing key is added after the section's last line that is
/// not blank, a missing section at the end. All other lines keep their bytes, including line ends; a new line ends like
/// the text's first one. The arguments must pass isProfileSection, isProfileKey and isProfileValue.
std::string withProfileValue(std::string_view text, std::string_view section, std::string_view key,
                             std::string_view value);

/// Returns `text` with the entries of `section` replaced by `entries`; its comments and blank lines stay. A missing
/// section is added at the end, even without entries.
std::string withProfileEntries(std::string_view text, std::string_view section,
                               const std::vector<std::pair<std::string, std::string>>& entries);

/// Returns whether a section, a key or a value would be read back as such, and not as another kind of line: none has a
/// line end or NUL; a section is not blank and has no "]"; a key is not blank, has no "=" and begins with neither "["
/// nor ";". Reading removes blanks around all of them, and a pair of quotes around a value.
bool isProfileSection(std::string_view name);
bool isProfileKey(std::string_view name);
bool isProfileValue(std::string_view value);

/// Returns `items`, each followed by a NUL, as the system packs a list into a buffer of `capacity` characters that also
/// takes a final NUL. A list that does not fit is cut to capacity - 2 characters.
std::string packProfileList(const std::vector<std::string>& items, std::size_t capacity);

/// Returns the entries of `section` ("key=value"), packed.
std::string packedProfileSection(std::string_view text, std::string_view section, std::size_t capacity);

/// Returns the names of all sections, packed.
std::string packedProfileSectionNames(std::string_view text, std::size_t capacity);

} // namespace quarrynet

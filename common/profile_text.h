#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The format of an INI file, on its text alone: what the operating system's private-profile calls read and write,
/// for systems that have no such calls. Text is bytes in the system's code page; lines end in LF or CR LF.
///
/// A line whose first character other than a blank is "[" begins a section, named by what stands before the first "]"
/// (or the line's end). A line that begins with ";" is a comment. Every other line that is not blank is an entry: the
/// key stands before its first "=", the value behind it, each without the blanks (spaces and tabs) around it. Of
/// several sections or keys with one name the first counts. Names compare without regard to the case of ASCII letters,
/// and without blanks around them. A UTF-8 byte order mark at the start is passed over.
namespace quarrynet {

/// One entry of a section: its key and its value, or only a key where the line holds no "=".
struct ProfileEntry
{
    std::string_view key;
    std::optional<std::string_view> value;
};

/// The value of `key` in `section`, without the blanks and then without one pair of quotes (" or ') around it. Nothing
/// when there is no such section or key; a key without "=" has the empty value. A view into `text`.
std::optional<std::string_view> profileValue(std::string_view text, std::string_view section, std::string_view key);

/// The entries of `section` in the order of their lines, values with their quotes; empty when there is no such section.
std::vector<ProfileEntry> profileEntries(std::string_view text, std::string_view section);

/// The names of all sections in the order of their lines.
std::vector<std::string_view> profileSectionNames(std::string_view text);

/// `text` with `key` set to `value` in `section`, both made where they are missing: the key behind the section's last
/// line that is not blank, the section at the end. All other lines keep their bytes, line ends included; a new line
/// ends as the text's first one does. The arguments must hold no line end (see isProfileName, isProfileValue).
std::string withProfileValue(std::string_view text, std::string_view section, std::string_view key,
                             std::string_view value);

/// `text` with the entries of `section` replaced by `entries`; its comments and blank lines stay. A missing section is
/// made at the end, without entries too.
std::string withProfileEntries(std::string_view text, std::string_view section,
                               const std::vector<std::pair<std::string, std::string>>& entries);

/// Whether a section, a key or a value can be written and read back as such, and not as a line of another kind: none
/// holds a line end or NUL; a section is not blank and holds no "]"; a key is not blank, holds no "=" and begins with
/// neither "[" nor ";". Blanks around any of them are lost on reading, and so is a pair of quotes around a value.
bool isProfileSection(std::string_view name);
bool isProfileKey(std::string_view name);
bool isProfileValue(std::string_view value);

/// `items`, each followed by a NUL, as the system packs a list into a buffer of `capacity` characters that needs one
/// NUL more. What does not fit is cut: the text is then capacity - 2 characters long.
std::string packProfileList(const std::vector<std::string>& items, std::size_t capacity);

} // namespace quarrynet

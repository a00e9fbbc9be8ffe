#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The encodings of INI files, told by the mark at the start of the file. profile_text works on text in the code page
/// or in UTF-8.
namespace quarrynet {

inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

enum class ProfileEncoding : std::uint8_t
{
    CodePage, // no mark
    Utf8,
    Utf16LittleEndian,
    Utf16BigEndian,
};

struct ProfileText
{
    ProfileEncoding encoding = ProfileEncoding::CodePage;
    std::string text; ///< without the mark; in UTF-8, unless the encoding is the code page
};

/// Decodes the content of a file. Units of UTF-16 that are no character become U+FFFD, and half a unit at the end is
/// dropped.
ProfileText decodeProfile(std::string_view content);

/// Returns the content of a file with this text and its encoding's mark.
std::string encodeProfile(const ProfileText& profile);

} // namespace quarrynet

#include "common/profile_encoding.h"

#include <cstddef>

#include "ground/utf8.h"

namespace quarrynet {

namespace {

constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";

std::string fromUtf16(std::string_view bytes, bool bigEndian)
{
    const std::size_t units = bytes.size() / 2;
    const auto unitAt = [&](std::size_t i) {
        const auto first = static_cast<unsigned char>(bytes[2 * i]);
        const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
        return static_cast<char32_t>(bigEndian ? first << 8U | second : second << 8U | first);
    };
    std::string text;
    text.reserve(units);
    for (std::size_t i = 0; i < units; ++i) {
        const char32_t unit = unitAt(i);
        const char32_t next = i + 1 < units ? unitAt(i + 1) : U'\0';
        if (unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
            appendUtf8(text, 0x10000 + ((unit - 0xD800) << 10U) + (next - 0xDC00));
            ++i;
        } else {
            appendUtf8(text, unit); // U+FFFD for a lone surrogate
        }
    }
    return text;
}

std::string toUtf16(std::string_view text, bool bigEndian)
{
    std::string bytes;
    bytes.reserve(2 * text.size() + 2);
    const auto append = [&](char32_t unit) {
        const auto high = static_cast<char>(unit >> 8U);
        const auto low = static_cast<char>(unit & 0xFFU);
        bytes.push_back(bigEndian ? high : low);
        bytes.push_back(bigEndian ? low : high);
    };
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Character character = utf8Character(text.substr(at)).value_or(Utf8Character{0xFFFD, 1});
        if (character.number < 0x10000) {
            append(character.number);
        } else {
            append(0xD800 + ((character.number - 0x10000) >> 10U));
            append(0xDC00 + ((character.number - 0x10000) & 0x3FFU));
        }
        at += character.length;
    }
    return bytes;
}

} // namespace

ProfileText decodeProfile(std::string_view content)
{
    if (content.starts_with(kUtf8Mark))
        return {ProfileEncoding::Utf8, std::string(content.substr(kUtf8Mark.size()))};
    if (content.starts_with(kLittleEndianMark))
        return {ProfileEncoding::Utf16LittleEndian, fromUtf16(content.substr(kLittleEndianMark.size()), false)};
    if (content.starts_with(kBigEndianMark))
        return {ProfileEncoding::Utf16BigEndian, fromUtf16(content.substr(kBigEndianMark.size()), true)};
    return {ProfileEncoding::CodePage, std::string(content)};
}

std::string encodeProfile(const ProfileText& profile)
{
    switch (profile.encoding) {
    case ProfileEncoding::Utf8:
        return std::string(kUtf8Mark) + profile.text;
    case ProfileEncoding::Utf16LittleEndian:
        return std::string(kLittleEndianMark) + toUtf16(profile.text, false);
    case ProfileEncoding::Utf16BigEndian:
        return std::string(kBigEndianMark) + toUtf16(profile.text, true);
    case ProfileEncoding::CodePage:
        break;
    }
    return profile.text;
}

} // namespace quarrynet

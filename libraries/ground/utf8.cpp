#include "ground/utf8.h"

namespace quarrynet {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

} // namespace

std::optional<Utf8Character> utf8Character(std::string_view bytes)
{
    if (bytes.empty())
        return std::nullopt;
    const auto byteAt = [bytes](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const unsigned char lead = byteAt(0);
    if (lead < 0x80)
        return Utf8Character{lead, 1};

    // Only the second byte has a special range, which depends on the first.
    std::size_t length = 0;
    char32_t number = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) { // smaller ones are overlong
        length = 2;
        number = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        number = lead & 0x0FU;
        low = lead == 0xE0 ? 0xA0 : low;   // overlong
        high = lead == 0xED ? 0x9F : high; // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        number = lead & 0x07U;
        low = lead == 0xF0 ? 0x90 : low;   // overlong
        high = lead == 0xF4 ? 0x8F : high; // above 0x10FFFF
    }
    if (length == 0 || bytes.size() < length || byteAt(1) < low || byteAt(1) > high)
        return std::nullopt;
    for (std::size_t i = 1; i < length; ++i) {
        if (!isUtf8Continuation(bytes[i]))
            return std::nullopt;
        number = (number << 6) | (byteAt(i) & 0x3FU);
    }
    return Utf8Character{number, length};
}

bool isUtf8(std::string_view bytes)
{
    while (!bytes.empty()) {
        const std::optional<Utf8Character> character = utf8Character(bytes);
        if (!character)
            return false;
        bytes.remove_prefix(character->length);
    }
    return true;
}

std::string toUtf8(std::string_view bytes)
{
    if (isUtf8(bytes))
        return std::string(bytes);
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char byte : bytes)
        appendUtf8(text, static_cast<unsigned char>(byte));
    return text;
}

std::string withoutBrokenCharacters(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::optional<Utf8Character> character = utf8Character(bytes);
        const std::size_t length = character ? character->length : 1;
        if (character)
            text += bytes.substr(0, length);
        else
            appendUtf8(text, kReplacement);
        bytes.remove_prefix(length);
    }
    return text;
}

void appendUtf8(std::string& text, char32_t number)
{
    if (number > 0x10FFFF || (number >= 0xD800 && number <= 0xDFFF))
        number = kReplacement;
    const auto add = [&text](char32_t byte) { text.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    if (number < 0x80) {
        add(number);
    } else if (number < 0x800) {
        add(0xC0U | (number >> 6U));
        add(0x80U | (number & 0x3FU));
    } else if (number < 0x10000) {
        add(0xE0U | (number >> 12U));
        add(0x80U | ((number >> 6U) & 0x3FU));
        add(0x80U | (number & 0x3FU));
    } else {
        add(0xF0U | (number >> 18U));
        add(0x80U | ((number >> 12U) & 0x3FU));
        add(0x80U | ((number >> 6U) & 0x3FU));
        add(0x80U | (number & 0x3FU));
    }
}

std::string_view clipUtf8(std::string_view text, std::size_t bytes)
{
    if (text.size() <= bytes)
        return text;
    while (bytes > 0 && isUtf8Continuation(text[bytes]))
        --bytes;
    return text.substr(0, bytes);
}

} // namespace quarrynet

#include "ground/text_encoding.h"

namespace quarrynet::services {

namespace {

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0U) == 0x80U;
}

/// The length of the character that begins at `text`, or 0 when the bytes are not well-formed.
std::size_t characterLength(std::string_view text)
{
    const auto at = [text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : static_cast<unsigned char>(0);
    };
    const unsigned char lead = at(0);
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return isContinuation(at(1)) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned char low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned char high = lead == 0xED ? 0x9F : 0xBF;
        return at(1) >= low && at(1) <= high && isContinuation(at(2)) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned char low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned char high = lead == 0xF4 ? 0x8F : 0xBF;
        return at(1) >= low && at(1) <= high && isContinuation(at(2)) && isContinuation(at(3)) ? 4 : 0;
    }
    return 0;
}

} // namespace

bool isUtf8(std::string_view bytes)
{
    while (!bytes.empty()) {
        const std::size_t length = characterLength(bytes);
        if (length == 0)
            return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string withoutBrokenCharacters(std::string_view bytes)
{
    constexpr char32_t kReplacement = 0xFFFD;
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::size_t length = characterLength(bytes);
        if (length == 0)
            appendUtf8(text, kReplacement);
        else
            text += bytes.substr(0, length);
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return text;
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

void appendUtf8(std::string& text, char32_t character)
{
    if (character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF))
        character = 0xFFFD;
    const auto push = [&text](char32_t bits) { text.push_back(static_cast<char>(static_cast<unsigned char>(bits))); };
    if (character < 0x80) {
        push(character);
    } else if (character < 0x800) {
        push(0xC0U | (character >> 6U));
        push(0x80U | (character & 0x3FU));
    } else if (character < 0x10000) {
        push(0xE0U | (character >> 12U));
        push(0x80U | ((character >> 6U) & 0x3FU));
        push(0x80U | (character & 0x3FU));
    } else {
        push(0xF0U | (character >> 18U));
        push(0x80U | ((character >> 12U) & 0x3FU));
        push(0x80U | ((character >> 6U) & 0x3FU));
        push(0x80U | (character & 0x3FU));
    }
}

std::string_view clipUtf8(std::string_view text, std::size_t bytes)
{
    if (text.size() <= bytes)
        return text;
    while (bytes > 0 && isContinuation(static_cast<unsigned char>(text[bytes])))
        --bytes;
    return text.substr(0, bytes);
}

} // namespace quarrynet::services

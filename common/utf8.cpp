#include "common/utf8.h"

namespace quarrynet {

std::optional<Utf8Character> utf8Character(std::string_view bytes)
{
    if (bytes.empty())
        return std::nullopt;
    const auto byteAt = [bytes](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const unsigned char lead = byteAt(0);
    if (lead < 0x80)
        return Utf8Character{lead, 1};

    // Only the second byte has bounds of its own, and they depend on the first.
    std::size_t length = 0;
    char32_t number = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) { // smaller ones would be longer than needed
        length = 2;
        number = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        number = lead & 0x0FU;
        low = lead == 0xE0 ? 0xA0 : low;   // longer than needed
        high = lead == 0xED ? 0x9F : high; // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        number = lead & 0x07U;
        low = lead == 0xF0 ? 0x90 : low;   // longer than needed
        high = lead == 0xF4 ? 0x8F : high; // above 0x10FFFF
    }
    if (length == 0 || bytes.size() < length || byteAt(1) < low || byteAt(1) > high)
        return std::nullopt;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(i) & 0xC0U) != 0x80)
            return std::nullopt;
        number = (number << 6) | (byteAt(i) & 0x3FU);
    }
    return Utf8Character{number, length};
}

void appendUtf8(std::string& out, char32_t number)
{
    const auto add = [&out](char32_t byte) { out.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    if (number < 0x80) {
        add(number);
    } else if (number < 0x800) {
        add(0xC0 | (number >> 6));
        add(0x80 | (number & 0x3F));
    } else if (number < 0x10000) {
        add(0xE0 | (number >> 12));
        add(0x80 | ((number >> 6) & 0x3F));
        add(0x80 | (number & 0x3F));
    } else {
        add(0xF0 | (number >> 18));
        add(0x80 | ((number >> 12) & 0x3F));
        add(0x80 | ((number >> 6) & 0x3F));
        add(0x80 | (number & 0x3F));
    }
}

} // namespace quarrynet

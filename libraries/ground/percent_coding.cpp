#include "ground/percent_coding.h"

#include <algorithm>

#include "ground/ascii.h"

namespace quarrynet {

namespace {

std::string encode(std::string_view text, std::string_view kept, bool leaveEscapes)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isAsciiAlphanumeric(c) || kept.find(c) != std::string_view::npos ||
            (leaveEscapes && beginsPercentEscape(text.substr(i))))
            out.push_back(c);
        else
            appendPercentEscape(out, c);
    }
    return out;
}

} // namespace

bool beginsPercentEscape(std::string_view text)
{
    return text.size() >= 3 && text[0] == '%' && hexDigitValue(text[1]) >= 0 && hexDigitValue(text[2]) >= 0;
}

void appendPercentEscape(std::string& out, char byte)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    out.push_back('%');
    out.push_back(kDigits[value >> 4U]);
    out.push_back(kDigits[value & 15U]);
}

std::string encodePercent(std::string_view text, std::string_view kept)
{
    return encode(text, kept, false);
}

std::string encodePercentOnce(std::string_view text, std::string_view kept)
{
    return encode(text, kept, true);
}

std::string encodePath(std::string_view path)
{
    return encodePercent(path, "-._~/+:@=,");
}

std::string encodeComponent(std::string_view text)
{
    return encodePercent(text, "-._~");
}

std::string decodePercent(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (beginsPercentEscape(text.substr(i))) {
            const int value = hexDigitValue(text[i + 1]) * 16 + hexDigitValue(text[i + 2]);
            out.push_back(static_cast<char>(static_cast<unsigned char>(value)));
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
    std::replace(blanks.begin(), blanks.end(), '+', ' ');
    return decodePercent(blanks);
}

} // namespace quarrynet

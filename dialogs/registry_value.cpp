#include "dialogs/registry_value.h"

namespace quarrynet {

namespace {

// Converts hexadecimal text of any length to decimal text. A value whose type is a number may have more than four
// bytes.
std::string decimalOfHex(std::string_view hex)
{
    std::string decimal = "0"; // the last digit first
    for (const char digit : hex) {
        int carry = digit <= '9' ? digit - '0' : digit - 'A' + 10;
        for (char& place : decimal) {
            const int value = (place - '0') * 16 + carry;
            place = static_cast<char>('0' + value % 10);
            carry = value / 10;
        }
        for (; carry > 0; carry /= 10)
            decimal += static_cast<char>('0' + carry % 10);
    }
    return {decimal.rbegin(), decimal.rend()};
}

} // namespace

std::string_view trimmedRegistryValue(std::string_view buffer, std::size_t size)
{
    std::string_view value = buffer.substr(0, size);
    if (!value.empty() && value.back() == '\0')
        value.remove_suffix(1);
    return value;
}

std::optional<std::string> registryValueText(std::uint32_t type, std::string_view trimmed)
{
    if (type == kRegistryText)
        return std::string(trimmed);
    if (type != kRegistryNumber)
        return std::nullopt;

    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string hex;
    for (auto byte = trimmed.rbegin(); byte != trimmed.rend(); ++byte) {
        const auto code = static_cast<unsigned char>(*byte);
        if (code >= 16)
            hex += kDigits[code >> 4U];
        hex += kDigits[code & 15U];
    }
    return decimalOfHex(hex);
}

} // namespace quarrynet

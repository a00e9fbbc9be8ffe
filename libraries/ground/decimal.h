#pragma once

#include <charconv>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>

#include "ground/ascii.h"

/// Decimal numbers, independent of the locale. No function here reads "inf", "nan", "0x10" or "1e3" as a number.
namespace quarrynet {

/// Returns the number of digits at the beginning of `text`.
constexpr std::size_t countLeadingDigits(std::string_view text)
{
    std::size_t length = 0;
    while (length < text.size() && isAsciiDigit(text[length]))
        ++length;
    return length;
}

/// Returns the number that `text` consists of, or nothing. `text` may contain only digits, and at most as many as
/// always fit: 9 for 32 bits, 18 for 64 bits.
template <class Integer>
std::optional<Integer> wholeNumberAs(std::string_view text)
{
    if (text.empty() || text.size() > static_cast<std::size_t>(std::numeric_limits<Integer>::digits10) ||
        countLeadingDigits(text) != text.size())
        return std::nullopt;
    Integer number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

inline std::optional<int> wholeNumber(std::string_view text)
{
    return wholeNumberAs<int>(text);
}

struct DecimalNumber
{
    double value;
    std::size_t length; ///< length in bytes
};

/// Returns the number at the beginning of `text`: an optional sign, digits, and at most one decimal point before,
/// between or after them. The value is the nearest double: infinity when it is too large, zero when it is too small.
/// Returns nothing when there is no digit.
std::optional<DecimalNumber> decimalNumber(std::string_view text);

} // namespace quarrynet

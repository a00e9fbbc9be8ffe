#pragma once

#include <charconv>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>

#include "ground/ascii.h"

/// Decimal numbers, read alike in every locale. No reader takes "inf", "nan", "0x10" or "1e3" for a number.
namespace quarrynet {

/// Returns the length of the run of digits that `text` begins with.
constexpr std::size_t countLeadingDigits(std::string_view text)
{
    std::size_t length = 0;
    while (length < text.size() && isAsciiDigit(text[length]))
        ++length;
    return length;
}

/// Returns the whole number that `text` consists of, or nothing. `text` is digits only, at most as many as always fit:
/// 9 for an int of 32 bits, 18 for 64 bits. No sign and no blanks.
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
    std::size_t length; ///< how many bytes of the text it takes
};

/// Returns the number that `text` begins with: an optional sign, digits, and at most one decimal point before, between
/// or behind them. The value is the double that is nearest to it; infinity when it is too large for a double, zero when
/// it is too small. Returns nothing when there is no digit.
std::optional<DecimalNumber> decimalNumber(std::string_view text);

} // namespace quarrynet

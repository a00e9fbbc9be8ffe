#include "ground/decimal.h"

#include <system_error>

namespace quarrynet {

std::optional<DecimalNumber> decimalNumber(std::string_view text)
{
    const std::size_t sign = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
    const std::string_view digits = text.substr(sign);
    const std::size_t whole = countLeadingDigits(digits);
    std::size_t length = whole;
    std::size_t fraction = 0;
    if (length < digits.size() && digits[length] == '.') {
        fraction = countLeadingDigits(digits.substr(length + 1));
        length += 1 + fraction;
    }
    if (whole + fraction == 0)
        return std::nullopt;
    double value = 0;
    const std::from_chars_result result =
        std::from_chars(digits.data(), digits.data() + length, value, std::chars_format::fixed);
    if (result.ec == std::errc::result_out_of_range) {
        const bool isLarge = digits.substr(0, whole).find_first_not_of('0') != std::string_view::npos;
        value = isLarge ? std::numeric_limits<double>::infinity() : 0;
    }
    return DecimalNumber{text[0] == '-' ? -value : value, sign + length};
}

} // namespace quarrynet

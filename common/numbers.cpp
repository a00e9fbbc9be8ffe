#include "common/numbers.h"

#include <cmath>
#include <limits>

#include "common/cutting.h"

namespace quarrynet {

namespace {

struct Scan
{
    double value;
    std::size_t used; // bytes that belong to the number
    bool digits;      // at least one digit was seen
};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// By hand, not by strtod: it would follow the locale's decimal point and take "inf", "nan" and "0x10" for numbers.
Scan scan(std::string_view text)
{
    std::size_t i = 0;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        negative = text[i++] == '-';
    double value = 0;
    bool digits = false;
    for (; i < text.size() && isDigit(text[i]); ++i) {
        value = value * 10 + (text[i] - '0');
        digits = true;
    }
    if (i < text.size() && text[i] == '.') {
        ++i;
        double unit = 0.1;
        for (; i < text.size() && isDigit(text[i]); ++i) {
            value += unit * (text[i] - '0');
            unit /= 10;
            digits = true;
        }
    }
    return {negative ? -value : value, i, digits};
}

template <class Integer>
Result<Integer> roundTo(double number)
{
    const double whole = std::nearbyint(number); // the default rounding mode is halves to even
    if (!(whole >= std::numeric_limits<Integer>::min() && whole <= std::numeric_limits<Integer>::max()))
        return RuntimeError::Overflow;
    return static_cast<Integer>(whole);
}

} // namespace

double leadingNumber(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return 0;
    const Scan number = scan(text.substr(first));
    return number.digits ? number.value : 0;
}

Result<double> strictNumber(std::string_view text)
{
    const std::string_view trimmed = trimBlanks(text);
    const Scan number = scan(trimmed);
    if (!number.digits || number.used != trimmed.size())
        return RuntimeError::TypeMismatch;
    return number.value;
}

Result<std::int16_t> roundToInt16(double number)
{
    return roundTo<std::int16_t>(number);
}

Result<std::int32_t> roundToInt32(double number)
{
    return roundTo<std::int32_t>(number);
}

} // namespace quarrynet

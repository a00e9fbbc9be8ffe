#include "common/numbers.h"

#include <cmath>
#include <limits>
#include <optional>

#include "common/cutting.h"
#include "ground/decimal.h"

namespace quarrynet {

namespace {

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
    const std::optional<DecimalNumber> number = decimalNumber(trimBlanks(text));
    return number ? number->value : 0;
}

Result<double> strictNumber(std::string_view text)
{
    const std::string_view trimmed = trimBlanks(text);
    const std::optional<DecimalNumber> number = decimalNumber(trimmed);
    if (!number || number->length != trimmed.size())
        return RuntimeError::TypeMismatch;
    return number->value;
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

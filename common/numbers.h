#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/runtime_error.h"

/// Conversions of text to numbers. Typed settings are read as far as they are a number. Figures cut out of pages must
/// be complete numbers; otherwise the cut was wrong.
namespace quarrynet {

/// Returns the leading number of `text`, after blanks: an optional sign, digits and at most one decimal point. Returns
/// 0 if there is none.
double leadingNumber(std::string_view text);

/// Returns `text` as a number (as above, with blanks around it allowed), or TypeMismatch if it is not one. An empty
/// text is not a number.
Result<double> strictNumber(std::string_view text);

/// Returns `number` rounded to the nearest whole number, halves to even, or Overflow when that does not fit.
Result<std::int16_t> roundToInt16(double number);
Result<std::int32_t> roundToInt32(double number);

} // namespace quarrynet

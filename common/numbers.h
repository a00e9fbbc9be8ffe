#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/runtime_error.h"

/// Texts to numbers. Two conversions, because the two kinds of text want opposite treatment: settings that people type
/// are read as far as they make sense, figures cut out of pages must be numbers or the cut went wrong.
namespace quarrynet {

/// The number that `text` begins with, after leading blanks: an optional sign, digits and at most one decimal point.
/// 0 when it begins with none. Never fails.
double leadingNumber(std::string_view text);

/// `text` as a whole is a number (as above, blanks around it allowed), or TypeMismatch. The empty text is no number.
Result<double> strictNumber(std::string_view text);

/// Rounded to the nearest whole number, halves to even; Overflow when that does not fit.
Result<std::int16_t> roundToInt16(double number);
Result<std::int32_t> roundToInt32(double number);

} // namespace quarrynet

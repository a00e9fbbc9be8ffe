#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ground/Expected.h"

namespace quarrynet {

/// The error of a step that failed. The error box shows these classic numbers, which users can look up.
enum class RuntimeError : std::uint8_t
{
    InvalidProcedureCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    PathFileAccess = 75,
};

/// Returns the error's description, in English ASCII, without a final full stop.
std::string_view describe(RuntimeError error);

/// Returns the text of the error box: "Run-time error 'N':", an empty line and the description. Lines end in LF.
std::string runtimeErrorText(RuntimeError error);

/// A value, or the error that prevented it. Faulty pages are normal input.
template <class T>
using Result = Expected<T, RuntimeError>;

} // namespace quarrynet

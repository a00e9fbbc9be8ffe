#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ground/Expected.h"

namespace quarrynet {

/// A step that could not be carried out. The numbers are the classic ones, which people can look up and which the error
/// box shows.
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

/// The description that belongs to the number, in English ASCII, without a final full stop.
std::string_view describe(RuntimeError error);

/// The text of the error box: "Run-time error 'N':", an empty line and the description. Lines end in LF.
std::string runtimeErrorText(RuntimeError error);

/// A value, or the fault that kept it from being made. Faults in pages are ordinary.
template <class T>
using Result = Expected<T, RuntimeError>;

} // namespace quarrynet

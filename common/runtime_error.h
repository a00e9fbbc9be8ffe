#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

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

/// A value, or the fault that kept it from being made. Faults in pages are ordinary, so they are values: nothing
/// throws.
template <class T>
class Result
{
public:
    Result(T value) : content_(std::move(value)) {}
    Result(RuntimeError error) : content_(error) {}

    explicit operator bool() const { return std::holds_alternative<T>(content_); }

    /// Only where the result holds a value.
    const T& operator*() const { return *std::get_if<T>(&content_); }
    const T* operator->() const { return std::get_if<T>(&content_); }

    /// Only where the result holds a fault.
    RuntimeError error() const { return *std::get_if<RuntimeError>(&content_); }

private:
    std::variant<T, RuntimeError> content_;
};

} // namespace quarrynet

#include "common/runtime_error.h"

namespace quarrynet {

std::string_view describe(RuntimeError error)
{
    switch (error) {
    case RuntimeError::InvalidProcedureCall:
        return "Invalid procedure call or argument";
    case RuntimeError::Overflow:
        return "Overflow";
    case RuntimeError::OutOfMemory:
        return "Out of memory";
    case RuntimeError::SubscriptOutOfRange:
        return "Subscript out of range";
    case RuntimeError::DivisionByZero:
        return "Division by zero";
    case RuntimeError::TypeMismatch:
        return "Type mismatch";
    case RuntimeError::PathFileAccess:
        return "Path/File access error";
    }
    return "Application-defined error";
}

std::string runtimeErrorText(RuntimeError error)
{
    std::string text = "Run-time error '" + std::to_string(static_cast<int>(error)) + "':\n\n";
    text += describe(error);
    return text;
}

} // namespace quarrynet

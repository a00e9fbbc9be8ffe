#pragma once

#include <string>
#include <utility>
#include <variant>

/// What the services' functions give back when they can fail for reasons that a person has to read: a value, or one
/// English sentence without a final full stop. Nothing here throws.
namespace quarrynet::services {

struct Failure
{
    std::string message;
};

template <class T>
class Outcome
{
public:
    Outcome(T value) : content_(std::move(value)) {}
    Outcome(Failure failure) : content_(std::move(failure)) {}

    explicit operator bool() const { return std::holds_alternative<T>(content_); }

    /// Only where there is a value.
    T& operator*() { return *std::get_if<T>(&content_); }
    const T& operator*() const { return *std::get_if<T>(&content_); }
    T* operator->() { return std::get_if<T>(&content_); }
    const T* operator->() const { return std::get_if<T>(&content_); }

    /// Only where there is none.
    const Failure& failure() const { return *std::get_if<Failure>(&content_); }

private:
    std::variant<T, Failure> content_;
};

/// An outcome that carries nothing but success.
struct Done
{};

} // namespace quarrynet::services

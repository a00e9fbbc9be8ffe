#pragma once

#include <utility>
#include <variant>

namespace quarrynet {

/// A value or an error. Errors are expected here, so they are returned and not thrown.
template <class T, class E>
class Expected
{
public:
    Expected(T value) : content_(std::move(value)) {}
    Expected(E error) : content_(std::move(error)) {}

    explicit operator bool() const { return std::holds_alternative<T>(content_); }

    /// Call these only when there is a value.
    T& operator*() { return *std::get_if<T>(&content_); }
    const T& operator*() const { return *std::get_if<T>(&content_); }
    T* operator->() { return std::get_if<T>(&content_); }
    const T* operator->() const { return std::get_if<T>(&content_); }

    /// Call this only when there is no value.
    const E& error() const { return *std::get_if<E>(&content_); }

private:
    std::variant<T, E> content_;
};

} // namespace quarrynet

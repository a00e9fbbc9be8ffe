#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quarrynet::services {

/// The encodings of pages, by the names that pages use for them (the labels of the Encoding Standard). A label may have
/// blanks around it; ASCII letters compare without case.
class PageEncoding
{
public:
    /// Nothing for a label that is not known.
    static std::optional<PageEncoding> named(std::string_view label);

    /// Returns what the byte order mark at the beginning of `page` says; nothing without one.
    static std::optional<PageEncoding> byMark(std::string_view page);

    /// Returns `bytes` as UTF-8, without a byte order mark. What cannot be in this encoding becomes U+FFFD. Nothing
    /// where the system does not know the encoding.
    std::optional<std::string> toUtf8(std::string_view bytes) const;

    /// The system's name for it.
    std::string_view name() const { return name_; }

private:
    explicit PageEncoding(const char* name) : name_(name) {}

    const char* name_;
};

} // namespace quarrynet::services

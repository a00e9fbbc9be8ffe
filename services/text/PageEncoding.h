#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quarrynet::services {

/// An encoding of pages. Pages name it by a label of the Encoding Standard. Labels may be surrounded by blanks, and
/// ASCII letters in them are case-insensitive.
class PageEncoding
{
public:
    /// Returns nothing for an unknown label.
    static std::optional<PageEncoding> named(std::string_view label);

    /// Returns the encoding of the byte order mark at the beginning of `page`, or nothing without one.
    static std::optional<PageEncoding> byMark(std::string_view page);

    /// Returns `bytes` as UTF-8 without a byte order mark. Sequences that are invalid in this encoding become U+FFFD.
    /// Returns nothing when the system does not support the encoding.
    std::optional<std::string> toUtf8(std::string_view bytes) const;

    /// Returns the system's name of the encoding.
    std::string_view name() const { return name_; }

private:
    explicit PageEncoding(const char* name) : name_(name) {}

    const char* name_;
};

} // namespace quarrynet::services

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quarrynet {

/// A character in UTF-8 (RFC 3629).
struct Utf8Character
{
    char32_t number;    // 0 to 0x10FFFF, no surrogate
    std::size_t length; // of its sequence in bytes, 1 to 4

    bool operator==(const Utf8Character&) const = default;
};

/// The character that `bytes` begins with. Nothing when they are empty or begin with no whole well-formed sequence as
/// RFC 3629 section 4 lists them: a lone continuation byte, a sequence that is cut off, one longer than its character
/// needs, a surrogate, or a number above 0x10FFFF.
std::optional<Utf8Character> utf8Character(std::string_view bytes);

/// Puts the sequence of the character with this number, which is one that utf8Character() gives, behind `out`.
void appendUtf8(std::string& out, char32_t number);

} // namespace quarrynet

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// UTF-8 as RFC 3629 defines it: no overlong forms, no surrogates, nothing above U+10FFFF.
namespace quarrynet {

struct Utf8Character
{
    char32_t number;    ///< 0 to 0x10FFFF, not a surrogate
    std::size_t length; ///< bytes in its sequence, 1 to 4

    bool operator==(const Utf8Character&) const = default;
};

/// Returns the first character of `bytes`, or nothing when `bytes` does not begin with a complete well-formed sequence.
std::optional<Utf8Character> utf8Character(std::string_view bytes);

/// Returns whether `byte` is a continuation byte of a sequence.
inline bool isUtf8Continuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Returns whether `bytes` is well-formed UTF-8.
bool isUtf8(std::string_view bytes);

/// Returns `bytes` unchanged if they are well-formed UTF-8; otherwise decodes them as Latin-1.
std::string toUtf8(std::string_view bytes);

/// Returns `bytes` with U+FFFD in place of every byte that is not in a well-formed sequence.
std::string withoutBrokenCharacters(std::string_view bytes);

/// Appends the character with this number, or U+FFFD if there is none.
void appendUtf8(std::string& text, char32_t number);

/// Returns whether a character is an explicit formatting character of the Unicode Bidirectional Algorithm (section 2):
/// it is invisible, and turns the direction in which the text around it is displayed.
constexpr bool turnsDirection(char32_t number)
{
    return number == 0x061C || number == 0x200E || number == 0x200F || (number >= 0x202A && number <= 0x202E) ||
           (number >= 0x2066 && number <= 0x2069);
}

/// Returns the longest prefix of the UTF-8 `text` with at most `bytes` bytes that does not end inside a character.
std::string_view clipUtf8(std::string_view text, std::size_t bytes);

} // namespace quarrynet

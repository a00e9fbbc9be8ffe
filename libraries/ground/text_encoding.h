#pragma once

#include <string>
#include <string_view>

namespace quarrynet::services {

/// Whether `bytes` are well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates, nothing above U+10FFFF).
bool isUtf8(std::string_view bytes);

/// `bytes` as UTF-8: unchanged when they are well-formed, else every byte taken as one Latin-1 character.
std::string toUtf8(std::string_view bytes);

/// `bytes` with U+FFFD in place of every byte that belongs to no well-formed character.
std::string withoutBrokenCharacters(std::string_view bytes);

/// Appends the character with this number as UTF-8; U+FFFD for a number that is none.
void appendUtf8(std::string& text, char32_t character);

/// The longest beginning of the UTF-8 `text` that has at most `bytes` bytes and does not end inside a character.
std::string_view clipUtf8(std::string_view text, std::size_t bytes);

} // namespace quarrynet::services

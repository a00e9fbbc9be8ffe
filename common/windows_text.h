#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Windows only: text in the system's ANSI code page and in UTF-8, and the UTF-16 text and paths that the system's own
/// calls take.
namespace quarrynet {

/// Returns whether the system's code page is UTF-8, which an administrator can choose.
bool codePageIsUtf8();

/// Returns whether a letter of two bytes can begin with `byte`, in a code page other than UTF-8.
bool beginsLongLetter(char byte);

/// Returns how many bytes of `text`, which is not empty and in a code page other than UTF-8, lowerCaseInCodePage maps
/// together: 1 or 2.
std::size_t codePageLetterLength(std::string_view text);

/// Returns `text`, in a code page other than UTF-8, with each letter in lower case. A letter whose lower case the code
/// page lacks, or which has another length there, stays, as do invalid bytes.
std::string lowerCaseInCodePage(std::string_view text);

/// Returns `letter` in lower case, independently of its neighbours and of the user's language. Letters beyond U+FFFF
/// stay.
char32_t lowerCaseLetter(char32_t letter);

/// Decodes the system's code page. Every byte that is invalid there becomes the Latin-1 character of its value.
std::wstring wideFromCodePage(std::string_view bytes);

/// Encodes in the system's code page. Every character that it lacks becomes "?", never a similar one: a character that
/// turned into a quote or a slash would change the meaning of the text around it.
std::string codePageFromWide(std::wstring_view text);

/// Decodes UTF-8, such as the path of a file. Invalid bytes become U+FFFD.
std::wstring wideFromUtf8(std::string_view bytes);

/// Encodes in UTF-8. An unpaired surrogate becomes U+FFFD.
std::string utf8FromWide(std::wstring_view text);

/// Returns a path as an absolute one in the form that has no limit of 260 characters.
std::wstring longPath(const std::wstring& path);

} // namespace quarrynet

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quarrynet {

/// Returns `text` with every letter in lower case, for case-insensitive comparisons. The encoding is the system's: the
/// ANSI code page on Windows, UTF-8 (RFC 3629) elsewhere. Invalid UTF-8 bytes are read as Latin-1 and returned as
/// UTF-8, so that texts that show the same letters compare equal; bytes that another code page lacks stay. Each letter
/// is mapped to one letter, independently of its neighbours. ASCII bytes other than A to Z, including NUL, stay
/// unchanged. The result does not depend on the program's locale. The function is idempotent.
std::string lowerCase(std::string_view text);

/// Returns the first index from `at` on (0 to the text's length) at which `text` can be split so that lowerCase of the
/// parts, concatenated, equals lowerCase of the whole. In a code page with letters of two bytes, the search goes back
/// to the last byte that cannot begin such a letter, so its cost can be that of reading `at` bytes.
std::size_t letterBoundary(std::string_view text, std::size_t at);

} // namespace quarrynet

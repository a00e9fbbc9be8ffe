#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quarrynet {

/// `text` with every letter in lower case, for comparisons without regard to case. The encoding is the system's: the
/// ANSI code page on Windows; elsewhere UTF-8 (RFC 3629), where bytes that are no valid UTF-8 count as Latin-1 and come
/// out as UTF-8, so that two texts that show the same letters compare equal. Letters are mapped one by one: no letter
/// becomes two, and none depends on its neighbours. Bytes below 128 other than A to Z, NUL included, stay. The result
/// does not depend on the locale that the program runs in. Applied to its result it changes nothing more.
std::string lowerCase(std::string_view text);

/// The first position from `at` on (0 to the text's length) at which `text` can be cut in two so that lowerCase of both
/// parts, put together, is lowerCase of the whole.
std::size_t letterBoundary(std::string_view text, std::size_t at);

} // namespace quarrynet

#pragma once

#include <cstdint>
#include <string_view>

#include "common/runtime_error.h"

/// Searching and cutting in texts by 1-based positions: the whole vocabulary of the result parsers. Texts are bytes,
/// and a position counts bytes: the first one is 1, and 0 means "not found".
namespace quarrynet {

using Position = std::int64_t;

/// The position of the first `marker` that begins at or after `from`; 0 when there is none. A `from` below 1 searches
/// from the start, one beyond the end finds nothing. An empty marker is found at `from` itself while that is no further
/// than just behind the last byte. Case-sensitive.
Position findMarker(std::string_view text, std::string_view marker, Position from);

/// The text from position `start` of length `length`, as a view into `text`. What lies beyond the end is missing from
/// the result, so it may be shorter, or empty. Fails with InvalidProcedureCall when `start` is below 1 or `length` is
/// negative: that is how a parser learns that a marker was missing.
Result<std::string_view> cut(std::string_view text, Position start, Position length);

/// The text from position `start` to the end; empty beyond it. A `start` below 1 counts as 1.
std::string_view cutFrom(std::string_view text, Position start);

/// `text` without the blanks (the byte 32 only, not tabs or line ends) at both its ends.
std::string_view trimBlanks(std::string_view text);

} // namespace quarrynet

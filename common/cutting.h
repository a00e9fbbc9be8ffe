#pragma once

#include <cstdint>
#include <string_view>

#include "common/runtime_error.h"

/// The functions that result parsers use to search and cut texts. Texts are bytes. Positions count bytes from 1, and 0
/// means "not found".
namespace quarrynet {

using Position = std::int64_t;

/// Returns the position of the first `marker` that begins at or after `from`, or 0 if there is none. Case-sensitive. A
/// `from` below 1 searches from the start; one after the end finds nothing. An empty marker is found at `from` itself,
/// up to the position just after the last byte.
Position findMarker(std::string_view text, std::string_view marker, Position from);

/// Returns a view of the `length` bytes of `text` from position `start`, or fewer if `text` ends before. Returns
/// InvalidProcedureCall when `start` is below 1 or `length` is negative; parsers rely on this to detect a missing
/// marker.
Result<std::string_view> cut(std::string_view text, Position start, Position length);

/// Returns a view of `text` from position `start` to the end, empty if `start` is after it. A `start` below 1 counts as
/// 1.
std::string_view cutFrom(std::string_view text, Position start);

/// Returns a view of `text` without the blanks (byte 32 only, not tabs or line ends) at both ends.
std::string_view trimBlanks(std::string_view text);

} // namespace quarrynet

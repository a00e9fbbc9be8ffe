#pragma once

#include "ground/Outcome.h"
#include "index/sqlite.h"

namespace quarrynet::services {

/// Maximum size of an excerpt's text, whatever its words are like.
inline constexpr int kMaxExcerptBytes = 4096;

/// Adds the SQL function excerpt(TABLE, COLUMN, WORDS) for full-text tables. It returns the part of the column's text,
/// at most WORDS words, with the most matches; each match is between char(1) and char(2), and "..." marks omitted text.
/// The cost is proportional to the length of the text and the number of matches; that of the functions snippet() and
/// highlight() is proportional to the square.
Outcome<Done> addExcerpt(Database& database);

} // namespace quarrynet::services

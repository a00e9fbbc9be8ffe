#pragma once

#include "ground/Outcome.h"
#include "index/sqlite.h"

namespace quarrynet::services {

/// An excerpt is no longer than this, whatever the text's words are like.
inline constexpr int kMaxExcerptBytes = 4096;

/// Adds the SQL function excerpt(TABLE, COLUMN, WORDS) for full-text tables: the part of the column's text, at most
/// WORDS words, that has the most of what was searched for, each match between char(1) and char(2), with "..." where
/// text was left out. The cost is proportional to the length of the text and the number of matches; that of the
/// functions snippet() and highlight() is proportional to the square.
Outcome<Done> addExcerpt(Database& database);

} // namespace quarrynet::services

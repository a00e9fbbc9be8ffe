#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "ground/Outcome.h"
#include "index/database.h"
#include "index/sqlite.h"

/// What the web, image and download searches do alike: typed words against a full-text table of the index, counted, and
/// one page of them read.
namespace quarrynet::services {

/// Where a search looks. No text here ever holds anything that was typed.
struct WordTable
{
    const char* nameColumn; ///< column of the full-text table that has the names
    const char* count;      ///< SQL that counts the matches of ?1
    /// SQL that gives the matches of ?1, best first, ?2 of them after the first ?3. Names from ?4 to ?5 begin with what
    /// was typed; both are NULL when that can be no name. Rows numbered from ?6 on go behind others.
    const char* rows;
    std::int64_t pageSize;
};

/// Returns how many rows match `typed` (as people typed it, see wordQuery()); none where it holds no word. Gives those
/// of the page after the first `start` to `take`, best first.
Outcome<std::int64_t> searchWords(IndexPool& pool, const WordTable& table, std::string_view typed, std::int64_t start,
                                  const std::function<void(Statement&)>& take);

} // namespace quarrynet::services

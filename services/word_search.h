#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "services/index_database.h"
#include "services/outcome.h"
#include "services/sqlite.h"

/// What the web, image and download searches do alike: typed words against a full-text table of the index, counted, and
/// one page of them read.
namespace quarrynet::services {

/// Where a search looks. Neither text ever holds anything that was typed.
struct WordTable
{
    const char* count; ///< SQL that counts the matches of ?1
    const char* rows;  ///< SQL that gives the matches of ?1, best first, ?2 of them after the first ?3
    std::int64_t pageSize;
};

/// How many rows match `typed` (UTF-8, as people typed it); none where it holds no word. Those of the page after the
/// first `start` are handed to `take`, best first.
Outcome<std::int64_t> searchWords(IndexPool& pool, const WordTable& table, std::string_view typed, std::int64_t start,
                                  const std::function<void(Statement&)>& take);

} // namespace quarrynet::services

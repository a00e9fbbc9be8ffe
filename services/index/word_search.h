#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "ground/Outcome.h"
#include "index/database.h"
#include "index/sqlite.h"

/// Shared by the web, image and download searches: matches typed words against a full-text table of the index, counts
/// the matches and reads one page of them.
namespace quarrynet::services {

/// The queries of one search. No text here ever contains typed text.
struct WordTable
{
    const char* nameColumn; ///< column of the full-text table with the names
    const char* count;      ///< SQL that counts the matches of ?1
    /// SQL that returns the matches of ?1, best first, ?2 of them after the first ?3. Names from ?4 to ?5 begin with
    /// the typed text; both are NULL when that cannot be a name. Rows numbered from ?6 on rank behind others.
    const char* rows;
    std::int64_t pageSize;
};

/// Returns the number of rows that match `typed` (see wordQuery()); 0 when it contains no word. Passes those of the
/// page after the first `start` to `take`, best first.
Outcome<std::int64_t> searchWords(IndexPool& pool, const WordTable& table, std::string_view typed, std::int64_t start,
                                  const std::function<void(Statement&)>& take);

/// One page of a search's results.
template <class Hit>
struct WordAnswer
{
    std::int64_t total = 0;
    std::int64_t start = 0; ///< number of results before this page
    double seconds = 0;     ///< duration of the search
    std::vector<Hit> hits;
};

/// Returns the page after the first `start` matches of `typed`, each made by `hitOf` from its row.
template <class Hit, class HitOf>
Outcome<WordAnswer<Hit>> findPage(IndexPool& pool, const WordTable& table, std::string_view typed, std::int64_t start,
                                  const HitOf& hitOf)
{
    const auto begin = std::chrono::steady_clock::now();
    WordAnswer<Hit> answer;
    answer.start = start;
    const Outcome<std::int64_t> total =
        searchWords(pool, table, typed, start, [&](Statement& row) { answer.hits.push_back(hitOf(row)); });
    if (!total)
        return total.error();
    answer.total = *total;
    answer.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return answer;
}

} // namespace quarrynet::services

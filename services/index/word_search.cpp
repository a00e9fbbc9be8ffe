#include "index/word_search.h"

#include <limits>
#include <string>

#include "index/query.h"

namespace quarrynet::services {

Outcome<std::int64_t> searchWords(IndexPool& pool, const WordTable& table, std::string_view typed, std::int64_t start,
                                  const std::function<void(Statement&)>& take)
{
    Outcome<IndexPool::Lease> index = pool.borrow();
    if (!index)
        return index.error();
    const WordQuery query = wordQuery(typed, table.nameColumn);
    if (query.expression.empty())
        return std::int64_t{0};

    Outcome<Statement> count = (*index)->prepare(table.count);
    if (!count)
        return count.error();
    count->bind(1, query.expression);
    if (count->step() != Statement::Step::Row)
        return count->failure();

    Outcome<Statement> rows = (*index)->prepare(table.rows);
    if (!rows)
        return rows.error();
    rows->bind(1, query.expression);
    rows->bind(2, table.pageSize);
    rows->bind(3, start);
    if (!query.name.empty()) {
        rows->bind(4, query.name);
        rows->bind(5, query.nameEnd);
    }
    rows->bind(6, query.companions ? std::numeric_limits<std::int64_t>::max() : kFirstCompanion);
    Statement::Step step = rows->step();
    for (; step == Statement::Step::Row; step = rows->step())
        take(*rows);
    if (step == Statement::Step::Failed)
        return rows->failure();
    return count->number(0);
}

} // namespace quarrynet::services

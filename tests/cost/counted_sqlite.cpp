#include <cstdint>

#include <sqlite3.h>

#include "tests/cost/step_counter.h"

/// Counts SQLite's work: the operations of its virtual machine, and the pages that it accesses. counted_memory.cpp
/// counts the bytes that it copies. The linker redirects the calls here (--wrap).
extern "C" int __real_sqlite3_step(sqlite3_stmt* statement);
extern "C" int __wrap_sqlite3_step(sqlite3_stmt* statement);

namespace {

constexpr std::uint64_t kStepsOfAPage = 64; // roughly the cost of a search for a row in a page

std::uint64_t pagesSeen(sqlite3* database)
{
    std::uint64_t pages = 0;
    for (const int counter : {SQLITE_DBSTATUS_CACHE_HIT, SQLITE_DBSTATUS_CACHE_MISS, SQLITE_DBSTATUS_CACHE_WRITE}) {
        int count = 0;
        int highest = 0;
        if (sqlite3_db_status(database, counter, &count, &highest, 0) == SQLITE_OK)
            pages += static_cast<std::uint64_t>(count);
    }
    return pages;
}

} // namespace

int __wrap_sqlite3_step(sqlite3_stmt* statement)
{
    sqlite3* const database = sqlite3_db_handle(statement);
    const std::uint64_t pages = pagesSeen(database);
    const int operations = sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_VM_STEP, 0);
    const int result = __real_sqlite3_step(statement);
    quarrynet::cost::countSteps(
        static_cast<std::uint64_t>(sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_VM_STEP, 0) - operations) +
        kStepsOfAPage * (pagesSeen(database) - pages));
    return result;
}

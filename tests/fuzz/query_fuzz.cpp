#include <string>

#include "index/query.h"
#include "index/sqlite.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

Database& index()
{
    static Database database = [] {
        Outcome<Database> opened = Database::open(":memory:", Database::Access::Create);
        fuzz::check(bool(opened), "the database in memory opens");
        Database made = std::move(*opened);
        fuzz::check(bool(made.execute("CREATE VIRTUAL TABLE words USING fts5(text);"
                                      "CREATE VIRTUAL TABLE names USING fts5(name, tokenize = 'trigram');"
                                      "INSERT INTO words VALUES ('a text editor');"
                                      "INSERT INTO names VALUES ('editor_1.0.deb');")),
                    "its tables are created");
        return made;
    }();
    return database;
}

void checkRuns(const char* sql, const std::string& expression)
{
    Outcome<Statement> statement = index().prepare(sql);
    fuzz::check(bool(statement), "the statement compiles");
    statement->bind(1, expression);
    Statement::Step step = Statement::Step::Row;
    while (step == Statement::Step::Row)
        step = statement->step();
    fuzz::check(step == Statement::Step::Finished, "any typed text becomes a valid expression");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view typed = fuzz::textOf(data, size);
    if (const std::string expression = wordExpression(typed); !expression.empty())
        checkRuns("SELECT rowid FROM words WHERE words MATCH ?", expression);
    const NameQuery names = nameQuery(typed);
    if (!names.expression.empty())
        checkRuns("SELECT rowid FROM names WHERE names MATCH ?", names.expression);
    for (const std::string& pattern : names.patterns)
        checkRuns("SELECT rowid FROM names WHERE name LIKE ? ESCAPE '\\'", pattern);
    return 0;
}

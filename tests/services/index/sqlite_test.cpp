#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "index/sqlite.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;
using namespace std::string_literals;

TEST(Database, ValuesComeBackAsTheyWereBound)
{
    Outcome<Database> database = Database::open(":memory:", Database::Access::Create);
    ASSERT_TRUE(database);
    ASSERT_TRUE(database->execute("CREATE TABLE t(a, b, c)"));
    Outcome<Statement> insert = database->prepare("INSERT INTO t VALUES (?1, ?2, ?3)");
    ASSERT_TRUE(insert);
    const std::string text = "'); DROP TABLE t; --\0\xff"s;
    insert->bind(1, text);
    insert->bind(2, std::int64_t{1} << 40);
    insert->bind(3, std::optional<std::int64_t>());
    ASSERT_TRUE(insert->run());
    EXPECT_EQ(database->lastRowId(), 1);
    Outcome<Statement> select = database->prepare("SELECT a, b, c FROM t");
    ASSERT_EQ(select->step(), Statement::Step::Row);
    EXPECT_EQ(select->text(0), text);
    EXPECT_EQ(select->number(1), std::int64_t{1} << 40);
    EXPECT_TRUE(select->isNull(2));
    EXPECT_EQ(select->text(2), "");
    EXPECT_EQ(select->step(), Statement::Step::Finished);
}

TEST(Database, EmptyTextIsNotNull)
{
    Outcome<Database> database = Database::open(":memory:", Database::Access::Create);
    Outcome<Statement> select = database->prepare("SELECT ?1 IS NULL, length(?1)");
    select->bind(1, std::string_view());
    ASSERT_EQ(select->step(), Statement::Step::Row);
    EXPECT_EQ(select->number(0), 0);
    EXPECT_EQ(select->number(1), 0);
}

TEST(Database, FaultsSayWhatIsWrong)
{
    const TemporaryFolder folder;
    EXPECT_FALSE(Database::open(folder.path() + "/none/x", Database::Access::Create));
    EXPECT_FALSE(Database::open(folder.path() + "/none", Database::Access::Read));
    Outcome<Database> database = Database::open(folder.write("text", std::string(5000, 'x')), Database::Access::Read);
    ASSERT_TRUE(database);
    const Outcome<Statement> select = database->prepare("SELECT * FROM sqlite_schema");
    ASSERT_FALSE(select);
    EXPECT_NE(select.error().message.find("not a database"), std::string::npos);
}

// Root writes into a folder of the services' user. Once a link there led it to any file of the system.
TEST(Database, ALinkInPlaceOfTheFileIsRefusedAndOneToItsFolderIsNot)
{
    const TemporaryFolder folder;
    const std::string base = folder.path();
    std::filesystem::create_directory(base + "/elsewhere");
    std::filesystem::create_symlink(base + "/elsewhere/made", base + "/link");
    Outcome<Database> refused = Database::open(base + "/link", Database::Access::Create);
    EXPECT_FALSE(refused && refused->execute("CREATE TABLE t(a)"));
    EXPECT_FALSE(std::filesystem::exists(base + "/elsewhere/made"));
    std::filesystem::create_directory_symlink(base + "/elsewhere", base + "/folder");
    Outcome<Database> made = Database::open(base + "/folder/index", Database::Access::Create);
    ASSERT_TRUE(made);
    EXPECT_TRUE(made->execute("CREATE TABLE t(a)"));
    EXPECT_TRUE(std::filesystem::exists(base + "/elsewhere/index"));
}

TEST(Database, FaultOfAStatementLeavesItUsable)
{
    Outcome<Database> database = Database::open(":memory:", Database::Access::Create);
    ASSERT_TRUE(database->execute("CREATE TABLE t(a UNIQUE)"));
    EXPECT_FALSE(database->execute("nonsense"));
    Outcome<Statement> insert = database->prepare("INSERT INTO t VALUES (?1)");
    for (const bool first : {true, false}) {
        insert->bind(1, std::int64_t{1});
        EXPECT_EQ(static_cast<bool>(insert->run()), first);
    }
    insert->bind(1, std::int64_t{2});
    EXPECT_TRUE(insert->run());
}

#include <algorithm>

#include <gtest/gtest.h>

#include "index/excerpt.h"
#include "text/markup.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

class Excerpts : public ::testing::Test
{
protected:
    /// Returns the excerpt of `text` with matches in brackets, or "!" on a failure.
    static std::string of(const std::string& text, const std::string& searched, int words)
    {
        Outcome<Database> database = Database::open(":memory:", Database::Access::Create);
        if (!database || !addExcerpt(*database) ||
            !database->execute("CREATE VIRTUAL TABLE t USING fts5(a, b, tokenize='porter unicode61')"))
            return "!";
        Outcome<Statement> insert = database->prepare("INSERT INTO t VALUES ('here nothing', ?1)");
        insert->bind(1, text);
        Outcome<Statement> select = database->prepare("SELECT excerpt(t, 1, ?2) FROM t WHERE t MATCH ?1");
        if (!insert->run() || !select)
            return "!";
        select->bind(1, searched);
        select->bind(2, std::int64_t{words});
        if (select->step() != Statement::Step::Row)
            return "!";
        std::string shown(select->text(0));
        std::replace(shown.begin(), shown.end(), kMatchBegin, '[');
        std::replace(shown.begin(), shown.end(), kMatchEnd, ']');
        return shown;
    }

    static std::string numbers(int from, int to)
    {
        std::string text;
        for (int i = from; i < to; ++i)
            text.append(i == from ? "" : " ").append(std::to_string(i));
        return text;
    }
};

} // namespace

TEST_F(Excerpts, ShortTextsAreShownWholeWithTheirMatches)
{
    EXPECT_EQ(of("A red, red apple!", "red", 32), "A [red], [red] apple!");
    EXPECT_EQ(of("(apple)", "apple", 1), "([apple])");
    EXPECT_EQ(of("grown apples", "apple", 32), "grown [apples]");
    EXPECT_EQ(of("\xC3\x84pfel und Birnen", "birnen", 32), "\xC3\x84pfel und [Birnen]");
    EXPECT_EQ(of("", "here", 32), "");
    EXPECT_EQ(of("...", "here", 32), "...");
    EXPECT_EQ(of("some text", "here", 32), "some text");
}

TEST_F(Excerpts, PhrasesAreMarkedOnceAndNeighboursEach)
{
    EXPECT_EQ(of("a red apple a day", "\"red apple\"", 32), "a [red apple] a day");
    EXPECT_EQ(of("a red apple a day", "red apple", 32), "a [red] [apple] a day");
    EXPECT_EQ(of("a red apple a day", "\"a red\" + apple OR \"red apple a\"", 32), "[a red apple a] day");
}

TEST_F(Excerpts, LongTextsAreCutAroundTheMatches)
{
    EXPECT_EQ(of(numbers(0, 1000), "500", 5), "...498 499 [500] 501 502...");
    EXPECT_EQ(of(numbers(0, 1000), "0", 3), "[0] 1 2...");
    EXPECT_EQ(of(numbers(0, 1000), "999", 3), "...997 998 [999]");
    EXPECT_EQ(of(numbers(0, 1000), "here", 3), "0 1 2...");
    EXPECT_EQ(of(numbers(0, 1000), "\"500 501 502 503\"", 2), "...[500 501]...");
}

TEST_F(Excerpts, DifferentWordsGoBeforeManyOfOne)
{
    const std::string text = "red red red red " + numbers(0, 100) + " red apple " + numbers(100, 200);
    EXPECT_EQ(of(text, "red apple", 4), "...99 [red] [apple] 100...");
}

TEST_F(Excerpts, AnExcerptIsBoundedInBytes)
{
    EXPECT_LE(of(std::string(100000, 'x') + " apple", "apple", 32).size(), kMaxExcerptBytes + 20U);
    EXPECT_LE(of("apple " + std::string(100000, 'x'), "apple", 32).size(), kMaxExcerptBytes + 20U);
    EXPECT_LE(of("apple" + std::string(100000, '.'), "apple", 32).size(), kMaxExcerptBytes + 20U);
    EXPECT_LE(of("apple" + std::string(100000, '.') + "x", "apple", 32).size(), kMaxExcerptBytes + 20U);
    EXPECT_EQ(of(std::string(100000, '.') + "apple", "apple", 32), "...");
}

TEST_F(Excerpts, WithoutItsTwoNumbersItFails)
{
    Outcome<Database> database = Database::open(":memory:", Database::Access::Create);
    ASSERT_TRUE(addExcerpt(*database));
    ASSERT_TRUE(database->execute("CREATE VIRTUAL TABLE t USING fts5(a); INSERT INTO t VALUES ('x')"));
    EXPECT_FALSE(database->execute("SELECT excerpt(t, 0) FROM t WHERE t MATCH 'x'"));
    EXPECT_FALSE(database->execute("SELECT excerpt(t, 7, 5) FROM t WHERE t MATCH 'x'"));
    EXPECT_TRUE(database->execute("SELECT excerpt(t, 0, -5) FROM t WHERE t MATCH 'x'"));
}

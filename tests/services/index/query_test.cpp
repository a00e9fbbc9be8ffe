#include <random>

#include <gtest/gtest.h>

#include "ground/utf8.h"
#include "index/query.h"
#include "index/sqlite.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

/// A full-text table of names, and the number of rows that a query finds in it (-1 if the expression is rejected).
class Names
{
public:
    explicit Names(const char* tokenizer) : database_(std::move(*Database::open(":memory:", Database::Access::Create)))
    {
        const std::string sql = std::string("CREATE VIRTUAL TABLE name USING fts5(text, tokenize='") + tokenizer + "')";
        EXPECT_TRUE(database_.execute(sql.c_str()));
    }

    void add(std::string_view text)
    {
        Outcome<Statement> insert = database_.prepare("INSERT INTO name(text) VALUES (?1)");
        insert->bind(1, text);
        EXPECT_TRUE(insert->run());
    }

    int find(std::string_view expression)
    {
        Outcome<Statement> select = database_.prepare("SELECT count(*) FROM name WHERE name MATCH ?1");
        select->bind(1, expression);
        return select->step() == Statement::Step::Row ? static_cast<int>(select->number(0)) : -1;
    }

private:
    Database database_;
};

} // namespace

TEST(WordExpression, WordsMustAllOccur)
{
    EXPECT_EQ(wordExpression("red apple"), "\"red\" \"apple\"");
    Names names("unicode61");
    names.add("a red apple");
    names.add("a red car");
    EXPECT_EQ(names.find(wordExpression("red")), 2);
    EXPECT_EQ(names.find(wordExpression("apple red")), 1);
    EXPECT_EQ(names.find(wordExpression("apple car")), 0);
}

TEST(WordQuery, NamesThatBeginWithWhatWasTypedAreFoundToo)
{
    Names names("porter unicode61");
    names.add("python3 requests");
    names.add("the python requests");
    names.add("requests");
    const WordQuery query = wordQuery("Python", "text");
    EXPECT_EQ(query.name, "python");
    EXPECT_LT("python3", query.nameEnd);
    EXPECT_LT(std::string("python\xf0\x9f\x98\x80"), query.nameEnd);
    EXPECT_EQ(names.find(query.expression), 2);
    EXPECT_EQ(names.find(wordQuery("pyth", "text").expression), 1);
    EXPECT_EQ(wordQuery("python3  reque", "text").name, "python3-reque");
    EXPECT_EQ(names.find(wordQuery("python3 reque", "text").expression), 1);
    EXPECT_EQ(names.find(wordQuery("pyth -requests", "text").expression), 0);
    EXPECT_EQ(wordQuery("pyth -requests", "text").name, "pyth");
}

TEST(WordQuery, WhatCanBeNoNameIsLookedForAsWordsOnly)
{
    for (const std::string typed : {"\"py\"", "p", "", "-python", "-", "\xc3\xa9"}) {
        EXPECT_EQ(wordQuery(typed, "text").name, "") << typed;
        EXPECT_EQ(wordQuery(typed, "text").expression, wordExpression(typed)) << typed;
    }
    EXPECT_EQ(wordQuery("g++", "text").name, "g++");
    EXPECT_EQ(wordQuery("g++", "text").expression, wordExpression("g++"));
    EXPECT_EQ(wordQuery(std::string(200, 'a'), "text").name.size(), 200U);
    EXPECT_EQ(wordQuery(std::string(201, 'a'), "text").name, "");
}

TEST(WordQuery, RandomTextIsNeverRefused)
{
    Names names("porter unicode61");
    names.add("apple");
    std::mt19937 random(5);
    const std::string bytes("\"*^:-+()ab \t\0\xc3\xa9\xff{}.", 20);
    for (int round = 0; round < 20000; ++round) {
        std::string typed;
        for (auto length = random() % 12; length > 0; --length)
            typed.push_back(bytes[random() % bytes.size()]);
        const std::string expression = wordQuery(typed, "text").expression;
        if (!expression.empty()) {
            EXPECT_GE(names.find(expression), 0) << typed << " as " << expression;
        }
    }
}

TEST(WordExpression, QuotedWordsAreAPhrase)
{
    Names names("unicode61");
    names.add("red apple");
    names.add("apple red");
    EXPECT_EQ(names.find(wordExpression("\"red apple\"")), 1);
    EXPECT_EQ(names.find(wordExpression("\"red apple")), 1);
}

TEST(WordExpression, MinusExcludes)
{
    Names names("unicode61");
    names.add("red apple");
    names.add("red car");
    EXPECT_EQ(names.find(wordExpression("red -car")), 1);
    EXPECT_EQ(names.find(wordExpression("red -car -apple")), 0);
    EXPECT_EQ(names.find(wordExpression("red -\"apple red\"")), 2);
}

TEST(WordExpression, NothingToLookForIsEmpty)
{
    for (const char* typed : {"", "   ", "-", "--", "\"\"", "\"", "+++ ***", "-car", "()", "\t\r\n"})
        EXPECT_EQ(wordExpression(typed), "") << typed;
}

TEST(WordExpression, BytesThatAreNotUtf8AreLatin1)
{
    EXPECT_EQ(wordExpression("caf\xe9"), "\"caf\xc3\xa9\"");
    EXPECT_EQ(wordExpression("caf\xc3\xa9"), "\"caf\xc3\xa9\"");
}

TEST(WordExpression, SyntaxOfTheIndexIsOnlyText)
{
    Names names("unicode61");
    names.add("near and or not title");
    for (const char* typed : {"AND", "red OR", "NOT red", "NEAR(a b, 2)", "title:red", "{title} : red", "re*", "^red",
                              "a\"b", "\"a\" + \"b\"", "'; DROP TABLE name; --", "(((", ")", "a AND AND b", "-:x y"}) {
        const std::string expression = wordExpression(typed);
        EXPECT_TRUE(expression.empty() || names.find(expression) >= 0) << typed;
    }
    EXPECT_EQ(names.find(wordExpression("AND")), 1);
    EXPECT_EQ(names.find(wordExpression("OR NOT")), 1);
}

TEST(WordExpression, PastedPageStaysBounded)
{
    std::string page;
    for (int i = 0; i < 100000; ++i)
        page += "word" + std::to_string(i) + " ";
    EXPECT_LT(wordExpression(page).size(), 1000U);
    EXPECT_LT(wordExpression(std::string(1000000, 'x')).size(), 1000U);
    EXPECT_TRUE(isUtf8(wordExpression(std::string(199, 'x') + "\xc3\xa9")));
}

TEST(WordExpression, RandomBytesAreNeverRefused)
{
    Names names("porter unicode61");
    names.add("a b c");
    std::mt19937 random(20260101);
    const std::string alphabet = "ab c\"-'():*^+{}\\\xc3\xa9\xff NEARORANDNOT,.%_\n" + std::string(1, '\0');
    for (int round = 0; round < 20000; ++round) {
        std::string typed;
        for (auto length = random() % 24; length > 0; --length)
            typed.push_back(alphabet[random() % alphabet.size()]);
        const std::string expression = wordExpression(typed);
        if (!expression.empty()) {
            ASSERT_GE(names.find(expression), 0) << typed << " gave " << expression;
        }
    }
}

TEST(NameQuery, LongWordsGoToTheIndexAndShortOnesToPatterns)
{
    const NameQuery query = nameQuery("setup  7z exe");
    EXPECT_EQ(query.expression, "\"setup\" \"exe\"");
    ASSERT_EQ(query.patterns.size(), 1U);
    EXPECT_EQ(query.patterns[0], "%7z%");
    EXPECT_TRUE(nameQuery("  ").empty());
    EXPECT_TRUE(nameQuery("").empty());
}

TEST(NameQuery, CharactersAreCountedNotBytes)
{
    EXPECT_EQ(nameQuery("\xc3\xa9\xc3\xa9").expression, "");
    EXPECT_EQ(nameQuery("\xc3\xa9\xc3\xa9\xc3\xa9").patterns.size(), 0U);
}

TEST(NameQuery, WildcardsAreOnlyText)
{
    EXPECT_EQ(nameQuery("%").patterns.at(0), "%\\%%");
    EXPECT_EQ(nameQuery("_").patterns.at(0), "%\\_%");
    EXPECT_EQ(nameQuery("\\").patterns.at(0), "%\\\\%");
    Names names("trigram");
    names.add("a*b.txt");
    names.add("say \"hi\"");
    EXPECT_EQ(names.find(nameQuery("a*b").expression), 1);
    EXPECT_EQ(names.find(nameQuery("\"hi\"").expression), 1);
    EXPECT_EQ(names.find(nameQuery("OR* AND").expression), 0);
}

TEST(NameQuery, AnyPartOfANameIsFound)
{
    Names names("trigram");
    names.add("libclass-perl_1.0-1_all.deb");
    EXPECT_EQ(names.find(nameQuery("SS-PER").expression), 1);
    EXPECT_EQ(names.find(nameQuery("perl lib").expression), 1);
    EXPECT_EQ(names.find(nameQuery("perl libx").expression), 0);
}

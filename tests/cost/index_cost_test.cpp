#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "index/IndexWriter.h"
#include "index/database.h"
#include "index/excerpt.h"
#include "searches/DownloadService.h"
#include "searches/FileService.h"
#include "searches/ImageService.h"
#include "searches/WebService.h"
#include "sources/ListedFiles.h"
#include "tests/cost/step_counter.h"
#include "tests/services/support/service_support.h"

/// Compares the cost of searching and making an index of single and double size.
using namespace quarrynet::cost;
using namespace quarrynet;
using namespace quarrynet::services;

namespace {

constexpr std::size_t kRows = 2000;
constexpr std::chrono::milliseconds kNoDeadline = std::chrono::hours(1);

/// Makes an index with `rows` rows of each kind, all of which "word" finds.
void makeIndex(const std::string& folder, std::size_t rows)
{
    Outcome<IndexWriter> writer = IndexWriter::begin(folder);
    ASSERT_TRUE(writer) << writer.error().message;
    const Outcome<std::int64_t> mirror = writer->addMirror("http://m.example/");
    const Outcome<std::int64_t> site = writer->addFileSite("ftp://h.example/", 1);
    const Outcome<std::int64_t> files = writer->addFileFolder(*site, "pub/");
    const Outcome<std::int64_t> pictures = writer->addPictureFolder("/pictures");
    ListedFiles listed;
    const std::uint32_t package = listed.addPackage(1);
    for (std::size_t i = 0; i < rows; ++i) {
        const std::string name = "word-" + std::to_string(i);
        const auto number = static_cast<std::int64_t>(i) + 1;
        ASSERT_TRUE(
            writer->addPage("http://" + name + ".example/", "The word " + name, "some words about " + name, {name}));
        Program program;
        program.name = name;
        program.description = "A word of " + name;
        program.mirror = *mirror;
        program.file = "pool/" + name + ".deb";
        ASSERT_TRUE(writer->addProgram(number, program));
        ASSERT_TRUE(writer->addFile(number, {*files, name + ".zip", 1}));
        Picture picture;
        picture.path = name + ".png";
        picture.name = "word " + std::to_string(i);
        picture.stem = name;
        ASSERT_TRUE(writer->addPicture(*pictures, picture));
        listed.add("usr/" + name + ".txt", package);
    }
    ASSERT_TRUE(listed.write(*writer));
    const Outcome<Done> done = writer->commit();
    ASSERT_TRUE(done) << done.error().message;
}

class IndexCost : public ::testing::Test
{
protected:
    /// Expects that a search costs in proportion to the size of the index.
    static void expectProportionalSearch(const std::string& what, const std::function<void(IndexPool&)>& search)
    {
        expectProportional(
            what,
            [&](std::size_t rows) {
                IndexPool& pool = indexOf(rows);
                search(pool); // the first search of a connection reads the schema
                return stepsOf([&] { search(pool); });
            },
            kRows);
    }

    static IndexPool& indexOf(std::size_t rows)
    {
        static std::map<std::size_t, std::pair<TemporaryFolder, std::unique_ptr<IndexPool>>> made;
        auto& [folder, pool] = made[rows];
        if (!pool) {
            makeIndex(folder.path(), rows);
            pool = std::make_unique<IndexPool>(folder.path(), kNoDeadline);
        }
        return *pool;
    }
};

} // namespace

TEST_F(IndexCost, MakingIt)
{
    expectProportional(
        "making an index",
        [](std::size_t rows) {
            const TemporaryFolder folder;
            return stepsOf([&] { makeIndex(folder.path(), rows); });
        },
        kRows);
}

TEST_F(IndexCost, SearchesThatFindEverything)
{
    for (const std::string typed : {"word", "w", "wo", "word word", "\"word 1\"", "word -other", "1", "nothing"}) {
        for (const std::int64_t start : {0, 500}) {
            const std::string what = typed + " from " + std::to_string(start);
            expectProportionalSearch("web search for " + what, [&](IndexPool& pool) {
                ASSERT_TRUE(WebService(pool, "http://h").search(typed, start));
            });
            expectProportionalSearch("image search for " + what, [&](IndexPool& pool) {
                ASSERT_TRUE(ImageService(pool, "h", nullptr).search(typed, start));
            });
            expectProportionalSearch("download search for " + what,
                                     [&](IndexPool& pool) { ASSERT_TRUE(DownloadService(pool).search(typed, start)); });
            expectProportionalSearch("file search for " + what,
                                     [&](IndexPool& pool) { ASSERT_TRUE(FileService(pool).search(typed, start)); });
        }
    }
    expectProportionalSearch("listing of a folder",
                             [](IndexPool& pool) { ASSERT_TRUE(FileService(pool).search("ftp://h.example/pub/", 0)); });
}

TEST_F(IndexCost, LongQueries)
{
    // A request line has at most 16 KB.
    for (const std::string pattern : {"word ", "a ", "w", "\"word word\" ", "-word ", "wor", "other "}) {
        const auto make = [&](std::size_t length) { return filled(pattern, length); };
        constexpr std::size_t kTyped = 4 * 1024;
        IndexPool& pool = indexOf(100);
        expectProportionalText(
            "web search for many " + pattern, make,
            [&](const std::string& typed) { static_cast<void>(WebService(pool, "http://h").search(typed, 0)); },
            kTyped);
        expectProportionalText(
            "download search for many " + pattern, make,
            [&](const std::string& typed) { static_cast<void>(DownloadService(pool).search(typed, 0)); }, kTyped);
        expectProportionalText(
            "file search for many " + pattern, make,
            [&](const std::string& typed) { static_cast<void>(FileService(pool).search(typed, 0)); }, kTyped);
    }
}

TEST_F(IndexCost, Excerpts)
{
    const auto excerpt = [](const std::string& searched) {
        return [searched](const std::string& text) {
            Outcome<Database> database = Database::open(":memory:", Database::Access::Create);
            ASSERT_TRUE(database && addExcerpt(*database) &&
                        database->execute("CREATE VIRTUAL TABLE t USING fts5(a, tokenize='porter unicode61')"));
            Outcome<Statement> insert = database->prepare("INSERT INTO t VALUES (?1)");
            insert->bind(1, text);
            ASSERT_TRUE(insert->run());
            Outcome<Statement> select = database->prepare("SELECT excerpt(t, 0, 32) FROM t WHERE t MATCH ?1");
            ASSERT_TRUE(select);
            select->bind(1, searched);
            select->step();
        };
    };
    for (const std::string pattern : {"word ", "word other ", "a ", "word. ", "x", ".", "\xc3\xa9 "}) {
        const auto make = [&](std::size_t length) { return filled(pattern, length) + " word"; };
        for (const std::string searched : {"word", "word OR other", "\"word word\"", "word OR a"})
            expectProportionalText("excerpt of " + pattern + " for " + searched, make, excerpt(searched), 64 * 1024);
    }
}

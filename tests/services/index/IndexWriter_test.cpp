#include <atomic>
#include <chrono>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "ground/CurrentTask.h"
#include "index/IndexWriter.h"
#include "index/database.h"
#include "searches/DownloadService.h"
#include "searches/FileService.h"
#include "searches/WebService.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

std::string stanza(const std::string& name, const std::string& summary)
{
    std::string text = "Package: " + name;
    text.append("\nDescription: ").append(summary);
    text.append("\nHomepage: http://").append(name).append(".example/\n\n");
    return text;
}

void quiet(const std::string&) {}

/// Returns a path of `levels` nested folders.
std::string slashes(int levels)
{
    std::string path;
    for (int i = 0; i < levels; ++i)
        path += "f/";
    return path;
}

std::vector<std::string> find(IndexPool& pool, std::string_view words)
{
    WebService service(pool, "http://h");
    const Outcome<WebAnswer> answer = service.search(words, 0);
    EXPECT_TRUE(answer) << answer.error().message;
    std::vector<std::string> addresses;
    for (const WebHit& hit : answer->hits)
        addresses.push_back(hit.address);
    return addresses;
}

class Index : public ::testing::Test
{
protected:
    Outcome<IndexCounts> build(const std::string& stanzas, std::vector<std::string> folders = {})
    {
        return buildIndex(data_.path(), {{input_.write("list", stanzas)}, "", std::move(folders)}, quiet);
    }

    TemporaryFolder data_;
    TemporaryFolder input_;
};

} // namespace

TEST_F(Index, FindsPackagesAndDocuments)
{
    input_.write("docs/sub/a b.html", "<title>Manual</title>How to grow apples");
    const Outcome<IndexCounts> counts = build(stanza("red", "an apple"), {input_.path() + "/docs"});
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->packages, 1U);
    EXPECT_EQ(counts->homePages, 1U);
    EXPECT_EQ(counts->documents, 1U);
    IndexPool pool(data_.path());
    EXPECT_EQ(find(pool, "apple"), (std::vector<std::string>{"http://red.example/", "http://h/doc/1/sub/a%20b.html"}));
    EXPECT_EQ(find(pool, "nothing"), std::vector<std::string>());
}

TEST_F(Index, PackagesWithoutAWebAddressAreNoHomePages)
{
    const Outcome<IndexCounts> counts =
        build("Package: a\n\nPackage: b\nHomepage: gopher://b/\n\nPackage: c\nHomepage: javascript:x\n");
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->packages, 3U);
    EXPECT_EQ(counts->homePages, 0U);
}

TEST_F(Index, MissingIndexAndOtherLayoutSayWhatToDo)
{
    IndexPool pool(data_.path());
    const auto missing = pool.borrow();
    ASSERT_FALSE(missing);
    EXPECT_NE(missing.error().message.find("quarrynet-services index"), std::string::npos);
    ASSERT_TRUE(Database::open(indexPath(data_.path()), Database::Access::Create)->execute("CREATE TABLE x(y)"));
    EXPECT_FALSE(pool.borrow());
}

// Once it made an empty file wherever a link in the folder of the services' user led root.
TEST_F(Index, ALinkInPlaceOfTheLockIsRefused)
{
    std::filesystem::create_symlink(data_.path() + "/nologin", data_.path() + "/index.lock");
    EXPECT_FALSE(IndexLock::take(data_.path()));
    EXPECT_FALSE(std::filesystem::exists(data_.path() + "/nologin"));
}

// The services' user makes the next one.
TEST_F(Index, RootLeavesTheLockAndTheIndexToTheOwnerOfTheFolder)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root makes files for others";
    constexpr uid_t kOther = 12345;
    ASSERT_EQ(::chown(data_.path().c_str(), kOther, kOther), 0);
    ASSERT_TRUE(build(stanza("red", "apple")));
    for (const char* name : {"/index.lock", "/index.sqlite"}) {
        struct stat status
        {};
        ASSERT_EQ(::stat((data_.path() + name).c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, kOther) << name;
    }
}

TEST_F(Index, FileThatIsNoDatabaseIsAFailure)
{
    data_.write("index.sqlite", std::string(100000, 'x'));
    IndexPool pool(data_.path());
    const auto broken = pool.borrow();
    ASSERT_FALSE(broken);
    EXPECT_NE(broken.error().message.find("quarrynet-services index --data DATA-FOLDER\""), std::string::npos)
        << broken.error().message;
    EXPECT_TRUE(build(stanza("red", "apple")));
    EXPECT_EQ(find(pool, "apple").size(), 1U);
}

TEST_F(Index, NewIndexIsSeenAtOnceAndOldConnectionsGoOn)
{
    ASSERT_TRUE(build(stanza("one", "apple")));
    IndexPool pool(data_.path());
    EXPECT_EQ(find(pool, "apple"), (std::vector<std::string>{"http://one.example/"}));
    Outcome<IndexPool::Lease> old = pool.borrow();
    ASSERT_TRUE(old);
    ASSERT_TRUE(build(stanza("two", "apple")));
    EXPECT_EQ(find(pool, "apple"), (std::vector<std::string>{"http://two.example/"}));
    Outcome<Statement> statement = (*old)->prepare("SELECT address FROM web_page");
    ASSERT_TRUE(statement);
    ASSERT_EQ(statement->step(), Statement::Step::Row);
    EXPECT_EQ(statement->text(0), "http://one.example/");
}

TEST_F(Index, ProcessKilledWhileIndexingLeavesTheOldIndexWhole)
{
    ASSERT_TRUE(build(stanza("old", "apple")));
    std::string many;
    for (int i = 0; i < 10001; ++i)
        many += stanza(std::to_string(i), "apple");
    const std::string list = input_.write("many", many);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // The first progress line comes while packages are being added.
        (void)buildIndex(data_.path(), {{list}}, [](const std::string&) { ::_exit(9); });
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    ASSERT_EQ(WEXITSTATUS(status), 9);

    IndexPool pool(data_.path());
    EXPECT_EQ(find(pool, "apple"), (std::vector<std::string>{"http://old.example/"}));
    ASSERT_TRUE(build(stanza("new", "apple")));
    EXPECT_EQ(find(pool, "apple"), (std::vector<std::string>{"http://new.example/"}));
}

TEST_F(Index, FaultWhileIndexingLeavesTheOldIndexAndNoRest)
{
    ASSERT_TRUE(build(stanza("old", "apple")));
    EXPECT_FALSE(buildIndex(data_.path(), {{input_.path() + "/none"}}, quiet));
    EXPECT_FALSE(std::filesystem::exists(indexPath(data_.path()) + ".new"));
    IndexPool pool(data_.path());
    EXPECT_EQ(find(pool, "apple").size(), 1U);
}

TEST_F(Index, OnlyOneWriterAtATime)
{
    const Outcome<IndexWriter> first = IndexWriter::begin(data_.path());
    ASSERT_TRUE(first);
    const Outcome<IndexWriter> second = IndexWriter::begin(data_.path());
    ASSERT_FALSE(second);
    EXPECT_NE(second.error().message.find("another"), std::string::npos);
}

TEST_F(Index, LockIsWaitedForWhileAnotherHoldsIt)
{
    int asked = 0;
    std::optional<Outcome<IndexLock>> first = IndexLock::take(data_.path());
    ASSERT_TRUE(*first);
    EXPECT_FALSE(IndexLock::take(data_.path(), [&asked] { return ++asked < 3; }));
    EXPECT_EQ(asked, 3);
    const Outcome<IndexLock> second = IndexLock::take(data_.path(), [&] {
        ++asked;
        first.reset();
        return true;
    });
    EXPECT_TRUE(second);
    EXPECT_EQ(asked, 4);
}

TEST_F(Index, LockIsNotWaitedForWhereNoWaitingMends)
{
    int asked = 0;
    const auto again = [&asked] { return ++asked < 3; };
    EXPECT_FALSE(IndexLock::take(data_.path() + "/none", again));
    input_.write("index.lock/file", "");
    const Outcome<IndexLock> blocked = IndexLock::take(input_.path(), again);
    ASSERT_FALSE(blocked);
    EXPECT_NE(blocked.error().message.find(input_.path()), std::string::npos);
    EXPECT_FALSE(IndexWriter::extend(input_.path(), again));
    EXPECT_EQ(asked, 0);
}

namespace {

/// Runs forever, unless it is interrupted.
Outcome<Done> runEndlessly(IndexPool& pool)
{
    Outcome<IndexPool::Lease> index = pool.borrow();
    if (!index)
        return index.error();
    return (*index)->execute("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT 1 FROM n) SELECT count(*) FROM n");
}

} // namespace

TEST_F(Index, AQueryEndsWhenItsTimeIsUpAndTheConnectionServesTheNext)
{
    ASSERT_TRUE(build(stanza("red", "apple")));
    IndexPool pool(data_.path(), std::chrono::milliseconds(20));
    const Outcome<Done> result = runEndlessly(pool);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().message, "it took too long");
    IndexPool usual(data_.path());
    EXPECT_EQ(find(usual, "apple").size(), 1U);
}

TEST_F(Index, AQueryEndsWhenItsTaskIsAbandoned)
{
    ASSERT_TRUE(build(stanza("red", "apple")));
    IndexPool pool(data_.path(), std::chrono::hours(1));
    std::atomic<bool> abandoned = false;
    std::atomic<bool> begun = false;
    std::thread asker([&] {
        const CurrentTask task(abandoned);
        begun = true;
        begun.notify_all();
        EXPECT_FALSE(runEndlessly(pool));
    });
    begun.wait(false);
    abandoned = true;
    asker.join();
    EXPECT_FALSE(CurrentTask::abandoned());
    EXPECT_EQ(find(pool, "apple").size(), 1U);
}

TEST_F(Index, PagesThatRepeatAWordAreFoundLikeOthers)
{
    std::string page = "<title>repeats</title>";
    for (int i = 0; i < 30000; ++i)
        page += "a b ";
    for (int i = 0; i < 30; ++i)
        input_.write("docs/" + std::to_string(i) + ".html", page);
    ASSERT_TRUE(build("", {input_.path() + "/docs"}));
    // With a cost quadratic in the number of matches, one such page takes many seconds.
    IndexPool pool(data_.path(), std::chrono::seconds(60));
    EXPECT_EQ(find(pool, "a b \"a b\" \"b a\"").size(), 30U);
}

TEST_F(Index, WhatCannotBeReadIsLeftOutAndTold)
{
    input_.write("docs/good.html", "apple");
    input_.write("docs/huge.html", std::string(16 * 1024 * 1024 + 1, 'x'));
    const Outcome<IndexCounts> counts = build(stanza("red", "an apple"), {input_.path() + "/docs"});
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->documents, 1U);
    EXPECT_EQ(counts->leftOut.count, 1U);
    EXPECT_NE(counts->leftOut.first.find("huge.html: it is too long"), std::string::npos) << counts->leftOut.first;
}

TEST_F(Index, AMuchPoorerIndexIsNotTakenUnlessForced)
{
    std::string many;
    std::string half;
    for (int i = 0; i < 100; ++i) {
        const std::string number = std::to_string(i);
        many += stanza(number, "apple");
        half += i < 50 ? stanza(number, "apple") : "";
    }
    ASSERT_TRUE(build(many));
    const Outcome<IndexCounts> poorer = build(stanza("p", "apple"));
    ASSERT_FALSE(poorer);
    EXPECT_NE(poorer.error().message.find("1 web pages instead of 100"), std::string::npos) << poorer.error().message;
    IndexPool pool(data_.path());
    EXPECT_EQ(find(pool, "apple").size(), 30U);
    EXPECT_FALSE(std::filesystem::exists(indexPath(data_.path()) + ".new"));
    EXPECT_TRUE(build(half));
    EXPECT_TRUE(build(stanza("p", "apple")));
    ASSERT_TRUE(build(many));
    IndexSources forced{{input_.write("list", stanza("p", "apple"))}};
    forced.force = true;
    EXPECT_TRUE(buildIndex(data_.path(), forced, quiet));
    EXPECT_EQ(find(pool, "apple").size(), 1U);
    // An index of another layout may have counted differently.
    ASSERT_TRUE(build(many));
    const std::string other = "PRAGMA user_version = " + std::to_string(kIndexLayout - 1);
    ASSERT_TRUE(Database::open(indexPath(data_.path()), Database::Access::Create)->execute(other.c_str()));
    EXPECT_TRUE(build(stanza("p", "apple")));
}

// Once an older program replaced the index of a newer one, and the crawled servers in it were lost.
TEST_F(Index, OneOfANewerVersionIsKeptUnlessForced)
{
    ASSERT_TRUE(build(stanza("p", "apple")));
    const std::string newer = "PRAGMA user_version = " + std::to_string(kIndexLayout + 1);
    ASSERT_TRUE(Database::open(indexPath(data_.path()), Database::Access::Create)->execute(newer.c_str()));
    IndexPool pool(data_.path());
    const Outcome<IndexPool::Lease> lease = pool.borrow();
    ASSERT_FALSE(lease);
    EXPECT_NE(lease.error().message.find("newer version"), std::string::npos) << lease.error().message;
    EXPECT_NE(lease.error().message.find("--force"), std::string::npos) << lease.error().message;
    const Outcome<IndexWriter> begun = IndexWriter::begin(data_.path());
    ASSERT_FALSE(begun);
    EXPECT_NE(begun.error().message.find("newer version"), std::string::npos) << begun.error().message;
    const Outcome<IndexWriter> extended = IndexWriter::extend(data_.path());
    ASSERT_FALSE(extended);
    EXPECT_NE(extended.error().message.find("newer version"), std::string::npos) << extended.error().message;
    EXPECT_FALSE(build(stanza("p", "pear")));
    Outcome<Database> kept = Database::open(indexPath(data_.path()), Database::Access::Read);
    EXPECT_EQ(*indexLayout(*kept), kIndexLayout + 1);
    IndexSources forced{{input_.write("list", stanza("p", "pear"))}};
    forced.force = true;
    EXPECT_TRUE(buildIndex(data_.path(), forced, quiet));
    EXPECT_EQ(find(pool, "pear").size(), 1U);
}

// Once this was said after minutes of work, and only there what to remove.
TEST_F(Index, ADamagedOneIsKeptAndReportedBeforeTheWork)
{
    ASSERT_TRUE(build(stanza("p", "apple")));
    const std::string path = indexPath(data_.path());
    std::filesystem::resize_file(path, 8192);
    const std::string list = input_.write("list", stanza("p", "apple"));
    for (const bool force : {false, true}) {
        IndexSources sources{{list}};
        sources.force = force;
        std::string progress;
        const Outcome<IndexCounts> built =
            buildIndex(data_.path(), sources, [&progress](const std::string& line) { progress += line; });
        ASSERT_FALSE(built);
        EXPECT_THAT(built.error().message, testing::HasSubstr("remove " + path));
        EXPECT_EQ(progress, "");
        EXPECT_EQ(std::filesystem::file_size(path), 8192U);
    }
    const auto messageFor = [this](Reader reader) {
        IndexPool pool(data_.path(), kMaxQueryTime, reader);
        const Outcome<IndexPool::Lease> lease = pool.borrow();
        return lease ? "" : lease.error().message;
    };
    EXPECT_THAT(messageFor(Reader::Owner),
                testing::HasSubstr("remove " + path + ", then run \"quarrynet-services index"));
    EXPECT_THAT(messageFor(Reader::Anybody), testing::HasSubstr("remove index.sqlite from the data folder, then run"));
}

// Once a change of the package lists during the work was never indexed: the index was newer than they.
TEST_F(Index, WhatChangesDuringTheWorkIsNewerThanTheIndex)
{
    const std::filesystem::path path = indexPath(data_.path());
    std::filesystem::path changed;
    const auto change = [&] { changed = input_.write("changed", "x"); };
    IndexSources sources{{input_.write("list", stanza("p", "apple"))}};
    ASSERT_TRUE(buildIndex(data_.path(), sources, [&](const std::string& /*line*/) { change(); }));
    ASSERT_FALSE(changed.empty());
    EXPECT_GE(std::filesystem::last_write_time(changed), std::filesystem::last_write_time(path));
    const auto before = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    std::filesystem::last_write_time(path, before);
    Outcome<IndexWriter> writer = IndexWriter::extend(data_.path());
    ASSERT_TRUE(writer);
    ASSERT_TRUE(writer->commit());
    EXPECT_EQ(std::filesystem::last_write_time(path), before) << "a crawl adds to it and renews nothing else";
}

TEST_F(Index, LongTextsAreClippedAndDeepPathsLeftOut)
{
    std::string stanzas = "Package: a\nDescription: ";
    stanzas.append(100000, 'x').append("\nFilename: pool/a.deb\n\nPackage: b\nFilename: ");
    stanzas.append(slashes(20000)).append("b.deb\n\nPackage: c\nFilename: ").append(5000, 'c');
    stanzas.append("\n\nPackage: d\nHomepage: http://h/").append(5000, 'd');
    stanzas.append("\nFilename: ").append(slashes(30)).append("d.deb\n\n");
    const std::string list = input_.write("list", stanzas);
    IndexSources sources{{list}};
    sources.mirror = "http://m/";
    const Outcome<IndexCounts> counts = buildIndex(data_.path(), sources, quiet);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->packages, 4U);
    EXPECT_EQ(counts->programs, 2U);
    EXPECT_EQ(counts->homePages, 0U);
    EXPECT_EQ(counts->leftOut.count, 3U);
    IndexPool pool(data_.path());
    FileService files(pool);
    EXPECT_EQ(files.search("d.deb", 0)->hits.size(), 1U);
    EXPECT_EQ(files.search("b.deb", 0)->hits.size(), 0U);
    EXPECT_LE(DownloadService(pool).search("a", 0)->hits.at(0).description.size(), kMaxIndexedName);
}

TEST_F(Index, FolderThatIsNotThereIsAFailure)
{
    EXPECT_FALSE(buildIndex(data_.path() + "/none", {{input_.write("list", "")}}, quiet));
}

TEST_F(Index, ExtendingKeepsWhatIsThereAndReplacesASite)
{
    ASSERT_TRUE(build(stanza("red", "an apple")));
    const auto crawl = [this](const std::vector<std::string>& names) {
        Outcome<IndexWriter> writer = IndexWriter::extend(data_.path());
        ASSERT_TRUE(writer);
        ASSERT_TRUE(writer->removeFileSite("ftp://h/"));
        const Outcome<std::int64_t> site = writer->addFileSite("ftp://h/", 1);
        ASSERT_TRUE(site);
        const Outcome<std::int64_t> folder = writer->addFileFolder(*site, "pub/");
        ASSERT_TRUE(folder);
        Outcome<std::int64_t> number = writer->nextCrawledFile();
        ASSERT_TRUE(number);
        for (const std::string& name : names)
            ASSERT_TRUE(writer->addFile((*number)++, {*folder, name}));
        ASSERT_TRUE(writer->commit());
    };
    IndexPool pool(data_.path());
    FileService files(pool);
    crawl({"apple one", "apple two"});
    EXPECT_EQ(files.search("apple", 0)->hits.size(), 2U);
    crawl({"apple three"});
    ASSERT_EQ(files.search("apple", 0)->hits.size(), 1U);
    EXPECT_EQ(files.search("apple", 0)->hits[0].address, "ftp://h/pub/apple%20three");
    EXPECT_EQ(files.search("two", 0)->hits.size(), 0U);
    EXPECT_EQ(find(pool, "apple").size(), 1U);
    ASSERT_TRUE(build(stanza("green", "an apple")));
    EXPECT_EQ(files.search("apple", 0)->hits.size(), 1U);
    EXPECT_EQ(find(pool, "apple"), (std::vector<std::string>{"http://green.example/"}));
}

TEST_F(Index, ExtendingNothingMakesANewIndex)
{
    {
        Outcome<IndexWriter> writer = IndexWriter::extend(data_.path());
        ASSERT_TRUE(writer);
        EXPECT_EQ(*writer->nextCrawledFile(), 1);
        ASSERT_TRUE(writer->commit());
    }
    IndexPool pool(data_.path());
    EXPECT_TRUE(pool.borrow());
}

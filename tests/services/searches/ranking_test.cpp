#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "index/IndexWriter.h"
#include "searches/DownloadService.h"
#include "searches/ImageService.h"
#include "searches/WebService.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"

/// Tests the order of results.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

using Names = std::vector<std::string>;

class Ranking : public ::testing::Test
{
protected:
    void add(const std::string& name, const std::string& summary, const std::string& more = "")
    {
        stanzas_.append("Package: ").append(name).append("\nDescription: ").append(summary);
        stanzas_.append("\nFilename: pool/").append(name).append(".deb\n").append(more).append("\n");
    }
    void addPage(const std::string& name, const std::string& address, const std::string& summary = "",
                 const std::string& description = "")
    {
        stanzas_.append("Package: ").append(name).append("\nDescription: ").append(summary);
        stanzas_.append("\n ").append(description).append("\nHomepage: ").append(address).append("\n\n");
    }

    void build()
    {
        const Outcome<IndexCounts> counts =
            buildIndex(data_.path(),
                       {{input_.write("list", stanzas_)}, "http://mirror.example/", {}, {input_.path() + "/pictures"}},
                       [](const std::string&) {});
        ASSERT_TRUE(counts) << counts.error().message;
        counts_ = *counts;
    }

    Names programs(const std::string& typed)
    {
        Names names;
        for (std::int64_t total = 1; static_cast<std::int64_t>(names.size()) < total;) {
            const Outcome<ProgramAnswer> answer = downloads_.search(typed, static_cast<std::int64_t>(names.size()));
            EXPECT_TRUE(answer);
            if (!answer || answer->hits.empty())
                break;
            total = answer->total;
            for (const ProgramHit& hit : answer->hits)
                names.push_back(hit.name);
        }
        return names;
    }

    Names pages(const std::string& typed)
    {
        Names addresses;
        const Outcome<WebAnswer> answer = web_.search(typed, 0);
        EXPECT_TRUE(answer);
        for (const WebHit& hit : answer->hits)
            addresses.push_back(hit.address);
        EXPECT_EQ(answer->total, static_cast<std::int64_t>(addresses.size()));
        return addresses;
    }

    std::string stanzas_;
    TemporaryFolder data_;
    TemporaryFolder input_;
    IndexPool pool_{data_.path()};
    WebService web_{pool_, "http://127.80.0.1"};
    DownloadService downloads_{pool_};
    IndexCounts counts_;
};

} // namespace

// By bm25 alone, a short text that repeats the word precedes the program of that name.
TEST_F(Ranking, ProgramWithTheTypedNameIsFirst)
{
    add("vim-tiny", "vim vim");
    add("vim", "an editor with a long description of what it is and does and why one would want it");
    add("neovim-vim", "vim");
    build();
    EXPECT_EQ(programs("vim"), (Names{"vim", "vim-tiny", "neovim-vim"}));
    EXPECT_EQ(programs("VIM").front(), "vim");
    EXPECT_EQ(programs(" vim  tiny ").front(), "vim-tiny");
}

TEST_F(Ranking, NamesThatBeginWithTheTypedTextComeNextShortOnesFirst)
{
    add("snake", "python python python");
    add("python-zebra", "python stripes");
    add("python3", "an interactive language");
    add("pythonpy", "python -c");
    build();
    // "python3" contains the word only as a prefix.
    EXPECT_EQ(programs("python"), (Names{"python3", "pythonpy", "python-zebra", "snake"}));
    EXPECT_EQ(programs("pyth"), (Names{"python3", "pythonpy", "python-zebra"}));
}

TEST_F(Ranking, OthersGoByRank)
{
    add("b", "a long description that names chess among many other things to play with on a rainy day");
    add("a", "chess");
    add("c-chess", "a game");
    build();
    EXPECT_EQ(programs("chess"), (Names{"c-chess", "a", "b"}));
}

TEST_F(Ranking, CompanionsGoBehindWhatTheyBelongTo)
{
    for (const char* ending : {"-doc", "-dev", "-dbgsym", "-l10n", "-l10n-de", "-data", "-common"})
        add(std::string("tool").append(ending), "tool");
    add("tool-with-a-long-name", "a tool for this and that and the other");
    add("tool", "a tool for this and that and the other");
    add("hammer-data", "data of a tool"); // it belongs to no program here
    build();
    const Names found = programs("tool");
    ASSERT_EQ(found.size(), 10U);
    EXPECT_EQ(found[0], "tool");
    EXPECT_EQ(found[1], "tool-with-a-long-name");
    EXPECT_EQ(found[9], "hammer-data");
    // The full name of a companion finds it like any other program.
    EXPECT_EQ(programs("tool-doc").front(), "tool-doc");
    EXPECT_EQ(programs("tool doc").front(), "tool-doc");
}

TEST_F(Ranking, CompanionsGoBehindByRankToo)
{
    add("nail-doc", "tool");
    add("nail", "a tool for this and that and the other");
    add("libnut-dev", "tool", "Source: nut\n");
    add("libnut3", "a tool for this and that and the other", "Source: nut (3.0-1)\n");
    add("lonely-dev", "tool");
    build();
    EXPECT_EQ(programs("tool"), (Names{"lonely-dev", "nail", "libnut3", "nail-doc", "libnut-dev"}));
}

TEST_F(Ranking, WordsThatAskForCompanionsPutThemWhereTheyRank)
{
    add("nail", "a tool for this and that and the other, without documentation");
    add("nail-doc", "tool documentation");
    build();
    EXPECT_EQ(programs("tool documentation"), (Names{"nail-doc", "nail"}));
    EXPECT_EQ(programs("tool"), (Names{"nail", "nail-doc"}));
}

TEST_F(Ranking, LeftOutWordsPhrasesAndSignsAreNoNames)
{
    add("g++", "compiler");
    add("git", "tracker");
    add("vim", "editor");
    add("vim-tiny", "editor small");
    build();
    EXPECT_EQ(programs("g++"), (Names{"g++"}));
    EXPECT_EQ(programs("\"vi\""), Names());
    EXPECT_EQ(programs("vi -small"), (Names{"vim"}));
    EXPECT_EQ(programs("g"), (Names{"g++"}));
    EXPECT_EQ(programs("-vim"), Names());
    for (const char* typed : {"vim*", "^vim", "name:vim", "vim\"", "(vim", "vim OR git", "vim\xff", "%", "_"})
        EXPECT_TRUE(downloads_.search(typed, 0)) << typed;
    EXPECT_EQ(programs("name:vim"), Names());
}

TEST_F(Ranking, PagesHoldEachProgramOnceAndTheTotalIsRight)
{
    for (int i = 0; i < 40; ++i) {
        const std::string number = std::to_string(i);
        const std::string name = std::string("apple").append(number);
        add(name, "fruit");
        add(std::string(name).append("-doc"), "fruit");
        add(std::string("x").append(number), "apple"); // all have the same rank
    }
    build();
    EXPECT_EQ(downloads_.search("apple", 0)->total, 120);
    const Names found = programs("apple");
    EXPECT_EQ(found.size(), 120U);
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()).size(), 120U);
}

TEST_F(Ranking, AnAddressIsOneResult)
{
    addPage("idle", "http://www.snake.example/", "an environment", "Written in itself.");
    addPage("libsnake3", "https://www.snake.example", "the library", "Read only by programs.");
    addPage("snake3", "https://WWW.snake.example/", "the language");
    addPage("snake3-doc", "https://www.snake.example/", "its manual");
    addPage("other", "https://www.snake.example/other", "something else");
    build();
    EXPECT_EQ(counts_.homePages, 2U);
    EXPECT_EQ(pages("snake"), (Names{"https://WWW.snake.example/"}));
    // The texts of all its packages find it.
    for (const char* typed : {"idle", "environment", "written", "library programs", "libsnake3", "manual"})
        EXPECT_EQ(pages(typed), (Names{"https://WWW.snake.example/"})) << typed;
    EXPECT_EQ(web_.search("manual", 0)->hits[0].title, "snake3 - the language");
}

TEST_F(Ranking, HomePageOfTheTypedNameIsFirst)
{
    addPage("a-snake", "http://a.example/", "snake snake", "snake snake");
    addPage("snake-charmer", "http://b.example/", "snake");
    addPage("snake3", "http://c.example/", "a language", "The snake is an animal, too, of course, as we all know.");
    build();
    EXPECT_EQ(pages("snake"), (Names{"http://c.example/", "http://b.example/", "http://a.example/"}));
    EXPECT_EQ(pages("a-snake").front(), "http://a.example/");
    EXPECT_EQ(pages("Snake Charmer").front(), "http://b.example/");
}

TEST_F(Ranking, TextsOfAnAddressAreBounded)
{
    for (int i = 0; i < 8000; ++i)
        addPage(std::string("p").append(std::to_string(i)), "http://h.example/",
                std::string("summary ").append(std::to_string(i)), "\xc3\xa9\xc3\xa9");
    build();
    EXPECT_EQ(counts_.homePages, 1U);
    Outcome<IndexPool::Lease> index = pool_.borrow();
    ASSERT_TRUE(index);
    Outcome<Statement> row = (*index)->prepare("SELECT length(CAST(description AS BLOB)) FROM web_page");
    ASSERT_EQ(row->step(), Statement::Step::Row);
    const auto most = static_cast<std::int64_t>(kMaxIndexedText);
    EXPECT_GT(row->number(0), most - 1024);
    EXPECT_LE(row->number(0), most);
}

TEST_F(Ranking, PictureWithTheTypedNameIsFirstOfTheVariedOnes)
{
    for (const char* path : {"folder/folder/folder-new.png", "x/my-folder.png", "y/folder.png", "z/folder.png"})
        input_.write(std::string("pictures/").append(path), "x");
    build();
    ImageService images(pool_, "127.80.0.2", nullptr);
    Names captions;
    const Outcome<ImageAnswer> answer = images.search("Folder", 0);
    ASSERT_TRUE(answer);
    for (const ImageHit& hit : answer->hits)
        captions.push_back(hit.caption);
    ASSERT_EQ(captions.size(), 4U);
    EXPECT_EQ(captions[0].substr(2), "folder.png");
    EXPECT_EQ(captions[1], "folder/folder/folder-new.png");
    EXPECT_EQ(captions[2], "x/my-folder.png");
}

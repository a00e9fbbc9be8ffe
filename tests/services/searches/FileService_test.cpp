#include <set>

#include <gtest/gtest.h>

#include "index/IndexWriter.h"
#include "searches/FileService.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

class Files : public ::testing::Test
{
protected:
    void build(const std::vector<std::string>& files)
    {
        std::string stanzas;
        for (const std::string& file : files)
            stanzas.append("Package: p\nSize: 5\nFilename: ").append(file).append("\n\n");
        const Outcome<IndexCounts> counts = buildIndex(
            data_.path(), {{input_.write("list", stanzas)}, "http://mirror.example/d/", {}}, [](const std::string&) {});
        ASSERT_TRUE(counts) << counts.error().message;
    }

    std::vector<std::string> find(const std::string& typed, std::int64_t start = 0)
    {
        const Outcome<FileAnswer> answer = service_.search(typed, start);
        EXPECT_TRUE(answer);
        std::vector<std::string> addresses;
        for (const FileHit& hit : answer->hits)
            addresses.push_back(hit.address.substr(std::string("http://mirror.example/d/").size()));
        return addresses;
    }

    HttpResponse get(const std::string& query)
    {
        return service_.answer({"GET", "127.80.0.4", "/cgi-bin/s", query, false});
    }

    TemporaryFolder data_;
    TemporaryFolder input_;
    IndexPool pool_{data_.path()};
    FileService service_{pool_};
};

using Names = std::vector<std::string>;

} // namespace

TEST_F(Files, AnyPartOfANameIsFound)
{
    build({"pool/g/gimp/gimp_2.10_amd64.deb", "pool/g/gimp/libgimp_2.10_amd64.deb"});
    EXPECT_EQ(find("gimp"),
              (Names{"pool/g/gimp/gimp_2.10_amd64.deb", "pool/g/gimp/", "pool/g/gimp/libgimp_2.10_amd64.deb"}));
    EXPECT_EQ(find("BGIMP_2"), (Names{"pool/g/gimp/libgimp_2.10_amd64.deb"}));
    EXPECT_EQ(find("amd64 libg"), (Names{"pool/g/gimp/libgimp_2.10_amd64.deb"}));
    EXPECT_EQ(find("gimp none"), Names());
    EXPECT_EQ(find(""), Names());
}

TEST_F(Files, ShortWordsAreFoundToo)
{
    build({"pool/7/7zip_22.deb", "pool/g/g++_1%.deb"});
    EXPECT_EQ(find("7z"), (Names{"pool/7/7zip_22.deb"}));
    EXPECT_EQ(find("7"), (Names{"pool/7/", "pool/7/7zip_22.deb"}));
    EXPECT_EQ(find("7z deb"), (Names{"pool/7/7zip_22.deb"}));
    EXPECT_EQ(find("++"), (Names{"pool/g/g++_1%25.deb"}));
    EXPECT_EQ(find("%"), (Names{"pool/g/g++_1%25.deb"}));
    EXPECT_EQ(find("_"), (Names{"pool/g/g++_1%25.deb", "pool/7/7zip_22.deb"}));
    EXPECT_EQ(find("\\"), Names());
    EXPECT_EQ(find("'"), Names());
}

TEST_F(Files, PagesDivideTheResultsWithoutGapOrOverlap)
{
    Names files;
    for (int i = 0; i < 45; ++i)
        files.push_back("pool/apple" + std::to_string(i) + ".deb");
    build(files);
    std::set<std::string> seen;
    for (int start = 0; start < 60; start += 20) {
        for (const std::string& address : find("apple", start))
            EXPECT_TRUE(seen.insert(address).second);
        EXPECT_EQ(service_.search("apple", start)->more, start < 40);
    }
    EXPECT_EQ(seen.size(), 45U);
    EXPECT_NE(get("t=f&d=&l=en&m=20&q=apple&f=61").body.find("not found"), std::string::npos);
    EXPECT_EQ(get("t=f&d=&l=en&m=20&q=apple&f=0").body.find("not found"), std::string::npos);
    EXPECT_EQ(get("q=apple").body.find("not found"), std::string::npos);
}

TEST_F(Files, DirectoryAddressListsItsContent)
{
    build({"pool/a/one.deb", "pool/a/two.deb", "pool/b/three.deb"});
    EXPECT_EQ(find("http://mirror.example/d/pool/"), (Names{"pool/a/", "pool/b/"}));
    EXPECT_EQ(find("http://mirror.example/d/pool/a/"), (Names{"pool/a/one.deb", "pool/a/two.deb"}));
    EXPECT_EQ(find("http://mirror.example/d/"), (Names{"pool/"}));
    for (const char* address : {"http://mirror.example/d/none/", "ftp://mirror.example/d/pool/", "ftp://other.example/",
                                "http://", "https://one.deb"})
        EXPECT_EQ(find(address), Names()) << address;
}

// For a site below another one, once only the outer site was searched.
TEST_F(Files, DirectoryOfASiteBelowAnotherOneIsListed)
{
    Outcome<IndexWriter> writer = IndexWriter::begin(data_.path());
    ASSERT_TRUE(writer);
    std::int64_t number = 1;
    for (const char* base : {"ftp://h/", "ftp://h/pub/"}) {
        const Outcome<std::int64_t> site = writer->addFileSite(base, 1);
        const Outcome<std::int64_t> folder = writer->addFileFolder(*site, "");
        ASSERT_TRUE(writer->addFile(number++, {*folder, std::string("in ") + base, 5, false}));
    }
    ASSERT_TRUE(writer->commit());
    for (const char* base : {"ftp://h/", "ftp://h/pub/"}) {
        const Outcome<FileAnswer> answer = service_.search(base, 0);
        ASSERT_TRUE(answer);
        ASSERT_EQ(answer->hits.size(), 1U) << base;
        EXPECT_EQ(answer->hits[0].name, std::string("in ") + base);
    }
}

// Once "ftp://" was the prefix even for mirrors that support only HTTP.
TEST_F(Files, MirrorsKeepTheirScheme)
{
    for (const std::string mirror :
         {"http://mirror.example/d/", "https://mirror.example/d/", "ftp://mirror.example/d/"}) {
        const Outcome<IndexCounts> counts =
            buildIndex(data_.path(), {{input_.write("list", "Package: p\nFilename: pool/apple_1.deb\n")}, mirror, {}},
                       [](const std::string&) {});
        ASSERT_TRUE(counts) << counts.error().message;
        const Outcome<FileAnswer> file = service_.search("apple", 0);
        ASSERT_EQ(file->hits.size(), 1U);
        EXPECT_EQ(file->hits[0].address, mirror + "pool/apple_1.deb");
        const Outcome<FileAnswer> directory = service_.search("pool", 0);
        ASSERT_EQ(directory->hits.size(), 1U);
        EXPECT_EQ(directory->hits[0].address, mirror + "pool/");
        EXPECT_EQ(service_.search(mirror + "pool/", 0)->hits.size(), 1U);
    }
}

TEST_F(Files, TypedNameThenBeginningsThenTheRest)
{
    build({"pool/agit_1.deb", "pool/digit_1.deb", "pool/gitk_1.deb", "pool/git_1.deb", "pool/gitaa_1.deb",
           "pool/git.tar", "pool/gitlab-git_1.deb"});
    EXPECT_EQ(find("git"), (Names{"pool/git_1.deb", "pool/git.tar", "pool/gitk_1.deb", "pool/gitaa_1.deb",
                                  "pool/gitlab-git_1.deb", "pool/agit_1.deb", "pool/digit_1.deb"}));
    EXPECT_EQ(find("GIT").front(), "pool/git_1.deb");
    // A file is found only if its name contains all words, wherever they are.
    EXPECT_EQ(find("git lab"), (Names{"pool/gitlab-git_1.deb"}));
    EXPECT_EQ(find("1 git k"), (Names{"pool/gitk_1.deb"}));
    EXPECT_EQ(find("g t a"), (Names{"pool/gitaa_1.deb", "pool/git.tar", "pool/gitlab-git_1.deb", "pool/agit_1.deb"}));
}

TEST_F(Files, PagesOverBeginningsAndTheRestHoldEachNameOnce)
{
    Names files;
    for (int i = 0; i < 33; ++i) {
        files.push_back("pool/apple" + std::to_string(i) + ".deb");
        files.push_back("pool/pineapple" + std::to_string(i) + ".deb");
    }
    build(files);
    for (const std::string typed : {"apple", "apple deb", "ap le", "a"}) {
        Names all;
        for (int start = 0; start < 100; start += 20) {
            const Names page = find(typed, start);
            EXPECT_EQ(service_.search(typed, start)->more, start < 60) << typed << start;
            all.insert(all.end(), page.begin(), page.end());
        }
        EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), 66U) << typed;
        ASSERT_EQ(all.size(), 66U) << typed;
        for (std::size_t i = 0; i < all.size(); ++i)
            EXPECT_EQ(all[i].substr(0, 10) == "pool/apple", i < 33) << typed << all[i];
    }
    // The start need not be a multiple of the page size.
    EXPECT_EQ(find("apple", 30).size(), 20U);
    EXPECT_EQ(find("apple", 65).size(), 1U);
    EXPECT_EQ(find("apple", 66), Names());
}

TEST_F(Files, OtherPathsAreNotFoundAndTheFrontPageIs)
{
    EXPECT_EQ(service_.answer({"GET", "", "/", "", false}).status, 200);
    EXPECT_EQ(service_.answer({"GET", "", "/cgi-bin/x", "", false}).status, 404);
    EXPECT_EQ(get("q=apple").status, 503);
}

TEST_F(Files, PathsThatNameNoFileAreLeftOut)
{
    build({"pool/a/", "/", "//x.deb"});
    EXPECT_EQ(find("x.deb"), (Names{"x.deb"}));
    EXPECT_EQ(find("a"), Names());
}

#include <set>

#include <gtest/gtest.h>

#include "service_support.h"
#include "services/file_service.h"
#include "services/indexing.h"
#include "services/pool_files.h"

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
        ASSERT_TRUE(counts) << counts.failure().message;
    }

    std::vector<std::string> find(const std::string& typed, std::int64_t start = 0)
    {
        const Outcome<FileAnswer> answer = service_.search(typed, start);
        EXPECT_TRUE(answer);
        std::vector<std::string> addresses;
        for (const FileHit& hit : answer->hits)
            addresses.push_back(hit.address.substr(std::string("ftp://mirror.example/d/").size()));
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
    EXPECT_EQ(find("ftp://mirror.example/d/pool/"), (Names{"pool/a/", "pool/b/"}));
    EXPECT_EQ(find("ftp://mirror.example/d/pool/a/"), (Names{"pool/a/one.deb", "pool/a/two.deb"}));
    EXPECT_EQ(find("ftp://mirror.example/d/"), (Names{"pool/"}));
    EXPECT_EQ(find("ftp://mirror.example/d/none/"), Names());
    EXPECT_EQ(find("ftp://other.example/"), Names());
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

TEST(FtpBase, TakesThePlaceOfTheScheme)
{
    EXPECT_EQ(ftpBase("https://h/d/"), "ftp://h/d/");
    EXPECT_EQ(ftpBase("ftp://h/"), "ftp://h/");
}

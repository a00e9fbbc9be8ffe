#include <set>

#include <gtest/gtest.h>

#include "searches/FileService.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

using Names = std::vector<std::string>;

/// The file search over contents lists.
class ListedFilesSearch : public ::testing::Test
{
protected:
    /// Each package has the file "pool/NAME_1.deb" with a size of 5 bytes.
    void build(const std::vector<std::string>& packages, const std::string& contents)
    {
        std::string stanzas;
        for (const std::string& package : packages)
            stanzas.append("Package: ")
                .append(package)
                .append("\nSize: 5\nFilename: pool/")
                .append(package)
                .append("_1.deb\n\n");
        IndexSources sources{{input_.write("list", stanzas)}, "http://mirror.example/d/"};
        sources.contentsFiles = {input_.write("contents", contents)};
        const Outcome<IndexCounts> counts = buildIndex(data_.path(), sources, [](const std::string&) {});
        ASSERT_TRUE(counts) << counts.error().message;
    }

    Names find(const std::string& typed, std::int64_t start = 0)
    {
        const Outcome<FileAnswer> answer = service_.search(typed, start);
        EXPECT_TRUE(answer) << answer.error().message;
        Names names;
        for (const FileHit& hit : answer->hits)
            names.push_back(hit.name);
        return names;
    }

    TemporaryFolder data_;
    TemporaryFolder input_;
    IndexPool pool_{data_.path()};
    FileService service_{pool_};
};

} // namespace

TEST_F(ListedFilesSearch, HitLeadsToThePackageWithTheFile)
{
    build({"libc6-dev", "musl-dev"}, "usr/include/stdio.h  libdevel/libc6-dev\n"
                                     "usr/include/x86/stdio.h  libdevel/musl-dev\n");
    const Outcome<FileAnswer> answer = service_.search("stdio.h", 0);
    ASSERT_EQ(answer->hits.size(), 2U);
    EXPECT_EQ(answer->hits[0].name, "/usr/include/stdio.h");
    EXPECT_EQ(answer->hits[0].address, "http://mirror.example/d/pool/libc6-dev_1.deb");
    EXPECT_EQ(answer->hits[0].parent, "http://mirror.example/d/pool/");
    EXPECT_EQ(answer->hits[0].size, 5);
    EXPECT_FALSE(answer->hits[0].directory);
    EXPECT_EQ(answer->hits[1].address, "http://mirror.example/d/pool/musl-dev_1.deb");
}

TEST_F(ListedFilesSearch, FileInSeveralPackagesIsARowForEach)
{
    build({"a", "b"}, "usr/bin/tool x/a,x/b\nusr/bin/tool x/a\n");
    EXPECT_EQ(find("tool"), (Names{"/usr/bin/tool", "/usr/bin/tool"}));
}

TEST_F(ListedFilesSearch, EveryWordOccursInTheName)
{
    build({"p"}, "bin/GIMP-console x/p\nbin/gimp x/p\nbin/regimp x/p\nbin/x x/p\nbin/g\xc3\xafmp x/p\nb/7z x/p\n");
    EXPECT_EQ(find("gimp"), (Names{"/bin/gimp", "/bin/GIMP-console", "/bin/regimp"}));
    EXPECT_EQ(find("Console GIMP"), (Names{"/bin/GIMP-console"}));
    EXPECT_EQ(find("gimp console none"), Names());
    EXPECT_EQ(find("g\xc3\xafmp"), (Names{"/bin/g\xc3\xafmp"}));
    EXPECT_EQ(find("\xc3\xaf"), (Names{"/bin/g\xc3\xafmp"}));
    // Words without a trigram.
    EXPECT_EQ(find("7z"), (Names{"/b/7z"}));
    EXPECT_EQ(find("mp g"), (Names{"/bin/gimp", "/bin/g\xc3\xafmp", "/bin/regimp", "/bin/GIMP-console"}));
    EXPECT_EQ(find("x"), (Names{"/bin/x"}));
    EXPECT_EQ(find("%"), Names());
    EXPECT_EQ(find("bin"), Names()) << "folders are not searched";
}

TEST_F(ListedFilesSearch, EachGroupHasMirrorsBeforePackages)
{
    build({"vim", "vim-gtk", "gvim"}, "usr/bin/vim x/vim\nusr/bin/vim.basic x/vim\nusr/bin/vimdiff x/vim\n"
                                      "usr/bin/rvim x/vim\n");
    EXPECT_EQ(find("vim"), (Names{"vim_1.deb", "/usr/bin/vim", "/usr/bin/vim.basic", "vim-gtk_1.deb",
                                  "/usr/bin/vimdiff", "gvim_1.deb", "/usr/bin/rvim"}));
}

TEST_F(ListedFilesSearch, PagesDivideTheGroupsWithoutGapOrOverlap)
{
    std::vector<std::string> packages;
    std::string contents;
    for (int i = 0; i < 30; ++i) {
        const std::string number = std::to_string(i);
        packages.push_back("apple" + number);
        packages.push_back("pineapple" + number);
        contents += "usr/apple x/apple" + number + "\n";    // one name in many packages
        contents += "f" + number + "/apple.txt x/apple0\n"; // one name in many folders
        contents += "usr/applet" + number + " x/apple0\nusr/grapple" + number + " x/apple0\n";
    }
    build(packages, contents);
    for (const std::string typed : {"apple", "app", "ap", "le app", "a"}) {
        Names all;
        std::set<std::string> rows;
        for (int start = 0; start < 200; start += 20) {
            const Outcome<FileAnswer> answer = service_.search(typed, start);
            ASSERT_TRUE(answer);
            EXPECT_EQ(answer->more, start < 160) << typed << start;
            for (const FileHit& hit : answer->hits) {
                EXPECT_TRUE(rows.insert(hit.name + " " + hit.address).second) << typed << hit.name;
                all.push_back(hit.name);
            }
        }
        EXPECT_EQ(rows.size(), 180U) << typed;
        // A page can begin anywhere.
        for (const std::size_t start : {1U, 29U, 31U, 77U, 150U, 179U}) {
            const Names page = find(typed, static_cast<std::int64_t>(start));
            ASSERT_FALSE(page.empty());
            EXPECT_EQ(page.front(), all[start]) << typed << start;
        }
        EXPECT_EQ(find(typed, 180), Names());
        EXPECT_EQ(find(typed, 2'000'000'000), Names());
    }
}

TEST_F(ListedFilesSearch, ManyBlocksAreFoundByTrigramsAndWithout)
{
    std::string contents;
    for (int i = 0; i < 5000; ++i)
        contents += "usr/file" + std::to_string(i) + ".dat x/p\n";
    contents += "usr/xylophone x/p\nusr/xy x/p\n";
    build({"p"}, contents);
    EXPECT_EQ(find("ylopho"), (Names{"/usr/xylophone"}));
    EXPECT_EQ(find("xy"), (Names{"/usr/xy", "/usr/xylophone"}));
    EXPECT_EQ(find("yl"), (Names{"/usr/xylophone"}));
    EXPECT_EQ(find("file4999"), (Names{"/usr/file4999.dat"}));
    EXPECT_EQ(find("4999 dat"), (Names{"/usr/file4999.dat"}));
    EXPECT_EQ(find("le4999.dat none"), Names());
    EXPECT_EQ(find(std::string(5000, 'x')), Names());
}

TEST_F(ListedFilesSearch, SearchWithoutTimeFails)
{
    std::string contents;
    for (int i = 0; i < 20'000; ++i)
        contents += "usr/file" + std::to_string(i) + ".dat x/p\n";
    build({"p"}, contents);
    IndexPool hurried(data_.path(), std::chrono::milliseconds(0));
    FileService service(hurried);
    EXPECT_FALSE(service.search("zz", 0));
}

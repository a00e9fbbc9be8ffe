#include <cstdlib>

#include <gtest/gtest.h>

#include "index/database.h"
#include "sources/contents_lists.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

using Lines = std::vector<std::string>;

struct Read
{
    Lines lines; ///< "PATH|PACKAGES"
    std::size_t skipped = 0;
};

Read readInPieces(std::string_view list, std::size_t piece)
{
    Read read;
    ContentsReader reader([&read](std::string_view path, std::string_view packages) {
        read.lines.push_back(std::string(path) + "|" + std::string(packages));
    });
    for (std::size_t at = 0; at < list.size(); at += piece)
        reader.feed(ExactCopy(list.substr(at, piece)).view());
    reader.finish();
    read.skipped = reader.skipped();
    return read;
}

Lines read(std::string_view list)
{
    return readInPieces(list, list.size() + 1).lines;
}

} // namespace

TEST(ContentsReader, PathAndPackagesAreSplitAtTheLastBlank)
{
    EXPECT_EQ(read("usr/bin/vim                 editors/vim,editors/vim-tiny\n"
                   "usr/share/a file  \t x11/a\n"
                   "./usr/bin/b\tutils/b\r\n"
                   "/etc/c non-free/net/c  \n"
                   "usr/share/folder/ x/d"),
              (Lines{"usr/bin/vim|editors/vim,editors/vim-tiny", "usr/share/a file|x11/a", "usr/bin/b|utils/b",
                     "etc/c|non-free/net/c", "usr/share/folder|x/d"}));
}

TEST(ContentsReader, ListReadsAlikeInAnyPieces)
{
    const std::string list = "a/b x/y\n\n\nno-package\n \tc\nd \x01 e\nf  g/h,i\nlast k";
    const Read whole = readInPieces(list, list.size());
    EXPECT_EQ(whole.lines, (Lines{"a/b|x/y", "f|g/h,i", "last|k"}));
    EXPECT_EQ(whole.skipped, 3U);
    for (std::size_t piece = 1; piece < list.size(); ++piece) {
        const Read parts = readInPieces(list, piece);
        EXPECT_EQ(parts.lines, whole.lines) << piece;
        EXPECT_EQ(parts.skipped, whole.skipped) << piece;
    }
}

TEST(ContentsReader, LongLinesAndControlCharactersAreSkipped)
{
    const std::string longest = std::string(kMaxContentsPath, 'p') + " x/y\n";
    EXPECT_EQ(read(longest).size(), 1U);
    EXPECT_EQ(read("p" + longest), Lines());
    const std::string packages(kMaxContentsLine - 2, 'q');
    EXPECT_EQ(read("p " + packages + "\n").size(), 1U);
    EXPECT_EQ(read("p " + packages + "q\n"), Lines());
    EXPECT_EQ(readInPieces("p " + packages + "q", 1000).skipped, 1U);
    EXPECT_EQ(read(std::string("a\0b x/y\n", 8)), Lines());
    EXPECT_EQ(read("a\tb x/y\n\x7f c\n"), Lines());
    EXPECT_EQ(read("/ x/y\n./ x/y\n"), Lines());
    EXPECT_EQ(read("caf\xc3\xa9 x/y\n\xff x/y\n"), (Lines{"caf\xc3\xa9|x/y", "\xff|x/y"}));
}

TEST(ContentsReader, HugeLineTakesBoundedMemory)
{
    std::size_t taken = 0;
    ContentsReader reader([&taken](std::string_view, std::string_view) { ++taken; });
    const std::string piece(1024 * 1024, 'x');
    for (int i = 0; i < 64; ++i)
        reader.feed(piece);
    reader.feed(" a/b\nc d/e\n");
    reader.finish();
    EXPECT_EQ(taken, 1U);
    EXPECT_EQ(reader.skipped(), 1U);
}

TEST(ContentsLists, PackageNamesLoseTheirSections)
{
    Lines names;
    forEachPackageName("editors/vim,non-free/x11/a,b,,c/,/d",
                       [&names](std::string_view name) { names.emplace_back(name); });
    EXPECT_EQ(names, (Lines{"vim", "a", "b", "d"}));
}

TEST(ContentsLists, CompressedAndPlainFilesAreRead)
{
    const TemporaryFolder folder;
    const std::string plain = folder.write("list", "a/b x/y\nno-package\n");
    Lines paths;
    const auto take = [&paths](std::string_view path, std::string_view) { paths.emplace_back(path); };
    EXPECT_EQ(*readContentsList(plain, take), 1U);
    ASSERT_EQ(std::system(("gzip -k " + plain).c_str()), 0);
    EXPECT_EQ(*readContentsList(plain + ".gz", take), 1U);
    EXPECT_EQ(paths, (Lines{"a/b", "a/b"}));
    EXPECT_FALSE(readContentsList(folder.path() + "/none", take));
    EXPECT_FALSE(readContentsList(folder.path() + "/none.lz4", take));
}

namespace {

class ListedIndex : public ::testing::Test
{
protected:
    void build(const std::string& contents)
    {
        IndexSources sources{{input_.write("list", "Package: vim\nSize: 7\nFilename: pool/vim_9.deb\n\n")},
                             "http://mirror.example/d/"};
        sources.contentsFiles = {input_.write("contents", contents)};
        const Outcome<IndexCounts> counts = buildIndex(data_.path(), sources, [](const std::string&) {});
        ASSERT_TRUE(counts) << counts.error().message;
        counts_ = *counts;
    }

    std::int64_t count(const std::string& table)
    {
        Outcome<IndexPool::Lease> index = pool_.borrow();
        Outcome<Statement> rows = (*index)->prepare("SELECT count(*) FROM " + table);
        return rows && rows->step() == Statement::Step::Row ? rows->number(0) : -1;
    }

    TemporaryFolder data_;
    TemporaryFolder input_;
    IndexPool pool_{data_.path()};
    IndexCounts counts_;
};

} // namespace

TEST_F(ListedIndex, FilesOfUnknownPackagesAreLeftOut)
{
    build("usr/bin/vim editors/vim\nusr/bin/vi editors/vim,editors/elvis\nusr/bin/emacs editors/emacs\n");
    EXPECT_EQ(counts_.listedFiles, 2U);
    EXPECT_EQ(counts_.leftOut.count, 1U);
    EXPECT_NE(counts_.leftOut.first.find("usr/bin/emacs"), std::string::npos);
    EXPECT_EQ(count("listed_folder"), 1);
    EXPECT_EQ(count("listed_package"), 1);
    EXPECT_EQ(count("listed_block"), 1);
}

TEST_F(ListedIndex, HostileListIndexesWhatIsGood)
{
    std::string list(300'000, 'x');
    list += "\n";
    list += std::string("\0\x01\x02 editors/vim\n", 16);
    list += "usr/bin/vim editors/vim\n\xff\xfe/\xff editors/vim\nFILE LOCATION\nusr/bin/cut edit";
    build(list);
    EXPECT_EQ(counts_.listedFiles, 2U);
    EXPECT_EQ(count("listed_block"), 1);
}

TEST_F(ListedIndex, EmptyListAddsNothing)
{
    build("");
    EXPECT_EQ(counts_.listedFiles, 0U);
    EXPECT_EQ(count("listed_block"), 0);
    EXPECT_EQ(count("listed_trigram"), 0);
}

#include <algorithm>

#include <gtest/gtest.h>

#include "index/database.h"
#include "sources/ListedFiles.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

using Rows = std::vector<std::string>;

/// Writes the files into an index and returns "NAMES" of each block, with "," for the borders.
Rows blocksOf(ListedFiles& files)
{
    const TemporaryFolder folder;
    Outcome<IndexWriter> writer = IndexWriter::begin(folder.path());
    EXPECT_TRUE(writer);
    EXPECT_TRUE(files.write(*writer));
    EXPECT_TRUE(writer->commit());
    IndexPool pool(folder.path());
    Outcome<IndexPool::Lease> index = pool.borrow();
    Outcome<Statement> rows = (*index)->prepare("SELECT names FROM listed_block ORDER BY id");
    Rows blocks;
    while (rows->step() == Statement::Step::Row) {
        std::string names(rows->text(0));
        std::replace(names.begin(), names.end(), kNameBorder, ',');
        blocks.push_back(names);
    }
    return blocks;
}

} // namespace

TEST(ListedFiles, ShortNamesComeFirstAndCaseLast)
{
    ListedFiles files;
    const std::uint32_t package = files.addPackage(1);
    for (const char* path : {"b/longest", "a/beta", "B/Beta", "c/alfa", "c/beta", "z"})
        EXPECT_TRUE(files.add(path, package));
    EXPECT_EQ(files.size(), 6U);
    EXPECT_EQ(blocksOf(files), (Rows{",z,alfa,Beta,beta,longest,"}));
}

TEST(ListedFiles, BlocksHoldABoundedNumberOfNames)
{
    ListedFiles files;
    const std::uint32_t package = files.addPackage(1);
    for (std::size_t i = 0; i < 2 * kBlockNames + 1; ++i)
        EXPECT_TRUE(files.add("d/name" + std::to_string(1000 + i), package));
    const Rows blocks = blocksOf(files);
    ASSERT_EQ(blocks.size(), 3U);
    EXPECT_EQ(blocks[0].find(",name1000,name1001,"), 0U);
    EXPECT_EQ(blocks[2], ",name1064,");
}

TEST(ListedFiles, BytesThatAreNoUtf8BecomeLatin1)
{
    ListedFiles files;
    EXPECT_TRUE(files.add("d/caf\xe9", files.addPackage(1)));
    EXPECT_EQ(blocksOf(files), (Rows{",caf\xc3\xa9,"}));
}

TEST(ListedFiles, LimitsHold)
{
    ListedFiles few(ListedFileLimits{2, std::size_t{1} << 30U});
    EXPECT_TRUE(few.add("a", 0));
    EXPECT_TRUE(few.add("b", 0));
    EXPECT_FALSE(few.add("c", 0));
    EXPECT_EQ(few.size(), 2U);
    constexpr std::size_t kBytes = std::size_t{4} * 1024 * 1024;
    ListedFiles small(ListedFileLimits{1'000'000, kBytes});
    std::size_t taken = 0;
    while (taken < 1'000'000 && small.add(std::to_string(taken) + "/" + std::string(500, 'n'), 0))
        ++taken;
    EXPECT_GT(taken, kBytes / 2000);
    EXPECT_LT(taken, kBytes / 500);
}

#include <algorithm>
#include <filesystem>

#include <gtest/gtest.h>

#include "service_support.h"
#include "services/document_folders.h"

using namespace quarrynet::services;
namespace fs = std::filesystem;

namespace {

class DocumentFolders : public ::testing::Test
{
protected:
    void SetUp() override
    {
        all_.write("root/a.html", "A");
        all_.write("root/sub/b c.html", "B");
        all_.write("root/sub/index.html", "I");
        all_.write("root/.hidden/c.html", "C");
        all_.write("root/.secret", "S");
        all_.write("root2/d.html", "D");
        all_.write("outside.html", "O");
        root_ = all_.path() + "/root";
        fs::create_symlink("../outside.html", root_ + "/out.html");
        fs::create_symlink("../root2", root_ + "/out");
        fs::create_symlink("sub/b c.html", root_ + "/in.html");
        fs::create_symlink(".hidden/c.html", root_ + "/revealed.html");
        fs::create_symlink("loop", root_ + "/loop");
        fs::create_symlink(".", root_ + "/sub/up");
    }

    TemporaryFolder all_;
    std::string root_;
};

} // namespace

TEST_F(DocumentFolders, ServesFilesInside)
{
    EXPECT_TRUE(servedFile(root_, "a.html"));
    EXPECT_TRUE(servedFile(root_, "sub/b c.html"));
    EXPECT_TRUE(servedFile(root_, "in.html"));
    EXPECT_TRUE(servedFile(root_, "/a.html"));
    EXPECT_TRUE(servedFile(root_ + "/", "a.html"));
    const auto index = servedFile(root_, "sub/");
    ASSERT_TRUE(index);
    EXPECT_EQ(readFile(*index, 100), "I");
}

TEST_F(DocumentFolders, RefusesWhatLeavesTheFolder)
{
    const std::string outside = all_.path() + "/outside.html";
    ASSERT_TRUE(fs::exists(root_ + "/out.html"));
    for (const std::string path :
         {"out.html", "out/d.html", "../outside.html", "sub/../../outside.html", "../root2/d.html", "./a.html",
          "sub/../a.html", "..", ".", "", "/", "sub/up/../../../outside.html"})
        EXPECT_FALSE(servedFile(root_, path)) << path;
    EXPECT_FALSE(servedFile(root_, outside));
    EXPECT_FALSE(servedFile(root_, "/" + outside));
}

TEST_F(DocumentFolders, RefusesHiddenMissingAndOddFiles)
{
    for (const std::string path :
         {".secret", ".hidden/c.html", "revealed.html", "none.html", "loop", "a.html/b", "sub2"})
        EXPECT_FALSE(servedFile(root_, path)) << path;
    EXPECT_FALSE(servedFile(root_, std::string("a.html\0x", 8)));
    EXPECT_FALSE(servedFile(root_, std::string(100000, 'a')));
    EXPECT_FALSE(servedFile(root_ + "/none", "a.html"));
}

TEST_F(DocumentFolders, FindsHtmlFilesWithoutFollowingLinks)
{
    std::vector<std::string> found;
    findHtmlFiles(root_, [&found](const std::string& path) { found.push_back(path); });
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (std::vector<std::string>{"a.html", "sub/b c.html", "sub/index.html"}));
    findHtmlFiles(root_ + "/none", [](const std::string&) { FAIL(); });
}

TEST_F(DocumentFolders, ReadFileRefusesLargeFilesAndFolders)
{
    EXPECT_EQ(readFile(root_ + "/a.html", 1), "A");
    EXPECT_EQ(readFile(root_ + "/a.html", 0), std::nullopt);
    EXPECT_EQ(readFile(root_, 1000000), std::nullopt);
    EXPECT_EQ(readFile(root_ + "/none", 1), std::nullopt);
}

TEST(MediaType, GoesByTheEnding)
{
    EXPECT_EQ(mediaType("a.HTML"), "text/html");
    EXPECT_EQ(mediaType("a/b.svg"), "image/svg+xml");
    EXPECT_EQ(mediaType("README"), "application/octet-stream");
    EXPECT_EQ(mediaType(""), "application/octet-stream");
}

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "sources/document_folders.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet::services;
namespace fs = std::filesystem;

namespace {

/// Makes nested folders, deeper than findFiles() descends and longer than a path may be.
void plantTooDeep(const std::string& folder)
{
    const std::string name(200, 'd');
    fs::create_directory(folder);
    int at = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < 30; ++i) {
        ASSERT_EQ(::mkdirat(at, name.c_str(), 0700), 0);
        const int next = ::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(at);
        at = next;
    }
    ::close(at);
}

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

TEST_F(DocumentFolders, FindsHtmlFilesWithoutFollowingLinks)
{
    std::vector<std::string> found;
    findHtmlFiles(root_, [&found](const std::string& path) { found.push_back(path); });
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (std::vector<std::string>{"a.html", "sub/b c.html", "sub/index.html"}));
    findHtmlFiles(root_ + "/none", [](const std::string&) { FAIL(); });
}

TEST_F(DocumentFolders, PassesOverFurtherNames)
{
    fs::create_hard_link(all_.path() + "/outside.html", root_ + "/hard.html");
    std::vector<std::string> found;
    const LeftOut left = findHtmlFiles(root_, [&found](const std::string& path) { found.push_back(path); });
    EXPECT_EQ(found.size(), 3U);
    EXPECT_EQ(left.count, 0U);
}

TEST_F(DocumentFolders, GoesOnPastWhatCannotBeRead)
{
    // The path exceeds the system's limit, so nobody can list this folder.
    for (const char* name : {"d1", "d2", "d3"})
        plantTooDeep(root_ + "/" + name);
    for (int i = 0; i < 50; ++i)
        all_.write("root/e" + std::to_string(i) + "/page.html", "E");
    std::size_t found = 0;
    const LeftOut left = findHtmlFiles(root_, [&found](const std::string&) { ++found; });
    EXPECT_EQ(found, 53U);
    EXPECT_EQ(left.count, 3U);
    EXPECT_NE(left.first.find("/d"), std::string::npos);
}

TEST(LeftOutCounts, KeepTheFirst)
{
    LeftOut left;
    left.add("a", "why");
    LeftOut more;
    more.add("b", "other");
    more.add("c", "other");
    left.add(more);
    EXPECT_EQ(left.count, 3U);
    EXPECT_EQ(left.first, "a: why");
    LeftOut none;
    none.add(LeftOut());
    none.add(more);
    EXPECT_EQ(none.first, "b: other");
}

TEST(PathSeenFrom, RelativeAddressesAreResolvedAndOthersAreNone)
{
    EXPECT_EQ(pathSeenFrom("a.html", "b.png"), "b.png");
    EXPECT_EQ(pathSeenFrom("sub/a.html", "b%20c.png?x#y"), "sub/b c.png");
    EXPECT_EQ(pathSeenFrom("sub/deep/a.html", "../../b.png"), "b.png");
    EXPECT_EQ(pathSeenFrom("sub/deep/a.html", "./../x//y/b.png"), "sub/x/y/b.png");
    for (const char* address : {"", "#x", "/b.png", "//h/b.png", "http://h/b.png", "data:,x", "../b.png", "x/../../b"})
        EXPECT_EQ(pathSeenFrom("a.html", address), std::nullopt) << address;
    EXPECT_EQ(pathSeenFrom("sub/a.html", "../../b.png"), std::nullopt);
    EXPECT_EQ(pathSeenFrom("sub/a.html", "%2e%2e/%2e%2e/b.png"), std::nullopt);
}

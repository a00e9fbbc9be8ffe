#include <filesystem>
#include <sys/stat.h>
#include <sys/un.h>

#include <gtest/gtest.h>

#include "ground/OpenFile.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;
namespace fs = std::filesystem;

namespace {

/// Runs every case both ways: by one system call, and stepwise.
class OpenBeneath : public ::testing::TestWithParam<OpenWay>
{
protected:
    void SetUp() override
    {
        all_.write("root/a.html", "A");
        all_.write("root/sub/b c.html", "B");
        all_.write("root/.hidden/c.html", "C");
        all_.write("root/.secret", "S");
        all_.write("root2/d.html", "D");
        all_.write("outside.html", "O");
        fs::create_symlink("../outside.html", root_ + "/out.html");
        fs::create_symlink("../root2", root_ + "/out");
        fs::create_symlink("sub", root_ + "/inside");
        fs::create_symlink("a.html", root_ + "/in.html");
        fs::create_symlink("loop", root_ + "/loop");
    }

    std::optional<std::string> contentOf(std::string_view path) const
    {
        const auto file = openBeneath(root_, path, GetParam());
        return file == nullptr ? std::nullopt : file->content(1000);
    }

    TemporaryFolder all_;
    std::string root_ = all_.path() + "/root";
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, OpenBeneath, ::testing::Values(OpenWay::Usual, OpenWay::Stepwise),
                         [](const auto& way) { return way.param == OpenWay::Usual ? "InOneStep" : "PartByPart"; });

TEST_P(OpenBeneath, OpensFilesInside)
{
    EXPECT_EQ(contentOf("a.html"), "A");
    EXPECT_EQ(contentOf("sub/b c.html"), "B");
    EXPECT_EQ(contentOf("sub//b c.html"), "B");
    EXPECT_EQ(contentOf("/a.html"), "A");
    fs::create_symlink("root", all_.path() + "/link");
    EXPECT_NE(openBeneath(all_.path() + "/link", "a.html", GetParam()), nullptr);
}

TEST_P(OpenBeneath, RefusesWhatLeavesTheFolder)
{
    for (const std::string path : {"../outside.html", "sub/../../outside.html", "../root2/d.html", "./a.html",
                                   "sub/../a.html", "..", ".", "", "/", "sub", "sub/", "a.html/", "a.html/b"})
        EXPECT_EQ(contentOf(path), std::nullopt) << path;
    EXPECT_EQ(contentOf(all_.path() + "/outside.html"), std::nullopt);
    EXPECT_EQ(contentOf("/" + all_.path() + "/outside.html"), std::nullopt);
}

TEST_P(OpenBeneath, FollowsNoLinkEvenInside)
{
    for (const std::string path : {"out.html", "out/d.html", "in.html", "inside/b c.html", "loop", "loop/a"})
        EXPECT_EQ(contentOf(path), std::nullopt) << path;
}

TEST_P(OpenBeneath, RefusesHiddenMissingAndOddFiles)
{
    for (const std::string path : {".secret", ".hidden/c.html", "none.html"})
        EXPECT_EQ(contentOf(path), std::nullopt) << path;
    EXPECT_EQ(contentOf(std::string("a.html\0x", 8)), std::nullopt);
    EXPECT_EQ(contentOf(std::string(100000, 'a')), std::nullopt);
    std::string deep;
    for (int i = 0; i < 2000; ++i)
        deep += "a/";
    EXPECT_EQ(contentOf(deep + "a"), std::nullopt);
    EXPECT_EQ(openBeneath(root_ + "/none", "a.html", GetParam()), nullptr);
    EXPECT_EQ(openBeneath(root_ + "/a.html", "a.html", GetParam()), nullptr);
}

TEST_P(OpenBeneath, RefusesFurtherNamesPipesAndSockets)
{
    fs::create_hard_link(all_.path() + "/outside.html", root_ + "/hard.html");
    EXPECT_EQ(contentOf("hard.html"), std::nullopt);
    // Opening a pipe without a writer would block.
    ASSERT_EQ(::mkfifo((root_ + "/pipe.html").c_str(), 0600), 0);
    EXPECT_EQ(contentOf("pipe.html"), std::nullopt);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    const std::string path = root_ + "/s.html";
    path.copy(name.sun_path, sizeof name.sun_path - 1);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
    ::close(socket);
    EXPECT_EQ(contentOf("s.html"), std::nullopt);
    EXPECT_EQ(openBeneath("/dev", "null", GetParam()), nullptr);
}

TEST(OpenFile, ReadsPartsAndKnowsItsVersion)
{
    const TemporaryFolder folder;
    folder.write("file", "0123456789");
    const auto file = openBeneath(folder.path(), "file");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->size(), 10U);
    EXPECT_EQ(file->beginning(4), "0123");
    EXPECT_EQ(file->beginning(400), "0123456789");
    EXPECT_EQ(file->content(9), std::nullopt);
    EXPECT_EQ(file->content(10), "0123456789");
    char bytes[4] = {};
    EXPECT_EQ(file->read(8, bytes, 4), 2U);
    EXPECT_EQ(file->read(10, bytes, 4), 0U);
    const std::string version = file->version();
    folder.write("file", "other content");
    EXPECT_NE(openBeneath(folder.path(), "file")->version(), version);
}

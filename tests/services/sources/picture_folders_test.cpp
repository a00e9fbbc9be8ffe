#include <filesystem>

#include <gtest/gtest.h>

#include "sources/picture_folders.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet::services;

namespace {

std::vector<Picture> picturesIn(const std::string& root)
{
    LeftOut left;
    std::vector<Picture> pictures = findPictures(root, left);
    EXPECT_EQ(left.count, 0U) << left.first;
    return pictures;
}

std::vector<std::string> pathsIn(const std::string& root)
{
    std::vector<std::string> paths;
    for (const Picture& picture : picturesIn(root))
        paths.push_back(picture.path);
    return paths;
}

} // namespace

TEST(SizelessPath, LeavesSizesAndEndingsOut)
{
    EXPECT_EQ(sizelessPath("hicolor/48x48/apps/gvim.png"), "hicolor/apps/gvim");
    EXPECT_EQ(sizelessPath("hicolor/scalable/apps/gvim.svg"), "hicolor/apps/gvim");
    EXPECT_EQ(sizelessPath("breeze/actions/22/go.svg"), "breeze/actions/go");
    EXPECT_EQ(sizelessPath("t/16x16@2x/go.png"), "t/go");
    EXPECT_EQ(sizelessPath("t/24@2/go.png"), "t/go");
    EXPECT_EQ(sizelessPath("scalable-up-to-32/go.svg"), "go");
    EXPECT_EQ(sizelessPath("logo-64x64.png"), "logo");
    EXPECT_EQ(sizelessPath("logo_1024x768@2x.png"), "logo");
    EXPECT_EQ(sizelessPath("logo@2x.png"), "logo");
    EXPECT_EQ(sizelessPath("a/go-symbolic.symbolic.png"), "a/go-symbolic");
}

TEST(SizelessPath, OtherNumbersStay)
{
    for (const char* path : {"2020/me", "photos/me-01", "16x17/a", "1920x1080x3/a", "99999x99999/a", "a/x16", "-16x16",
                             "@2x", "48x/a", "a@x", "16@2y/a", "a-x48", ""})
        EXPECT_EQ(sizelessPath(path), path);
}

TEST(SpacedWords, JoinedWordsCanBeFoundApart)
{
    EXPECT_EQ(spacedWords("EditCopy2"), "EditCopy2 Edit Copy 2");
    EXPECT_EQ(spacedWords("edit-copy"), "edit-copy");
    EXPECT_EQ(spacedWords(""), "");
}

TEST(FindPictures, OfSeveralSizesTheBestIsTaken)
{
    const TemporaryFolder folder;
    for (const char* name : {"t/16x16/apps/a.png", "t/48x48/apps/a.png", "t/32x32/apps/a.png", "t/256x256/apps/b.png",
                             "t/scalable/apps/b.svg", "t/128x128/apps/b.png", "u/48x48/apps/a.png"})
        folder.write(name, "x");
    EXPECT_EQ(pathsIn(folder.path()),
              (std::vector<std::string>{"t/48x48/apps/a.png", "t/scalable/apps/b.svg", "u/48x48/apps/a.png"}));
}

TEST(FindPictures, GivesWordsOfNamesAndFolders)
{
    const TemporaryFolder folder;
    folder.write("my pictures/Red\x01"
                 "Car-symbolic.png",
                 "x");
    const std::vector<Picture> pictures = picturesIn(folder.path() + "/my pictures/");
    ASSERT_EQ(pictures.size(), 1U);
    EXPECT_EQ(pictures[0].name, "Red Car-symbolic.png");
    EXPECT_EQ(pictures[0].place, "my pictures ");
    EXPECT_EQ(pictures[0].stem, "red\x01"
                                "car");
}

TEST(FindPictures, PassesOverWhatIsHiddenLinkedEmptyOrNoPicture)
{
    const TemporaryFolder folder;
    folder.write("seen.png", "x");
    folder.write(".hidden/a.png", "x");
    folder.write(".a.png", "x");
    folder.write("empty.png", "");
    folder.write("a.txt", "x");
    std::filesystem::create_symlink("seen.png", folder.path() + "/link.png");
    std::filesystem::create_directory_symlink("..", folder.path() + "/up");
    std::filesystem::create_directory(folder.path() + "/folder.png");
    EXPECT_EQ(pathsIn(folder.path()), (std::vector<std::string>{"seen.png"}));
    EXPECT_TRUE(picturesIn(folder.path() + "/none").empty());
}

TEST(FindPictures, ChangedFilesHaveAnotherVersion)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("a.png", "x");
    const std::int64_t before = picturesIn(folder.path()).at(0).version;
    std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) + std::chrono::seconds(1));
    EXPECT_NE(picturesIn(folder.path()).at(0).version, before);
}

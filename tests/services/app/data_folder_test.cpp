#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "app/data_folder.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

TEST(OpenDataFolder, MakesTheChosenFolder)
{
    const TemporaryFolder folder;
    const Outcome<std::string> opened = openDataFolder(folder.path() + "/a/b");
    ASSERT_TRUE(opened);
    EXPECT_TRUE(std::filesystem::is_directory(*opened));
    EXPECT_TRUE(openDataFolder(folder.path() + "/a/b"));
}

TEST(OpenDataFolder, FollowsTheEnvironment)
{
    const TemporaryFolder folder;
    ::setenv("HOME", (folder.path() + "/home").c_str(), 1);
    ::setenv("XDG_DATA_HOME", (folder.path() + "/data").c_str(), 1);
    EXPECT_EQ(*openDataFolder(""), folder.path() + "/data/quarrynet");
    ::setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(*openDataFolder(""), folder.path() + "/home/.local/share/quarrynet");
    ::unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(*openDataFolder(""), folder.path() + "/home/.local/share/quarrynet");
    ::unsetenv("HOME");
    EXPECT_FALSE(openDataFolder(""));
}

TEST(OpenDataFolder, FileInItsPlaceIsNamed)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("file", "");
    for (const std::string& path : {file, file + "/below"}) {
        const Outcome<std::string> opened = openDataFolder(path);
        ASSERT_FALSE(opened) << path;
        EXPECT_NE(opened.error().message.find("file"), std::string::npos);
    }
}

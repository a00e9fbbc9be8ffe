#include <gtest/gtest.h>

#include "app/own_program.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet::services;

TEST(OwnProgram, IsThisTest)
{
    EXPECT_EQ(ownProgram().filename(), "app_own_program_test");
}

TEST(ManualFolder, LiesBesideTheProgramOrWhereAnInstallationPutsIt)
{
    const TemporaryFolder folder;
    const std::string program = folder.write("bin/program", "");
    EXPECT_EQ(manualFolder(program), "");
    folder.write("share/quarrynet/manual/index.html", "");
    EXPECT_EQ(manualFolder(program), folder.path() + "/share/quarrynet/manual");
    folder.write("bin/manual/index.html", "");
    EXPECT_EQ(manualFolder(program), folder.path() + "/bin/manual");
    EXPECT_EQ(manualFolder({}), "");
}

TEST(ThumbnailProgram, LiesBesideTheProgramOrWhereAnInstallationPutsIt)
{
    const TemporaryFolder folder;
    const std::string program = folder.write("bin/quarrynet-services", "");
    EXPECT_EQ(thumbnailProgram(program), folder.path() + "/bin/quarrynet-thumbnails");
    folder.write("libexec/quarrynet/quarrynet-thumbnails", "");
    EXPECT_EQ(thumbnailProgram(program), folder.path() + "/libexec/quarrynet/quarrynet-thumbnails");
    folder.write("bin/quarrynet-thumbnails", "");
    EXPECT_EQ(thumbnailProgram(program), folder.path() + "/bin/quarrynet-thumbnails");
    EXPECT_EQ(thumbnailProgram({}), "quarrynet-thumbnails");
}

#include <gtest/gtest.h>

#include "sources/program_texts.h"

using namespace quarrynet::services;

TEST(SystemOf, NamesKernelAndProcessor)
{
    EXPECT_EQ(systemOf("amd64"), "Linux (amd64)");
    EXPECT_EQ(systemOf("all"), "Any system");
    EXPECT_EQ(systemOf(""), "Any system");
    EXPECT_EQ(systemOf("hurd-i386"), "Hurd (i386)");
    EXPECT_EQ(systemOf("kfreebsd-amd64"), "FreeBSD (amd64)");
}

TEST(LicenseOf, GoesByTheArea)
{
    EXPECT_EQ(licenseOf("games"), "Unknown");
    EXPECT_EQ(licenseOf(""), "Unknown");
    EXPECT_EQ(licenseOf("contrib/games"), "Unknown, needs non-free");
    EXPECT_EQ(licenseOf("non-free/games"), "Non-free");
    EXPECT_EQ(licenseOf("non-free-firmware/kernel"), "Non-free");
}

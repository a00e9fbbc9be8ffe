#include <gtest/gtest.h>

#include "index/package_names.h"

using namespace quarrynet::services;

TEST(CompanionBase, NamesWhatThePackageGoesWith)
{
    EXPECT_EQ(companionBase("vim-doc"), "vim");
    EXPECT_EQ(companionBase("vim-common"), "vim");
    EXPECT_EQ(companionBase("libc6-dev"), "libc6");
    EXPECT_EQ(companionBase("vim-dbgsym"), "vim");
    EXPECT_EQ(companionBase("audacity-data"), "audacity");
    EXPECT_EQ(companionBase("chromium-l10n"), "chromium");
    EXPECT_EQ(companionBase("firefox-esr-l10n-de"), "firefox-esr");
    EXPECT_EQ(companionBase("apt-doc-dev"), "apt-doc");
}

TEST(CompanionBase, OtherNamesStandForThemselves)
{
    for (const char* name : {"", "vim", "-doc", "doc", "vimdoc", "vim-docs", "-l10n", "l10n", "vim-l10nx", "vim-doc-x"})
        EXPECT_EQ(companionBase(name), "") << name;
}

TEST(AsksForCompanions, KnowsTheWords)
{
    EXPECT_TRUE(asksForCompanions({"vim", "documentation"}));
    EXPECT_TRUE(asksForCompanions({"dev"}));
    EXPECT_FALSE(asksForCompanions({"vim", "device", "doctor"}));
    EXPECT_FALSE(asksForCompanions({}));
}

TEST(IsNamedIn, FindsWholeWordsWithoutAVersion)
{
    EXPECT_TRUE(isNamedIn("python3", "https://www.python.org/"));
    EXPECT_TRUE(isNamedIn("python3.11", "https://www.Python.org/"));
    EXPECT_TRUE(isNamedIn("git", "https://git-scm.com/"));
    EXPECT_TRUE(isNamedIn("emacs", "https://www.gnu.org/software/emacs"));
    EXPECT_FALSE(isNamedIn("pyt", "https://www.python.org/"));
    EXPECT_FALSE(isNamedIn("thon", "https://www.python.org/"));
    EXPECT_FALSE(isNamedIn("https", "https://www.python.org/"));
    EXPECT_FALSE(isNamedIn("7", "https://7.org/"));
    EXPECT_FALSE(isNamedIn("", "https://h/"));
    EXPECT_FALSE(isNamedIn("apple", ""));
}

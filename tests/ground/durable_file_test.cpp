#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "ground/durable_file.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;
namespace fs = std::filesystem;

/// That each call may fail and leave the old file whole is shown by the tests in tests/faults.

namespace {

std::string contentOf(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::optional<struct stat> stateOf(const std::string& path)
{
    struct stat state = {};
    return ::stat(path.c_str(), &state) == 0 ? std::optional(state) : std::nullopt;
}

std::ptrdiff_t countEntries(const std::string& folder)
{
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

} // namespace

TEST(ReplaceFile, MakesAFileThatIsNotThere)
{
    const TemporaryFolder folder;
    const std::string path = folder.path() + "/new";
    EXPECT_FALSE(replaceFile(path, std::string_view("a\0b", 3), std::nullopt));
    EXPECT_EQ(contentOf(path), std::string("a\0b", 3));
    EXPECT_EQ(countEntries(folder.path()), 1);
}

TEST(ReplaceFile, KeepsTheModeAndGivesANewFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("file", "old content, which is longer");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    const std::optional<struct stat> before = stateOf(path);
    EXPECT_FALSE(replaceFile(path, "new", before));
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(stateOf(path)->st_mode, before->st_mode);
    EXPECT_NE(stateOf(path)->st_ino, before->st_ino);
    EXPECT_EQ(countEntries(folder.path()), 1);
}

TEST(ReplaceFile, MakesAFileThatOnlyItsUserCanRead)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("secret", "old");
    EXPECT_FALSE(replaceFile(path, "new", std::nullopt, 0600));
    EXPECT_EQ(stateOf(path)->st_mode & 07777, 0600U);
    EXPECT_EQ(contentOf(path), "new");
}

TEST(ReplaceFile, FailureLeavesNothingBehind)
{
    const TemporaryFolder folder;
    EXPECT_EQ(replaceFile(folder.path() + "/none/file", "x", std::nullopt), std::errc::no_such_file_or_directory);
    const std::string inTheWay = folder.path() + "/folder";
    fs::create_directory(inTheWay);
    EXPECT_TRUE(replaceFile(inTheWay, "x", std::nullopt)); // the rename fails
    EXPECT_EQ(countEntries(folder.path()), 1);
}

TEST(RenameDurably, TakesThePlaceOfTheOldFile)
{
    const TemporaryFolder folder;
    const std::string old = folder.write("file", "old");
    const std::string finished = folder.write("file.new", "new");
    EXPECT_FALSE(flushFile(finished));
    EXPECT_FALSE(renameDurably(finished, old));
    EXPECT_EQ(contentOf(old), "new");
    EXPECT_EQ(countEntries(folder.path()), 1);
}

TEST(RenameDurably, FailureLeavesBothFiles)
{
    const TemporaryFolder folder;
    const std::string finished = folder.write("file.new", "new");
    EXPECT_EQ(renameDurably(finished, folder.path() + "/none/file"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(contentOf(finished), "new");
    EXPECT_EQ(flushFile(folder.path() + "/none"), std::errc::no_such_file_or_directory);
}

TEST(IsTemporaryName, KnowsTheNamesThatReplaceFileGives)
{
    EXPECT_TRUE(isTemporaryName("file.4711-0.tmp", "file"));
    EXPECT_TRUE(isTemporaryName("file.1-99.tmp", "file"));
    for (const char* other : {"file", "file.tmp", "file.bak", "file.4711.tmp", "file.-0.tmp", "file.4711-.tmp",
                              "file.4711-0.tmp.bak", "file.a-0.tmp", "other.4711-0.tmp", "fil", ""})
        EXPECT_FALSE(isTemporaryName(other, "file")) << other;
}

TEST(IsTemporaryName, IsTrueForTheFileThatIsBeingWritten)
{
    const TemporaryFolder folder;
    const std::string path = folder.path() + "/file";
    // The rename fails, because there is a folder of that name, but only after the temporary file was made.
    fs::create_directory(path);
    const int watch = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    ASSERT_GE(::inotify_add_watch(watch, folder.path().c_str(), IN_CREATE), 0);
    EXPECT_TRUE(replaceFile(path, "text", std::nullopt));
    alignas(inotify_event) std::array<char, 4096> events = {};
    ASSERT_GT(::read(watch, events.data(), events.size()), 0);
    ::close(watch);
    const auto* created = reinterpret_cast<const inotify_event*>(events.data());
    EXPECT_TRUE(isTemporaryName(created->name, "file")) << created->name;
}
